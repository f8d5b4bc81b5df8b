#include "app/start_up.h"

#include "app/main_frame.h"
#include "foundation/paths.h"
#include "foundation/switches.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Texte::EText;
using Outils_Texte::FormatText;

namespace {

using Outils_Texte::ESwitchValue;
using Outils_Texte::SSwitchRow;

constexpr SSwitchRow kSwitches[] = {
    {"--help", ESwitchValue::none, "", EText::switchHelp},
    {"-h", ESwitchValue::none, "", EText::switchHelp},
    {"--version", ESwitchValue::none, "", EText::switchVersion},
    {"--snapshot", ESwitchValue::text, "FILE", EText::snapshotHelp},
};

} // namespace

SCommandLine ParseCommandLine(std::span<const char* const> words) {
    SCommandLine line;
    Outils_Texte::CArguments arguments;
    const std::vector<std::string> all(words.begin(), words.end());
    const bool valid = arguments.Parse(kSwitches, all, line.error, Outils_Texte::ESwitchStyle::dash);
    for (const std::string& file : arguments.GetFiles()) {
        if (line.project.empty())
            line.project = Outils_Fichiers::FromText(file);
        else
            line.error = FormatText(EText::tooManyFiles, {file});
    }
    const auto* snapshot = arguments.Find("--snapshot");
    if (snapshot && snapshot->text.empty()) line.error = FormatText(EText::missingValue, {"--snapshot"});
    // Help is given whatever follows, also what makes no sense.
    if (arguments.Has("--help") || arguments.Has("-h"))
        line.request = ERequest::help;
    else if (arguments.Has("--version"))
        line.request = ERequest::version;
    else if (!valid || !line.error.empty())
        line.request = ERequest::wrongUsage;
    else if (snapshot)
        line.request = ERequest::snapshot;
    if (snapshot) line.snapshot = Outils_Fichiers::FromText(snapshot->text);
    return line;
}

SStart ChooseStart(const std::filesystem::path& named, EStartMode mode,
                   const std::filesystem::path& lastProject) {
    if (!named.empty()) return {named, false};
    std::error_code error;
    if (mode == EStartMode::openLast && !lastProject.empty() && std::filesystem::exists(lastProject, error))
        return {lastProject, false};
    return {{}, mode == EStartMode::newWizard};
}

void Start(CTrvProjectMainFrame& frame, const SStart& start, const std::function<void()>& opened) {
    frame.show();
    frame.repaint();
    if (!start.file.empty()) frame.OpenProject(start.file);
    opened();
    frame.GetDocument().OfferUnsaved(frame.GetRecentFiles().GetFiles());
    if (start.newProject && !frame.HasProject()) frame.NewProject();
}

} // namespace Application_Tarvel
