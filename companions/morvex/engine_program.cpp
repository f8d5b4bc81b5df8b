#include "morvex/engine_program.h"

#include "foundation/paths.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "model/simulation_parameters.h"
#include "morvex/command_reader.h"
#include "morvex/line_monitor.h"
#include "morvex/navigation_run.h"
#include "morvex/run_plan.h"

#include <cerrno>
#include <exception>

#include <unistd.h>

namespace Morvex {

using Outils_Texte::EText;
namespace {

using Outils_Texte::EqualsNoCase;

bool WriteAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

ERunEnd RunParameters(const std::filesystem::path& path, IRunMonitor& monitor) {
    const auto parameters = LoadParameters(path);
    if (!parameters) {
        monitor.Message(
            ELevel::error, EText::parametersUnreadable,
            Outils_Texte::FormatText(EText::parametersUnreadable, {Outils_Fichiers::ToText(path)}));
        return ERunEnd::failed;
    }
    const SRunPlan plan = MakeRunPlan(*parameters);
    return CNavigationRun(plan, monitor).Execute();
}

} // namespace

std::optional<SEngineArguments> ParseArguments(const std::vector<std::string>& arguments) {
    SEngineArguments result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (EqualsNoCase(argument, "/remote")) {
            result.remote = true;
        } else if (EqualsNoCase(argument, "/autostart")) {
            if (++i == arguments.size()) return std::nullopt;
            if (!EqualsNoCase(arguments[i], "on") && !EqualsNoCase(arguments[i], "off")) return std::nullopt;
            result.autostart = EqualsNoCase(arguments[i], "on");
        } else if (result.parameters.empty() && !argument.empty()) {
            result.parameters = Outils_Fichiers::FromText(argument);
        } else {
            return std::nullopt;
        }
    }
    if (result.parameters.empty()) return std::nullopt;
    return result;
}

int RunEngine(const std::vector<std::string>& arguments, int input, int output) {
    const auto write = [output](std::string_view line) { return WriteAll(output, line); };
    const auto parsed = ParseArguments(arguments);
    if (!parsed) {
        write(std::string(Outils_Texte::GetText(EText::engineUsage)) + "\n");
        return static_cast<int>(ERunEnd::failed);
    }
    CRunControl control;
    CLineMonitor monitor(control, parsed->remote, write);
    CCommandReader reader(input, control);
    if (parsed->remote) reader.Start();
    if (!parsed->remote || parsed->autostart) control.Command("start");
    if (!control.WaitForStart()) return static_cast<int>(ERunEnd::stopped);
    try {
        std::error_code error;
        const std::filesystem::path path = std::filesystem::absolute(parsed->parameters, error);
        return static_cast<int>(RunParameters(error ? parsed->parameters : path, monitor));
    } catch (const std::exception& exception) {
        monitor.Message(ELevel::error, EText::unexpected,
                        Outils_Texte::FormatText(EText::unexpected, {exception.what()}));
        return static_cast<int>(ERunEnd::failed);
    }
}

} // namespace Morvex
