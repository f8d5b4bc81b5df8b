#include "document/document.h"

#include "config/config_file.h"
#include "document/batch_command_file.h"
#include "document/edits.h"
#include "document/index_settings.h"
#include "document/project_check.h"
#include "document/project_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

std::filesystem::path ResultOf(const std::filesystem::path& project) {
    return Outils_Fichiers::WithExtension(project, GetText(EText::outputExtension));
}

} // namespace

CTrvDocument::CTrvDocument(IDocumentHost& host, Outils::IMessageTarget& target,
                           const Outils_Configuration::CTrvCnfConfigFile& configuration, bool expertMode)
    : CDocumentEx(host),
      m_configuration(configuration),
      m_expertMode(expertMode),
      m_target(target),
      m_unsaved(host),
      m_indexes(std::make_shared<CFileIndexes>(ReadIndexSettings(configuration))),
      m_fileLooks(target),
      m_engineRun(host, configuration, m_fileLooks, *this),
      m_queryManager(target) {}

CTrvDocument::~CTrvDocument() { LetGo(); }

bool CTrvDocument::CommandNew() { return !RefuseWhileRunning(EText::stopBeforeClose) && NewDocument(); }

bool CTrvDocument::CommandNewBatch() {
    if (RefuseWhileRunning(EText::stopBeforeClose)) return false;
    const auto commandFile = GetHost().AskPath(
        {EPathKind::open, EText::commandFileTitle, EText::xmlFilter, GetText(EText::xmlExtension).substr(1)});
    return !commandFile.empty() && SaveModified() && OnNewBatchDocument(commandFile.front());
}

bool CTrvDocument::NewFromProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                                  EResultName resultName) {
    return !RefuseWhileRunning(EText::stopBeforeClose) && SaveModified() &&
           TakeProject(EOutcome::done, {std::move(project), path}, resultName);
}

bool CTrvDocument::OnNewEmptyDocument() {
    m_bParametersChanged = false;
    return CDocumentEx::OnNewDocument();
}

bool CTrvDocument::OnNewDocument() {
    SMadeProject made;
    const EOutcome outcome = GetHost().MakeProject(made);
    return TakeProject(outcome, std::move(made), EResultName::ofProject);
}

bool CTrvDocument::OnNewBatchDocument(const std::filesystem::path& commandFile) {
    SMadeProject made;
    const EOutcome outcome = GetHost().MakeProjectFrom(commandFile, made);
    return TakeProject(outcome, std::move(made), EResultName::kept);
}

bool CTrvDocument::TakeProject(EOutcome outcome, SMadeProject made, EResultName resultName) {
    if (outcome != EOutcome::done) return outcome == EOutcome::cancelled;
    if (!made.project || !OnNewEmptyDocument()) return false;
    // The views let go of the former project.
    UpdateAllViews(nullptr, hintRefresh);
    const CWaitCursor wait(GetHost());
    m_pProject = std::move(made.project);
    FollowProject();
    m_files->Make();
    m_automaticSensors.emplace();
    SearchFirstData();
    GetHost().UpdateMenuForEquipment(m_pProject->simulationParameters->nelixConfiguration->type->equipment);
    const bool saved = SaveNew(made.path, resultName);
    UpdateAllViews(nullptr, hintRefresh);
    return saved;
}

void CTrvDocument::FollowProject() {
    const SFileServices services{GetHost(),   m_target,    m_configuration, m_expertMode,
                                 m_fileLooks, m_fileCache, m_indexes,       m_endingThreads};
    IProjectFilesListener& listener = *this;
    m_files = std::make_unique<CProjectFiles>(*m_pProject, services, listener);
}

void CTrvDocument::SearchFirstData() {
    auto& parameters = *m_pProject->simulationParameters;
    const SFirstData data = m_files->WaitForFirstData(*parameters.mainInputFile);
    if (data.hasUtc && data.utcOrigin.IsValid())
        parameters.SetUtcReference(data.utcOrigin, Outils_Temps::CDateTimeSpan());
    auto& reference = parameters.referencePosition;
    if (data.hasPosition && reference.latitude == 0.0 && reference.longitude == 0.0)
        reference = data.position;
}

bool CTrvDocument::CommandOpen(std::filesystem::path path) {
    if (RefuseWhileRunning(EText::stopBeforeClose)) return false;
    if (path.empty()) {
        // A name would be chosen by who only wants to see the folder.
        const auto asked =
            GetHost().AskPath({EPathKind::open, EText::openTitle, EText::projectFilter,
                               GetText(EText::projectExtension).substr(1), GetPathName().parent_path()});
        if (asked.empty()) return false;
        path = asked.front();
    }
    if (!SaveModified()) return false;
    SetModifiedFlag(false);
    // Before the offer: what the user discards may be the very file that is offered.
    m_unsaved.OnClosed(GetPathName());
    path = Outils_Fichiers::ToAbsolute(path);
    const CUnsavedWork::EOffer offer = m_unsaved.Offer(path);
    if (offer == CUnsavedWork::EOffer::ended) return false;
    if (offer == CUnsavedWork::EOffer::accepted) return OpenRestored(CUnsavedWork::GetFile(path));
    const bool opened = OpenFrom(path, path);
    if (opened && offer == CUnsavedWork::EOffer::refused) m_unsaved.OnSaved(path);
    return opened;
}

void CTrvDocument::OfferUnsaved(const std::vector<std::filesystem::path>& projects) {
    const auto look = [projects, folder = GetHost().GetUserFolder()](const Outils::CEvent&) {
        return CUnsavedWork::Find(projects, folder);
    };
    m_fileLooks.Ask(&m_unsaved, look, [this](const std::vector<std::filesystem::path>& files) {
        if (IsSimulationRunning()) return;
        const std::filesystem::path file = m_unsaved.Choose(files, GetPathName());
        if (!file.empty() && SaveModified()) OpenRestored(file);
    });
    m_fileLooks.Wait(GetHost().GetPatience(), &m_unsaved);
}

bool CTrvDocument::OpenRestored(const std::filesystem::path& file) {
    if (!OpenFrom(file, m_unsaved.GetProject(file))) return false;
    m_unsaved.OnRestored(file);
    ProjectChanged(hintRefresh, nullptr);
    return true;
}

bool CTrvDocument::OnOpenDocument(const std::filesystem::path& path) {
    const CWaitCursor wait(GetHost());
    m_bParametersChanged = false;
    if (!CDocumentEx::OnOpenDocument(path)) {
        SetModifiedFlag(true);
        return false;
    }
    if (!m_pProject) return true;
    FollowProject();
    m_files->Open();
    m_engineRun.ExamineResult(m_pProject->simulationParameters->outputFile->path);
    GetHost().UpdateMenuForEquipment(m_pProject->simulationParameters->nelixConfiguration->type->equipment);
    return true;
}

bool CTrvDocument::CommandSaveAs() { return !RefuseWhileRunning(EText::stopBeforeSaveAs) && SaveAs(); }

bool CTrvDocument::SaveNew(const std::filesystem::path& path, EResultName resultName) {
    if (resultName == EResultName::ofProject) return DoSave(path, true);
    if (!SaveUnder(path, GetResult().path)) return false;
    SetPathName(path);
    return true;
}

bool CTrvDocument::OnSaveDocument(const std::filesystem::path& path) {
    // The engine goes on writing under the name that it was given.
    return SaveUnder(path, m_pProject && IsResultBeingWritten() ? GetResult().path : ResultOf(path));
}

bool CTrvDocument::SaveUnder(const std::filesystem::path& path, std::filesystem::path result) {
    if (!StoreWithResult(path, result)) return ReportFailedSave(path);
    SetModifiedFlag(false);
    m_bParametersChanged = false;
    m_unsaved.OnSaved(path);
    if (!m_pProject || GetResult().path == result) return true;
    GetResult().path = result;
    UpdateAllViews(nullptr, hintOutputFileNameChanged);
    // Nothing of the former result is in the one of the new name. Should that exist, the monitor is about to
    // report it.
    m_files->ForgetResult();
    UpdateAllViews(nullptr, hintDataFileContentChanged, &GetResult());
    return true;
}

bool CTrvDocument::OnSaveCopy(const std::filesystem::path& path) {
    return StoreWithResult(path, ResultOf(path)) || ReportFailedSave(path);
}

bool CTrvDocument::StoreWithResult(const std::filesystem::path& path, std::filesystem::path result) {
    if (!m_pProject) return StoreTo(path);
    const std::filesystem::path former = std::exchange(GetResult().path, std::move(result));
    const bool stored = StoreTo(path);
    GetResult().path = former;
    return stored;
}

bool CTrvDocument::EndNow() {
    const bool hasChanges = m_pProject && IsModified();
    const bool kept =
        m_unsaved.Keep(GetPathName(), [&](const auto& file) { return !hasChanges || StoreTo(file); });
    m_engineRun.StopNow();
    return kept;
}

void CTrvDocument::DeleteContents() {
    const bool hadProject = m_pProject != nullptr;
    LetGo();
    // Questions may be asked before the next project is there: no view may show this one meanwhile.
    if (hadProject) UpdateAllViews(nullptr, hintRefresh);
}

// Asks no view: they may have gone.
void CTrvDocument::LetGo() {
    const CWaitCursor wait(GetHost());
    m_automaticSensors.reset();
    m_sensorFiles.clear();
    m_files.reset();
    m_queryManager.Stop();
    m_pProject.reset();
    m_engineRun.RemoveTemporaryFiles();
    m_unsaved.OnClosed(GetPathName());
    CDocumentEx::DeleteContents();
}

bool CTrvDocument::CanCloseFrame() {
    return !RefuseWhileRunning(EText::stopBeforeExit) && CDocumentEx::CanCloseFrame();
}

bool CTrvDocument::RefuseWhileRunning(EText text) {
    if (!IsSimulationRunning()) return false;
    GetHost().ShowMessage(std::string(GetText(text)), EButtons::ok, EIcon::exclamation);
    return true;
}

bool CTrvDocument::IsSimulationRunning() { return m_engineRun.Poll(); }

bool CTrvDocument::StartSimulation() {
    const CWaitCursor wait(GetHost());
    if (!m_pProject || IsSimulationRunning()) return false;
    const auto& parameters = *m_pProject->simulationParameters;
    if (!ValidateProject(GetHost(), parameters, EText::parametersWrongLine, EText::parametersWrongRun))
        return false;
    // Checked again after the save, which may have given the result another name.
    return m_engineRun.CheckFiles(parameters) && SaveBeforeRun() && m_engineRun.CheckFiles(parameters) &&
           m_engineRun.Start(parameters);
}

bool CTrvDocument::StopSimulation() {
    const CWaitCursor wait(GetHost());
    return m_pProject && m_engineRun.Stop();
}

bool CTrvDocument::SaveBeforeRun() {
    if (!m_bParametersChanged) return true;
    std::error_code error;
    if (!std::filesystem::exists(GetResult().path, error)) {
        const std::string question(GetText(EText::mustSaveBeforeRun));
        return GetHost().ShowMessage(question, EButtons::okCancel, EIcon::question) == EAnswer::ok && Save();
    }
    switch (GetHost().ShowMessage(std::string(GetText(EText::resultExists)), EButtons::yesNoCancel,
                                  EIcon::question)) {
    case EAnswer::yes: return Save();
    case EAnswer::no: return SaveAs();
    default: return false;
    }
}

void CTrvDocument::OnResultRemoved(bool existed) {
    // The removal is no news, and what the engine writes is a new file, even if it is longer than the old one
    // at the next look.
    if (existed) m_files->ForgetResult();
    UpdateAllViews(nullptr, hintDataFileContentChanged, &GetResult());
}

void CTrvDocument::OnRunStarted() { UpdateAllViews(nullptr, hintRunStarted); }

void CTrvDocument::OnRunEnded() {
    UpdateAllViews(nullptr, hintRunEnded);
    // While the engine wrote the result, nothing in it was a fault; from now on it may be one. The engine may
    // have begun it again since the last look.
    if (m_files) m_files->FollowResult();
}

void CTrvDocument::OnLayersChanged(const CTrvDataFile& file) {
    UpdateAllViews(nullptr, hintDataLayersRebuilt, &file);
}

void CTrvDocument::OnContentChanged(const CTrvDataFile& file) {
    UpdateAllViews(nullptr, hintDataFileContentChanged, &file);
}

void CTrvDocument::OnRecordingKnown() {
    UpdateAllViews(nullptr, hintSimulationParametersChanged, m_pProject->simulationParameters.get());
}

void CTrvDocument::OnChannelFound(CTrvDataFile& file, std::uint16_t channel) {
    UpdateAllViews(nullptr, hintChannelFound, &file);
    if (m_sensorFiles.contains(&file)) AddSensorOn(file, channel);
    if (!m_automaticSensors) return;
    const auto [sensor, message] = m_automaticSensors->Add(*m_pProject->simulationParameters, file, channel);
    if (!sensor) return;
    ProjectChanged(hintSensorAdded, sensor);
    GetHost().AppendOutputText(std::string(GetText(message)));
}

void CTrvDocument::AddSensorsOf(CTrvDataFile& file) {
    m_sensorFiles.insert(&file);
    for (const auto& channel : file.channels)
        if (const auto* layer = m_pProject->dataModel->FindLayer(&file, channel->id);
            layer && layer->m_hasData)
            AddSensorOn(file, channel->id);
}

void CTrvDocument::AddSensorOn(CTrvDataFile& file, std::uint16_t channel) {
    const auto [sensor, line] =
        Application_Tarvel::AddSensorOn(*m_pProject->simulationParameters, file, channel);
    if (sensor) ProjectChanged(hintSensorAdded, sensor);
    if (!line.empty()) GetHost().AppendOutputText(line);
}

bool CTrvDocument::PrepareBatchCommandFile() {
    return m_pProject &&
           Application_Tarvel::PrepareBatchCommandFile(GetHost(), m_configuration, m_fileLooks,
                                                       *m_pProject->simulationParameters, GetPathName());
}

CTrvDocumentEdits CTrvDocument::GetEdits() { return CTrvDocumentEdits(*this); }

void CTrvDocument::ProjectChanged(EHint hint, const Outils_Objets::CObject* object) {
    if (hint == hintDataFileRemoved) m_sensorFiles.erase(object);
    SetModifiedFlag(true);
    m_bParametersChanged = true;
    UpdateAllViews(nullptr, hint, object);
}

void CTrvDocument::LoadFrom(const std::filesystem::path& path) {
    // The views let go of the former project before a box can let them draw or ask for data again.
    UpdateAllViews(nullptr, hintRefresh);
    m_pProject = LoadProject(path);
}

bool CTrvDocument::StoreTo(const std::filesystem::path& path) { return StoreProject(m_pProject.get(), path); }

} // namespace Application_Tarvel
