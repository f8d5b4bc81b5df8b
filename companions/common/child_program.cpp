#include "common/child_program.h"

#include "common/command_reader.h"
#include "foundation/end_signals.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <exception>

#include <unistd.h>

namespace Compagnon {
namespace {

using Outils_Texte::EqualsNoCase;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

constexpr SSwitchRow kCommonSwitches[] = {
    {"/remote", ESwitchValue::none, "", EText::switchRemote},
    {"/autostart", ESwitchValue::word, "on|off", EText::switchAutostart},
    {"--help", ESwitchValue::none, "", EText::switchHelp},
    {"--version", ESwitchValue::none, "", EText::switchVersion},
};
constexpr std::size_t kAutostartOn = 0;

bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool AsksForHelp(const std::vector<std::string>& arguments) {
    constexpr std::string_view kWords[] = {"--help", "-h", "/?", "/help"};
    return std::ranges::any_of(arguments, [&](const std::string& argument) {
        return std::ranges::any_of(kWords,
                                   [&](std::string_view word) { return EqualsNoCase(word, argument); });
    });
}

// The command line; false with the reason in `error`.
bool Parse(const SProgram& program, std::span<const SSwitchRow> rows,
           const std::vector<std::string>& arguments, CArguments& parsed, std::string& error) {
    if (!parsed.Parse(rows, arguments, error)) return false;
    const std::size_t files = parsed.GetFiles().size();
    if (files >= program.fewestFiles && files <= program.mostFiles) return true;
    error = FormatText(EText::wrongFileCount, {program.files, std::to_string(files)});
    return false;
}

} // namespace

std::string DescribeProgram(const SProgram& program) {
    std::string text = FormatText(EText::programUsage, {program.name, program.files});
    text += "\n" + std::string(GetText(program.purpose)) + "\n\n";
    return text + Outils_Texte::DescribeSwitches(program.switches) +
           Outils_Texte::DescribeSwitches(kCommonSwitches);
}

int RunProgram(const SProgram& program, const std::vector<std::string>& arguments, int input, int output,
               int signals) {
    const auto write = [output](std::string_view line) { return WriteAll(output, line); };
    if (AsksForHelp(arguments)) return write(DescribeProgram(program)) ? 0 : 1;

    std::vector<SSwitchRow> rows(program.switches.begin(), program.switches.end());
    rows.insert(rows.end(), std::begin(kCommonSwitches), std::end(kCommonSwitches));
    CArguments parsed;
    std::string error;
    const bool valid = Parse(program, rows, arguments, parsed, error);
    if (parsed.Has("--version"))
        return write(FormatText(EText::programVersion, {program.name, VARNE_VERSION}) + "\n") ? 0 : 1;

    // A line that is refused may hold the switch after the fault.
    const bool remote = std::ranges::any_of(
        arguments, [](const std::string& argument) { return EqualsNoCase(argument, "/remote"); });
    CRunControl control;
    CLineMonitor monitor(control, remote ? program.dialect : EDialect::plain, write);
    if (!valid) {
        monitor.Message(ELevel::error, EText::wrongCommandLine, error);
        if (!remote) write("\n" + DescribeProgram(program));
        return static_cast<int>(ERunEnd::failed);
    }

    CCommandReader reader(remote ? input : -1, control, signals);
    if (remote || signals >= 0) reader.Start();
    const bool waits = remote && (parsed.Has("/autostart") ? parsed.GetWord("/autostart", 0) != kAutostartOn
                                                           : program.waitsForStart);
    if (!waits) control.Command("start");
    ERunEnd end = ERunEnd::stopped;
    if (control.WaitForStart()) {
        try {
            end = program.run(parsed, monitor);
        } catch (const std::exception& exception) {
            monitor.Report(ELevel::error, EText::unexpected, {exception.what()});
            end = ERunEnd::failed;
        }
    }
    if (program.dialect != EDialect::engine && end != ERunEnd::finished) end = ERunEnd::failed;
    return static_cast<int>(end);
}

int RunMain(const SProgram& program, int count, char** arguments) {
    // The failed write shows that nobody reads any more, and the run then ends in order.
    std::signal(SIGPIPE, SIG_IGN);
    const Outils::CEndSignals signals;
    return RunProgram(program, std::vector<std::string>(arguments + (count > 0 ? 1 : 0), arguments + count),
                      STDIN_FILENO, STDOUT_FILENO, signals.GetDescriptor());
}

} // namespace Compagnon
