#include "document/document.h"

#include "config/config_file.h"
#include "document/batch_command_file.h"
#include "document/project_check.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/registration.h"

#include <algorithm>
#include <utility>

namespace Application_Tarvel {

using namespace Outils_Objets;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// A project of ten thousand instructions of each kind takes some megabytes: what exceeds this is no project.
constexpr std::uint64_t kMaximumProjectSize = std::uint64_t{1} << 30;

// Where the changes of a project are kept that could not be saved.
std::filesystem::path UnsavedOf(const std::filesystem::path& project) {
    return project.native() + std::string(GetText(EText::unsavedExtension));
}

std::filesystem::path ResultOf(const std::filesystem::path& project) {
    return Outils_Fichiers::WithExtension(project, GetText(EText::outputExtension));
}

void Remove(const std::filesystem::path& file) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

} // namespace

CTrvDocument::CTrvDocument(IDocumentHost& host, Outils::IMessageTarget& target,
                           const Outils_Configuration::CTrvCnfConfigFile& configuration)
    : CDocumentEx(host),
      m_configuration(configuration),
      m_target(target),
      m_fileLooks(target),
      m_engineRun(host, configuration, m_fileLooks, *this),
      m_queryManager(target) {}

CTrvDocument::~CTrvDocument() { DeleteContents(); }

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
    const SFileServices services{GetHost(),   m_target,    m_configuration,
                                 m_fileLooks, m_fileCache, m_endingThreads};
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
    // Before the offer: the answer may write or remove the very file that is offered.
    if (!SaveModified()) return false;
    SetModifiedFlag(false);
    std::error_code error;
    const std::filesystem::path unsaved = UnsavedOf(Outils_Fichiers::ToAbsolute(path));
    const bool isOffered = std::filesystem::is_regular_file(unsaved, error);
    m_ended = false;
    const bool restores =
        isOffered && GetHost().ShowMessage(FormatText(EText::restoreUnsaved, {ToText(path)}), EButtons::yesNo,
                                           EIcon::question) == EAnswer::yes;
    // Nobody has answered a box that the end of the program closes: what is kept stays.
    if (m_ended) return false;
    m_restoredFrom = restores ? unsaved : std::filesystem::path();
    const bool opened = OpenDocument(path);
    m_restoredFrom.clear();
    if (opened && restores)
        ProjectChanged(hintRefresh, nullptr);
    else if (opened && isOffered)
        Remove(unsaved);
    return opened;
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
    return SaveUnder(path, ResultOf(path));
}

bool CTrvDocument::SaveUnder(const std::filesystem::path& path, std::filesystem::path result) {
    if (!StoreWithResult(path, result)) return ReportFailedSave(path);
    SetModifiedFlag(false);
    m_bParametersChanged = false;
    Remove(UnsavedOf(path));
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

void CTrvDocument::DiscardChanges() {
    if (!GetPathName().empty()) Remove(UnsavedOf(GetPathName()));
}

void CTrvDocument::EndNow() {
    m_ended = true;
    if (m_pProject && IsModified() && !GetPathName().empty())
        static_cast<void>(StoreTo(UnsavedOf(GetPathName())));
    m_engineRun.StopNow();
}

void CTrvDocument::DeleteContents() {
    const CWaitCursor wait(GetHost());
    m_automaticSensors.reset();
    m_files.reset();
    m_queryManager.Stop();
    m_pProject.reset();
    m_engineRun.RemoveTemporaryFiles();
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
    if (!m_automaticSensors) return;
    const auto [sensor, message] = m_automaticSensors->Add(*m_pProject->simulationParameters, file, channel);
    if (!sensor) return;
    ProjectChanged(hintSensorAdded, sensor);
    GetHost().AppendOutputText(std::string(GetText(message)));
}

bool CTrvDocument::PrepareBatchCommandFile() {
    return m_pProject &&
           Application_Tarvel::PrepareBatchCommandFile(GetHost(), m_configuration, m_fileLooks,
                                                       *m_pProject->simulationParameters, GetPathName());
}

void CTrvDocument::ProjectChanged(EHint hint, const CObject* object) {
    SetModifiedFlag(true);
    m_bParametersChanged = true;
    UpdateAllViews(nullptr, hint, object);
}

void CTrvDocument::LoadFrom(const std::filesystem::path& path) {
    // The views let go of the former project before a box can let them draw or ask for data again.
    UpdateAllViews(nullptr, hintRefresh);
    const std::filesystem::path& source = m_restoredFrom.empty() ? path : m_restoredFrom;
    auto bytes = Outils_Fichiers::ReadWholeFile(source, kMaximumProjectSize);
    if (!bytes) AfxThrowArchiveException(CArchiveException::generic, ToText(source));
    CClassRegistry registry;
    Metier_Tarvel::RegisterModelClasses(registry);
    CMemoryStream stream(std::move(*bytes));
    CArchive archive(stream, CArchive::load, &registry, path);
    m_pProject.reset();
    m_pProject = CTrvProject::Load(archive);
}

bool CTrvDocument::StoreTo(const std::filesystem::path& path) {
    CMemoryStream stream;
    try {
        CArchive archive(stream, CArchive::store, nullptr, path);
        archive.WriteObject(m_pProject.get());
        archive.Close();
    } catch (const CArchiveException&) {
        return false;
    }
    return Outils_Fichiers::SaveAtomically(path, stream.GetBytes());
}

} // namespace Application_Tarvel
