// How the document comes to a new project.
#include "document/document.h"
#include "foundation/texts.h"

#include <utility>

namespace Application_Tarvel {

using Outils_Texte::EText;
using Outils_Texte::GetText;

bool CTrvDocument::CommandNew() { return !RefuseWhileRunning(EText::stopBeforeClose) && NewDocument(); }

bool CTrvDocument::CommandNewBatch() {
    if (RefuseWhileRunning(EText::stopBeforeClose)) return false;
    const auto commandFile = GetHost().AskPath(
        {EPathKind::open, EText::commandFileTitle, EText::xmlFilter, GetText(EText::xmlExtension).substr(1)});
    return !commandFile.empty() && SaveModified() && OnNewBatchDocument(commandFile.front());
}

bool CTrvDocument::NewFromProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                                  EResultName resultName) {
    if (RefuseWhileRunning(EText::stopBeforeClose) || !SaveModified()) return false;
    return TakeProject({std::move(project), path}, resultName);
}

bool CTrvDocument::OnNewEmptyDocument() {
    m_bParametersChanged = false;
    return CDocumentEx::OnNewDocument();
}

bool CTrvDocument::OnNewDocument() {
    SMadeProject made;
    const EOutcome outcome = GetHost().MakeProject(made);
    return outcome == EOutcome::done ? TakeProject(std::move(made), EResultName::ofProject)
                                     : outcome == EOutcome::cancelled;
}

bool CTrvDocument::OnNewBatchDocument(const std::filesystem::path& commandFile) {
    SMadeProject made;
    const EOutcome outcome = GetHost().MakeProjectFrom(commandFile, made);
    return outcome == EOutcome::done ? TakeProject(std::move(made), EResultName::kept)
                                     : outcome == EOutcome::cancelled;
}

bool CTrvDocument::TakeProject(SMadeProject made, EResultName resultName) {
    if (!OnNewEmptyDocument()) return false;
    // The views let go of the former project.
    UpdateAllViews(nullptr, hintRefresh);
    const bool saved = SetUpProject(std::move(made.project), made.path, resultName);
    UpdateAllViews(nullptr, hintRefresh);
    return saved;
}

bool CTrvDocument::SetUpProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                                EResultName resultName) {
    const CWaitCursor wait(GetHost());
    m_pProject = std::move(project);
    if (!m_pProject) return false;
    m_bSettingUp = true;
    LookAtFiles(false);
    FollowFirstLooks();
    m_bAutoAddSensors = true;
    StartAnalysis(*m_pProject->simulationParameters->mainInputFile);
    SearchFirstData();
    WatchFiles();
    m_bSettingUp = false;
    GetHost().UpdateMenuForEquipment(m_pProject->simulationParameters->nelixConfiguration->type->equipment);
    m_bSavingNewBatchProject = resultName == EResultName::kept;
    const bool saved = DoSave(path, true);
    m_bSavingNewBatchProject = false;
    return saved;
}

} // namespace Application_Tarvel
