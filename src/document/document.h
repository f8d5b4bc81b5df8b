// The one project document: it holds the project, the engine's process, the threads that look at the data
// files and the query manager. Every edit of the model passes through it, and every change reaches the views
// from it. GUI thread only; background threads come back through the message target.
#pragma once

#include "dataaccess/async_query.h"
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/data_file_monitor.h"
#include "dataaccess/view_queries.h"
#include "document/document_base.h"
#include "document/engine_run.h"
#include "document/file_looks.h"
#include "document/file_state.h"
#include "foundation/texts.h"
#include "model/project.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

using Outils_Texte::EText;

class CTrvDocumentEdits;

using Metier_Tarvel::CTrvDataFile;
using Metier_Tarvel::CTrvProject;

class CTrvDocument final : public CDocumentEx, private IEngineRunListener {
  public:
    // All three must outlive the document.
    CTrvDocument(IDocumentHost& host, Outils::IMessageTarget& target,
                 const Outils_Configuration::CTrvCnfConfigFile& configuration);
    ~CTrvDocument() override;

    // Null for the empty document.
    CTrvProject* GetProject() const { return m_pProject.get(); }
    CAsyncQueryManager& GetQueryManager() { return m_queryManager; }
    CXpfFileCache& GetFileCache() { return m_fileCache; }
    const Outils_Configuration::CTrvCnfConfigFile& GetConfiguration() const { return m_configuration; }
    // Whether a data file is being scanned or looked at.
    bool IsAnalysing() const;
    // For work on files for which the UI thread must not wait.
    CFileLooks& GetFileLooks() { return m_fileLooks; }
    // Where a query finds a channel of a file of the project.
    SChannelAddress GetAddress(const CTrvDataFile& file, std::uint16_t channel);

    // Takes over a project made from a recording: starts the analysis of its main input file, looks for the
    // first UTC date and position, and saves it under `path` at once, so that a new project always exists on
    // disk. The present project is closed first. Until it is closed, event markers and the mount are added as
    // the analysis meets their channels. False when the closing was refused or the save failed; the project
    // then stays, unsaved. A project from a command file keeps the result's name that the file gives.
    enum class EResultName { ofProject, kept };
    bool NewFromProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                        EResultName resultName = EResultName::ofProject);

    // The edits of the project, one method each: document/edits.h.
    CTrvDocumentEdits GetEdits();
    // What every edit does behind its change of the model.
    void ProjectChanged(EHint hint, const Outils_Objets::CObject* object);
    // For the edits of data files: the analysis and monitoring of a file that was just added, and their end,
    // with all that was learned of the file, before it is deleted.
    void FollowDataFile(CTrvDataFile& file);
    void ForgetDataFile(const CTrvDataFile& file);
    // What the analysis of an input file finds of its UTC origin and position within the time that the
    // settings allow.
    SFirstData WaitForFirstData(const CTrvDataFile& file);
    // For views whose query on a file of the project failed: if the file is the reason, the output panel says
    // so, once until the file is whole again.
    void OnQueryFailed(const CTrvDataFile& file);
    using CDocumentEx::GetHost;
    // The project changed since the last save or load.
    bool AreParametersChanged() const { return m_bParametersChanged; }

    // Whether the engine is at work; the first call after its end tells the views.
    bool IsSimulationRunning();
    // Starts the engine on the project; true when the run started. Every refusal is told by a message box.
    bool StartSimulation();
    // Asks the engine to stop; true when it was found running. A second request more than 5 seconds after the
    // first offers to terminate it.
    bool StopSimulation();

    // Writes the processing as a batch command file under a name that the user gives; false when a rule is
    // broken, the user cancelled, or the file could not be written, which is told.
    bool PrepareBatchCommandFile();

    // The commands New, New from batch command file, Open and Save As with their guard against a running
    // engine. The two New have the project made by a dialog of the host; the present project stays until the
    // user has accepted it.
    bool CommandNew();
    bool CommandNewBatch();
    bool CommandOpen(const std::filesystem::path& path);
    bool CommandSaveAs();

    // Each has the host make a project, and sets it up in the place of the present one. A cancelled dialog
    // changes nothing and returns true; false when there is no new project for another reason, or it could
    // not be saved.
    bool OnNewDocument() override;
    bool OnNewBatchDocument(const std::filesystem::path& commandFile);
    bool OnNewEmptyDocument();
    bool OnOpenDocument(const std::filesystem::path& path) override;
    bool OnSaveDocument(const std::filesystem::path& path) override;
    void DeleteContents() override;
    bool CanCloseFrame() override;

  protected:
    void LoadFrom(const std::filesystem::path& path) override;
    bool StoreTo(const std::filesystem::path& path) override;

  private:
    // Puts the project in the place of the present one; false when it could not be saved.
    bool TakeProject(SMadeProject made, EResultName resultName);
    // Fills the empty document with a new project; false when it could not be saved.
    bool SetUpProject(std::unique_ptr<CTrvProject> project, const std::filesystem::path& path,
                      EResultName resultName);
    // Refuses with the text while the engine runs.
    bool RefuseWhileRunning(EText text);
    bool SaveBeforeRun();
    void OnResultRemoved(bool existed) override;
    void OnRunStarted() override;
    void OnRunEnded() override;

    // Main input, output and external files, in this order.
    std::vector<CTrvDataFile*> GetDataFiles() const;
    // The file of this identity, or null if the project has none (any more).
    CTrvDataFile* FindDataFile(const void* key) const;
    bool IsResultFile(const CTrvDataFile& file) const;
    // Brings the file's layers in line with what its head says; an empty description leaves it none.
    void RefreshDataLayers(CTrvDataFile& file, const Metier_Tarvel_DataModel::SFileDescription& description);
    // Forgets the file as it was: it is not there, or about to be written anew.
    void ForgetContent(CTrvDataFile& file);
    void StartAnalysis(CTrvDataFile& file);
    // Does not wait for the end. With `reset` the thread is forgotten: the next analysis starts from the
    // beginning of the file.
    void StopAnalysis(const CTrvDataFile& file, bool reset);
    void WatchFiles();
    // Has the monitor look at the file as at one that it has never seen.
    void WatchAnew(const CTrvDataFile& file);
    // Forgets what was seen of the file, and hears no more of it.
    void Unwatch(const CTrvDataFile& file);
    void StopThreads();
    void SearchFirstData();

    // Has the files of a project that was just opened or made looked at, and takes the answers that come in
    // time. The others come as those to later looks do.
    void LookAtFiles(bool checkVersions);
    void LookAtFile(CTrvDataFile& file);
    void LookAtRecording();
    void OnLooked(CTrvDataFile& file, SFileLook look);
    // Notes whether the head is whole, and brings the layers in line if they are to follow.
    void TakeHead(CTrvDataFile& file, const SFileLook& look);
    void FollowFirstLooks();
    void FollowLook(CTrvDataFile& file, const SFileLook& look);
    // Tells which of the files are none, and offers to bring those of an older layout up to date; these are
    // then looked at anew.
    void CheckDataFileVersions(const std::map<const CTrvDataFile*, SFileLook>& looks);
    // Does so once all first looks that came late have their answers.
    void CheckLateVersions();
    void OnChannelFound(const void* key, std::uint16_t channel);
    void AddSensorAutomatically(CTrvDataFile& file, std::uint16_t channel);
    void OnFileChanged(EFileChange change, const void* key);
    void OnDamageFound(const void* key, std::int64_t position);
    // The running engine owns the result: nothing that happens to it is a fault.
    bool IsBeingWritten(const CTrvDataFile& file) const {
        return m_engineRun.IsActive() && IsResultFile(file);
    }
    void Tell(EText text, const CTrvDataFile& file);

    const Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    // The door for the messages of analysers and monitor; a new one for each project, so that what threads of
    // a former project have posted never reaches this one.
    std::shared_ptr<Outils::CMessagePort> m_messageWnd;
    Outils::IMessageTarget& m_target;

    std::unique_ptr<CTrvProject> m_pProject;
    bool m_bParametersChanged = false;
    bool m_bSavingNewBatchProject = false;
    bool m_bAutoAddSensors = false; // a new project is being filled: sensors are added as channels are met
    std::set<std::string> m_autoAddedKeys; // the channels for which that was done

    // Each with a door of its own: what an analysis that was given up has posted is not taken for news of the
    // file that stands there now.
    struct SAnalysis {
        std::shared_ptr<Outils::CMessagePort> port;
        std::unique_ptr<CTrvDataFileAnalyzerThread> thread;
    };
    // Has its thread end by itself, unheard.
    void Retire(SAnalysis& analysis);
    std::map<const CTrvDataFile*, SAnalysis> m_analyzers;
    std::map<const CTrvDataFile*, SFileState> m_fileStates;
    std::unique_ptr<CTrvDataFileMonitorThread> m_fileMonitor; // one for each project
    Outils::CEndingThreads m_endingThreads;                   // former ones of both kinds
    CFileLooks m_fileLooks;
    CEngineRun m_engineRun;
    // While a project is opened or made, the views, which do not know it yet, are told nothing.
    bool m_bSettingUp = false;
    // The answers to the first looks: meanwhile all, later those that wait for CheckLateVersions.
    std::map<const CTrvDataFile*, SFileLook> m_firstLooks;
    bool m_bCheckingVersions = false; // a question of CheckLateVersions may be open
    CXpfFileCache m_fileCache;        // outlives the queries of the manager below
    CAsyncQueryManager m_queryManager;
};

} // namespace Application_Tarvel
