#include "processing/engine_command.h"

#include "processing/command_switches.h"

namespace Communication_Processus {

namespace {

using Values = std::vector<std::string>;

constexpr SCommandSwitch<std::string_view> kRows[] = {
    {"/remote", EArgument::flag, [](const std::string_view&) { return Values{""}; }},
    // The engine waits for the word "start".
    {"/autostart", EArgument::word, [](const std::string_view&) { return Values{"off"}; }},
    {"", EArgument::quoted, [](const std::string_view& file) { return Values{std::string(file)}; }},
};

} // namespace

std::string MakeEngineCommand(std::string_view program, std::string_view parameterFile) {
    return MakeCommandLine(program, kRows, parameterFile);
}

} // namespace Communication_Processus
