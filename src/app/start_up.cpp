#include "app/start_up.h"

#include "app/main_frame.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Texte::EText;

using Outils_Texte::FormatText;

SCommandLine ParseCommandLine(std::span<const char* const> words) {
    SCommandLine line;
    bool options = true;
    const auto refuse = [](EText text, std::string_view word) {
        SCommandLine wrong;
        wrong.request = ERequest::wrongUsage;
        wrong.error = FormatText(text, {word});
        return wrong;
    };
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (!options || !word.starts_with('-')) {
            if (!line.project.empty()) return refuse(EText::tooManyFiles, word);
            line.project = Outils_Fichiers::FromText(word);
        } else if (word == "--") {
            options = false;
        } else if (word == "--help" || word == "-h" || word == "--version") {
            line.request = word == "--version" ? ERequest::version : ERequest::help;
            return line;
        } else if (word == "--snapshot") {
            if (i + 1 == words.size() || *words[i + 1] == '\0') return refuse(EText::missingValue, word);
            line.request = ERequest::snapshot;
            line.snapshot = Outils_Fichiers::FromText(words[++i]);
        } else {
            return refuse(EText::unknownSwitch, word);
        }
    }
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
