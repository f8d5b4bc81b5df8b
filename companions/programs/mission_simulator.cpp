#include "foundation/texts.h"
#include "simulator/command_line.h"
#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"

#include <cstdio>

namespace {

constexpr int kSuccess = 0, kFailure = 1, kWrongUsage = 2;

int Report(const std::string& error, int status) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return status;
}

} // namespace

int main(int count, char** arguments) {
    using Outils_Texte::EText;
    Simulation::SCommandLine line;
    std::string error;
    const std::vector<std::string> words(arguments + (count > 0 ? 1 : 0), arguments + count);
    if (!Simulation::ParseCommandLine(words, line, error))
        return Report(error + '\n' + std::string(Outils_Texte::GetText(EText::simSeeHelp)), kWrongUsage);
    if (line.help || line.version) {
        const std::string version = Outils_Texte::FormatText(EText::simVersion, {VARNE_VERSION});
        std::fputs(line.help ? Simulation::GetUsage().c_str() : version.c_str(), stdout);
        return kSuccess;
    }
    error = line.options.Validate();
    if (!error.empty()) return Report(error, kWrongUsage);
    if (!Simulation::CheckTargets(line, error) ||
        !Simulation::WriteMission(line.options, line.output, line.truth, error))
        return Report(error, kFailure);
    for (const auto& [kind, path] : line.also)
        if (!Simulation::WriteForeign(kind, line.output, line.options.GetUtcOrigin(), path, error))
            return Report(error, kFailure);
    return kSuccess;
}
