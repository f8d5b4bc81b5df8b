// The one project document: it keeps the project, loads and saves it, and reports every change to the views.
// CProjectFiles follows its data files, CEngineRun runs the engine. UI thread only; background threads come
// back through the message target.
#pragma once

#include "dataaccess/async_query.h"
#include "document/automatic_sensors.h"
#include "document/document_base.h"
#include "document/engine_run.h"
#include "document/project_files.h"
#include "document/unsaved_work.h"
#include "foundation/text_id.h"
#include "model/project.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <set>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

using Outils_Texte::EText;

class CTrvDocumentEdits;

class CTrvDocument final : public CDocumentEx, private IEngineRunListener, private IProjectFilesListener {
  public:
    // All three must outlive the document. `expertMode` is the setting as read at the start: a later change
    // waits for the next start.
    CTrvDocument(IDocumentHost& host, Outils::IMessageTarget& target,
                 const Outils_Configuration::CTrvCnfConfigFile& configuration, bool expertMode);
    ~CTrvDocument() override;

    // Null for the empty document.
    CTrvProject* GetProject() const { return m_pProject.get(); }
    CAsyncQueryManager& GetQueryManager() { return m_queryManager; }
    // For panels with a query manager of their own, so that long work does not hold up the graphs.
    Outils::IMessageTarget& GetMessageTarget() { return m_target; }
    CXpfFileCache& GetFileCache() { return m_fileCache; }
    // The way back to the UI thread, for managers of queries beside the document's own.
    Outils::IMessageTarget& GetMessageTarget() const { return m_target; }
    const Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_configuration; }
    // Whether the layers of an added file offer what is for experts.
    bool IsExpertMode() const { return m_expertMode; }
    // For work on files for which the UI thread must not wait.
    CFileLooks& GetFileLooks() { return m_fileLooks; }
    using CDocumentEx::GetHost;

    // What follows the data files of the project; null without one. Goes with the project.
    CProjectFiles* GetFiles() const { return m_files.get(); }
    // Whether any file is still looked at or analysed, also for no project.
    bool IsAnalysing() const { return m_fileLooks.IsBusy() || (m_files && m_files->IsAnalysing()); }

    // Gives the external file a sensor on each channel that has packets, as the analysis meets it.
    void AddSensorsOf(CTrvDataFile& file);
    // The edits of the project, one method each: document/edits.h.
    CTrvDocumentEdits GetEdits();
    // Marks the project modified and informs the views: every edit calls it after its change of the model.
    void ProjectChanged(EHint hint, const Outils_Objets::CObject* object);
    // The project changed since the last save or load.
    bool AreParametersChanged() const { return m_bParametersChanged; }

    // Takes over a project made from a recording in the place of the present one: analyses its main input
    // file, searches the first UTC date and position, and saves it under `path` at once, so that a new
    // project always exists on disk. Until the project is closed, event markers and mounts are added as the
    // analysis meets their channels. False when the present project stays, or the save failed; the new
    // project is then open, unsaved. A project from a command file keeps the name of the result that the file
    // gives.
    enum class EResultName { ofProject, kept };
    bool NewFromProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                        EResultName resultName = EResultName::ofProject);
    // Saves a new project under its path, which it takes; the message box and the output panel report a
    // failure, which leaves file and project as they were.
    bool SaveNew(const std::filesystem::path& path, EResultName resultName);

    // Whether the engine is at work; the first call after its end informs the views.
    bool IsSimulationRunning();
    // Starts the engine on the project; true when the run started. A message box reports every refusal.
    bool StartSimulation();
    // Asks the engine to stop; true when it was found running. A second request more than 5 seconds after the
    // first offers to terminate it.
    bool StopSimulation();
    // How the last run ended.
    ERunOutcome GetRunOutcome() const { return m_engineRun.GetOutcome(); }

    // Writes the processing as a batch command file under a name that the user gives. False when a rule is
    // broken, the user cancelled, or the file could not be written, which a message box reports.
    bool PrepareBatchCommandFile();

    // The commands New, New from batch command file, Open and Save As with their guard against a running
    // engine. The two New have the project made by a dialog of the host; the present project stays until the
    // user has accepted it.
    bool CommandNew();
    bool CommandNewBatch();
    // Asks for the project when `path` is empty. Offers what EndNow has kept of it.
    bool CommandOpen(std::filesystem::path path = {});
    // Offers to open what EndNow has kept of one of these projects, or of one that was never saved. The look
    // at the disks may take longer than the host has patience: then the question comes with a message.
    void OfferUnsaved(const std::vector<std::filesystem::path>& projects);
    bool CommandSaveAs();
    bool CanCloseFrame() override;

    // For a program that has to end at once: stops a run, keeps its result so far, and keeps unsaved changes
    // (CUnsavedWork). Asks nothing. False when no folder takes the changes.
    bool EndNow();

  protected:
    void LoadFrom(const std::filesystem::path& path) override;
    bool StoreTo(const std::filesystem::path& path) override;

  private:
    // The host makes a project, which takes the place of the present one. A cancelled dialog changes nothing
    // and returns true; false when there is no new project for another reason, or it could not be saved.
    bool OnNewDocument() override;
    bool OnNewBatchDocument(const std::filesystem::path& commandFile);
    bool TakeProject(EOutcome outcome, SMadeProject made, EResultName resultName);
    bool OnNewEmptyDocument();
    bool OnOpenDocument(const std::filesystem::path& path) override;
    bool OnSaveDocument(const std::filesystem::path& path) override;
    bool OnSaveCopy(const std::filesystem::path& path) override;
    void DiscardChanges() override { m_unsaved.Discard(); }
    void DeleteContents() override;
    void LetGo();

    bool OpenRestored(const std::filesystem::path& file);
    // Refuses with the text while the engine runs.
    bool RefuseWhileRunning(EText text);
    bool SaveBeforeRun();
    // Stores the project with the result under this path; the open project keeps its own.
    bool StoreWithResult(const std::filesystem::path& path, std::filesystem::path result);
    bool SaveUnder(const std::filesystem::path& path, std::filesystem::path result);
    CTrvDataFile& GetResult() const { return *m_pProject->simulationParameters->outputFile; }
    void FollowProject();
    void SearchFirstData();

    void AddSensorOn(CTrvDataFile& file, std::uint16_t channel);

    void OnResultRemoved(bool existed) override;
    void OnRunStarted() override;
    void OnRunEnded() override;
    void OnLayersChanged(const CTrvDataFile& file) override;
    void OnContentChanged(const CTrvDataFile& file) override;
    void OnChannelFound(CTrvDataFile& file, std::uint16_t channel) override;
    void OnRecordingKnown() override;
    bool IsResultBeingWritten() const override { return m_engineRun.IsActive(); }

    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    const bool m_expertMode;
    Outils::IMessageTarget& m_target;
    std::unique_ptr<CTrvProject> m_pProject;
    bool m_bParametersChanged = false;
    CUnsavedWork m_unsaved;
    std::optional<CAutomaticSensors> m_automaticSensors; // of a project that was not reopened since it is new

    std::set<const Outils_Objets::CObject*> m_sensorFiles; // whose channels get sensors

    CXpfFileCache m_fileCache; // outlives the queries of the manager below, as do the indexes
    const std::shared_ptr<CFileIndexes> m_indexes;
    Outils::CEndingThreads m_endingThreads;
    CFileLooks m_fileLooks;
    CEngineRun m_engineRun;
    std::unique_ptr<CProjectFiles> m_files; // one for each project
    CAsyncQueryManager m_queryManager;
};

} // namespace Application_Tarvel
