// How the document comes to a new project.
#include "document/document.h"
#include "document/project_dialogs.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using namespace Dialogue_Tarvel;
using Outils_Texte::EText;
using Outils_Texte::GetText;

bool CTrvDocument::CommandNew() { return !RefuseWhileRunning(EText::stopBeforeClose) && NewDocument(); }

bool CTrvDocument::CommandNewBatch() {
    if (RefuseWhileRunning(EText::stopBeforeClose)) return false;
    const auto commandFile = GetHost().AskCommandFile(std::string(GetText(EText::xmlFilter)));
    if (!commandFile || !SaveModified()) return false;
    SetPathName({});
    const bool made = OnNewBatchDocument(*commandFile);
    UpdateAllViews(nullptr, hintRefresh);
    return made;
}

bool CTrvDocument::NewFromProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                                  EResultName resultName) {
    if (RefuseWhileRunning(EText::stopBeforeClose) || !SaveModified()) return false;
    SetPathName({});
    const bool saved = Clear() && SetUpProject(std::move(project), path, resultName);
    UpdateAllViews(nullptr, hintRefresh);
    return saved;
}

bool CTrvDocument::OnNewEmptyDocument() {
    m_bParametersChanged = false;
    return CDocumentEx::OnNewDocument();
}

bool CTrvDocument::OnNewDocument() {
    if (!Clear()) return false;
    CNewProjectWizard wizard(GetHost(), m_configuration, m_fileLooks);
    if (!GetHost().ShowNewProjectWizard(wizard)) return true;
    return SetUpProject(wizard.TakeProject(), wizard.GetProjectPath(), EResultName::ofProject);
}

bool CTrvDocument::OnNewBatchDocument(const std::filesystem::path& commandFile) {
    if (!Clear()) return false;
    CNewFromBatchParametersDlg dialog(GetHost(), m_configuration, m_fileLooks);
    if (!dialog.Load(commandFile)) return false;
    if (!GetHost().ShowNewFromBatch(dialog)) return true;
    return SetUpProject(dialog.TakeProject(), dialog.GetProjectPath(), EResultName::kept);
}

bool CTrvDocument::Clear() {
    const bool cleared = OnNewEmptyDocument();
    // A dialog may be next, and the windows behind it are painted meanwhile.
    UpdateAllViews(nullptr, hintRefresh);
    return cleared;
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
