#include "document/document.h"

#include "config/config_file.h"
#include "document/batch_command_file.h"
#include "document/project_check.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/registration.h"

namespace Application_Tarvel {

using namespace Outils_Objets;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// A project of ten thousand instructions of each kind takes some megabytes: what exceeds this is no project.
constexpr std::uint64_t kMaximumProjectSize = std::uint64_t{1} << 30;

} // namespace

CTrvDocument::CTrvDocument(IDocumentHost& host, Outils::IMessageTarget& target,
                           const Outils_Configuration::CTrvCnfConfigFile& configuration)
    : CDocumentEx(host),
      m_configuration(configuration),
      m_messageWnd(std::make_shared<Outils::CMessagePort>(target)),
      m_target(target),
      m_fileLooks(target),
      m_engineRun(host, target, configuration, m_fileLooks, *this),
      m_queryManager(target) {}

CTrvDocument::~CTrvDocument() { DeleteContents(); }

SChannelAddress CTrvDocument::GetAddress(const CTrvDataFile& file, std::uint16_t channel) {
    using Persistance_Xpf::EFileKind;
    return {file.path, IsResultFile(file) ? EFileKind::tarout : EFileKind::tarin, channel, &m_fileCache};
}

bool CTrvDocument::OnOpenDocument(const std::filesystem::path& path) {
    const CWaitCursor wait(GetHost());
    m_bParametersChanged = false;
    if (!CDocumentEx::OnOpenDocument(path)) {
        SetModifiedFlag(true);
        return false;
    }
    if (!m_pProject) return true;
    m_bSettingUp = true;
    LookAtFiles(true);
    CheckDataFileVersions(m_firstLooks);
    FollowFirstLooks();
    for (CTrvDataFile* file : GetDataFiles()) StartAnalysis(*file);
    WatchFiles();
    m_bSettingUp = false;
    m_engineRun.ExamineResult(m_pProject->simulationParameters->outputFile->path);
    GetHost().UpdateMenuForEquipment(m_pProject->simulationParameters->nelixConfiguration->type->equipment);
    return true;
}

bool CTrvDocument::OnSaveDocument(const std::filesystem::path& path) {
    bool renamed = false;
    if (m_pProject && !m_bSavingNewBatchProject) {
        // The result file always follows the project file's name.
        CTrvDataFile& output = *m_pProject->simulationParameters->outputFile;
        const auto result = Outils_Fichiers::WithExtension(path, GetText(EText::outputExtension));
        renamed = output.path != result;
        if (renamed) {
            output.path = result;
            UpdateAllViews(nullptr, hintOutputFileNameChanged);
            // Nothing of the former result is in the one of the new name. Should that exist, the monitor is
            // about to report it.
            ForgetContent(output);
        }
    }
    const bool saved = CDocumentEx::OnSaveDocument(path);
    if (renamed)
        UpdateAllViews(nullptr, hintDataFileContentChanged,
                       m_pProject->simulationParameters->outputFile.get());
    if (saved) m_bParametersChanged = false;
    return saved;
}

void CTrvDocument::DeleteContents() {
    const CWaitCursor wait(GetHost());
    m_autoAddedKeys.clear();
    m_bAutoAddSensors = false;
    StopThreads();
    m_fileStates.clear();
    m_pProject.reset();
    m_engineRun.RemoveTemporaryFiles();
    CDocumentEx::DeleteContents();
}

bool CTrvDocument::CanCloseFrame() {
    return !RefuseWhileRunning(EText::stopBeforeExit) && CDocumentEx::CanCloseFrame();
}

bool CTrvDocument::CommandOpen(const std::filesystem::path& path) {
    return !RefuseWhileRunning(EText::stopBeforeClose) && OpenDocument(path);
}

bool CTrvDocument::CommandSaveAs() { return !RefuseWhileRunning(EText::stopBeforeSaveAs) && SaveAs(); }

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

void CTrvDocument::StopSimulationNow() { m_engineRun.StopNow(); }

bool CTrvDocument::SaveBeforeRun() {
    if (!m_bParametersChanged) return true;
    std::error_code error;
    const auto& result = m_pProject->simulationParameters->outputFile->path;
    if (!std::filesystem::exists(result, error)) {
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
    CTrvDataFile& output = *m_pProject->simulationParameters->outputFile;
    // The removal is no news, and what the engine writes is a new file, even if it is longer than the old one
    // at the next look.
    if (existed) ForgetContent(output);
    UpdateAllViews(nullptr, hintDataFileContentChanged, &output);
}

void CTrvDocument::OnRunStarted() { UpdateAllViews(nullptr, hintRunStarted); }

void CTrvDocument::OnRunEnded() {
    UpdateAllViews(nullptr, hintRunEnded);
    if (!m_pProject) return;
    // While the engine wrote the result, nothing in it was a fault; from now on it may be one. It is a new
    // file in all respects: the engine may have begun it again since the last look.
    CTrvDataFile& output = *m_pProject->simulationParameters->outputFile;
    StopAnalysis(output, true);
    m_fileCache.InvalidateFile(output.path);
    WatchAnew(output);
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
    auto bytes = Outils_Fichiers::ReadWholeFile(path, kMaximumProjectSize);
    if (!bytes) AfxThrowArchiveException(CArchiveException::generic, ToText(path));
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
