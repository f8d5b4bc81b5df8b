// All that follows the data files of one project: their analyses, the looks at their heads, the monitor, and
// what is known of each file. Made and destroyed with its project. UI thread only.
#pragma once

#include "dataaccess/data_file_monitor.h"
#include "dataaccess/view_queries.h"
#include "document/file_analyses.h"
#include "document/file_look.h"
#include "document/file_looks.h"
#include "model/project.h"

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace Application_Tarvel {

class CFileIndexes;
class IDocumentHost;
using Metier_Tarvel::CTrvProject;

// What the files report to the owner of the project. Not called before CProjectFiles::Open or Make returns.
class IProjectFilesListener {
  public:
    virtual ~IProjectFilesListener() = default;
    virtual void OnLayersChanged(const CTrvDataFile& file) = 0;
    virtual void OnContentChanged(const CTrvDataFile& file) = 0;
    virtual void OnChannelFound(CTrvDataFile& file, std::uint16_t channel) = 0;
    // The recording has given its frequency or its cipher mode.
    virtual void OnRecordingKnown() = 0;
    // Whether a running engine writes the result: nothing that happens to it is then a fault.
    virtual bool IsResultBeingWritten() const = 0;
};

// What outlives one project after the other, because threads and queries use it that nobody waits for.
struct SFileServices {
    IDocumentHost& host;
    Outils::IMessageTarget& target;
    const Outils_Configuration::CTrvCnfConfigFile& configuration;
    bool expertMode;
    CFileLooks& looks;
    CXpfFileCache& cache;
    std::shared_ptr<CFileIndexes> indexes;
    Outils::CEndingThreads& ending;
};

class CProjectFiles {
  public:
    // All must outlive the object. Follows no file before Open or Make.
    CProjectFiles(CTrvProject& project, const SFileServices& services, IProjectFilesListener& listener);
    // Asks all threads to end and waits for none: a disk that does not answer may hold any of them.
    ~CProjectFiles();

    // Follows the files of a project that was opened: checks their versions, and offers to bring those of an
    // older layout up to date. Both wait for the heads of the files as long as the host has patience; the
    // answers that come late are followed like any later change.
    void Open();
    // Follows the files of a new project, and analyses its recording.
    void Make();

    // Analyses and monitors a file that was just added.
    void Follow(CTrvDataFile& file);
    // Forgets the file, and everything known of it. Call before it is deleted.
    void Forget(const CTrvDataFile& file);
    // Forgets the content of the result, which is another file now, or will be.
    void ForgetResult();
    // The engine has ended: what it wrote is a new file in all respects.
    void FollowResult();

    // Follows the file under another path, as a new file in all respects.
    void Move(CTrvDataFile& file, const std::filesystem::path& path);
    // The files that are not in their place, without the result, in the order of the project.
    std::vector<CTrvDataFile*> GetMissing() const;

    // What the analysis of an input file finds of its UTC origin and position within the time that the
    // settings allow.
    SFirstData WaitForFirstData(const CTrvDataFile& file);
    // For views whose query on the file failed: if the file is the reason, the output panel says so, once
    // until the file is whole again.
    void OnQueryFailed(const CTrvDataFile& file);
    bool IsAnalysing() const { return m_services.looks.IsBusy() || m_analyses.IsBusy(); }
    // Where a query finds a channel of a file.
    SChannelAddress GetAddress(const CTrvDataFile& file, std::uint16_t channel) const;

  private:
    // What is to be done once the look at a file has its answer; the later stages are stronger.
    enum class EStage {
        followed, // nothing: layers and views show what the last look found
        first,    // follow the file; a result that is missing was not computed yet
        changed,  // follow the file, and say so if it is missing
        replaced  // the same, and say that it is another recording
    };
    struct SFile {
        EStage stage = EStage::followed;
        bool lookAgain = false;           // changed since the question: the answer may be out of date
        bool headIsWhole = false;         // at the last look, reported or not
        EText fault = kNoText;            // reported last; none once the file is whole again
        std::int64_t damage = -1;         // the position that was reported last
        std::set<std::uint16_t> channels; // found by the analysis: the layers may come after them
    };

    std::vector<CTrvDataFile*> GetFiles() const { return m_project.simulationParameters->GetDataFiles(); }
    CTrvDataFile& GetResult() const { return *m_project.simulationParameters->outputFile; }
    // The file of this identity; null if the project does not have it any more.
    CTrvDataFile* Find(const void* key) const;
    bool IsResult(const CTrvDataFile& file) const { return &file == &GetResult(); }
    bool IsBeingWritten(const CTrvDataFile& file) const {
        return IsResult(file) && m_listener.IsResultBeingWritten();
    }
    void StartAnalysis(const CTrvDataFile& file) { m_analyses.Start(file, IsResult(file)); }
    void StopAnalysis(const CTrvDataFile& file);
    // What was learned of the content of a file that is another one now.
    void ForgetContent(const std::filesystem::path& path);
    void Watch();
    // Has the monitor look at the file as at one that it has never seen.
    void WatchAgain(const CTrvDataFile& file);
    void Unwatch(const CTrvDataFile& file);
    // Brings the file's layers in line with its head; an empty description leaves it none.
    void RefreshLayers(CTrvDataFile& file, const Metier_Tarvel_DataModel::SFileDescription& description);

    void LookAtAll();
    void LookAtFile(CTrvDataFile& file);
    void LookAtRecording();
    void OnLooked(CTrvDataFile& file, SFileLook look);
    void TakeHead(CTrvDataFile& file, const SFileLook& look);
    void FollowLook(CTrvDataFile& file, const SFileLook& look);
    void FollowFirstLooks();
    // Reports which of the files are none, and offers to bring those of an older layout up to date; these are
    // then looked at again.
    void CheckVersions(const std::map<const CTrvDataFile*, SFileLook>& looks);
    void Update(CTrvDataFile& file);
    // Checks once all first looks that came late have their answers.
    void CheckLateVersions();

    void OnChannelFound(const CTrvDataFile& key, std::uint16_t channel);
    void OnDamageFound(const CTrvDataFile& file, std::int64_t position);
    void OnFileChanged(EFileChange change, const void* key);
    void Report(EText text, const CTrvDataFile& file);

    CTrvProject& m_project;
    const SFileServices m_services;
    IProjectFilesListener& m_listener;
    const std::shared_ptr<Outils::CMessagePort> m_port; // of the monitor
    std::unique_ptr<CTrvDataFileMonitorThread> m_monitor;
    CFileAnalyses m_analyses;
    std::map<const CTrvDataFile*, SFile> m_files;
    // While Open or Make works, the views do not know the project yet.
    bool m_starting = false;
    std::set<const CTrvDataFile*> m_unchecked; // files whose version is not checked yet
    // The answers to the first looks: all while starting, later those that wait for CheckLateVersions.
    std::map<const CTrvDataFile*, SFileLook> m_firstLooks;
    bool m_isAsking = false; // a question of CheckLateVersions may be open
};

} // namespace Application_Tarvel
