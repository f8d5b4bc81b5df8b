// The analyses of the data files of one project, each on a thread of its own. UI thread only.
#pragma once

#include "dataaccess/data_file_analyzer.h"
#include "foundation/message_target.h"
#include "foundation/thread.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace Metier_Tarvel {
class CTrvDataFile;
}

namespace Application_Tarvel {

using Metier_Tarvel::CTrvDataFile;

class CFileAnalyses {
  public:
    using CChannelFound = std::function<void(const CTrvDataFile& file, std::uint16_t channel)>;
    using CDamageFound = std::function<void(const CTrvDataFile& file, std::int64_t position)>;

    // `target` and `ending`, which takes the threads that are not wanted any more, must outlive the object.
    // The functions are called on the UI thread, for files that were started and not stopped since.
    // `indexes` get those of the files.
    CFileAnalyses(Outils::IMessageTarget& target, Outils::CEndingThreads& ending,
                  std::shared_ptr<CFileIndexes> indexes, CChannelFound channelFound, CDamageFound damageFound)
        : m_target(target),
          m_ending(ending),
          m_indexes(std::move(indexes)),
          m_channelFound(std::move(channelFound)),
          m_damageFound(std::move(damageFound)) {}
    // Waits for no thread.
    ~CFileAnalyses();

    // Analyses the file from where the last analysis of it ended.
    void Start(const CTrvDataFile& file, bool isResult);
    // Asks the thread to end; the next Start goes on from there.
    void Pause(const CTrvDataFile& file);
    // Forgets the analysis; the next Start begins at the beginning of the file. False when there was none.
    bool Stop(const CTrvDataFile& file);
    bool IsBusy() const;
    // What the analysis of an input file finds of its UTC origin and position within the time.
    SFirstData WaitForFirstData(const CTrvDataFile& file, std::chrono::milliseconds time);

  private:
    // Each with a port of its own: what an analysis that was given up has posted is no news of the file that
    // has its name now.
    struct SAnalysis {
        std::shared_ptr<Outils::CMessagePort> port;
        std::unique_ptr<CTrvDataFileAnalyzerThread> thread;
    };
    void Retire(SAnalysis& analysis);

    Outils::IMessageTarget& m_target;
    Outils::CEndingThreads& m_ending;
    const std::shared_ptr<CFileIndexes> m_indexes;
    const CChannelFound m_channelFound;
    const CDamageFound m_damageFound;
    std::map<const CTrvDataFile*, SAnalysis> m_analyses;
};

} // namespace Application_Tarvel
