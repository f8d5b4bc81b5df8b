// Polls the sizes of data files and reports when one appears, grows, shrinks or goes away. Only a regular
// file counts as one: a folder, a FIFO or a device of that name does not, and nothing is opened.
#pragma once

#include "foundation/message_target.h"
#include "foundation/thread.h"

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <vector>

namespace Application_Tarvel {

// What happened to a file. The codes are those of the document's messages.
enum class EFileChange { appeared = 0, grew = 1, shrank = 2, disappeared = 3 };

// What the directory says of a file.
struct SFileEntry {
    std::uint64_t size = 0;
    std::uint64_t device = 0; // with the number, which file it is
    std::uint64_t number = 0;
};

// The state of one watched file between two looks at its size.
class CWatchedFile {
  public:
    // Takes in what is found now, or nothing when there is no such file; returns the change. A file that took
    // the place of another one is no growth of it, however long it is: it counts as one that shrank. A file
    // rewritten to exactly the same size goes unnoticed.
    std::optional<EFileChange> Update(const std::optional<SFileEntry>& found);

  private:
    std::optional<SFileEntry> m_last; // at the last change
};

class CTrvDataFileMonitorThread : public Outils::CThread {
  public:
    using FileKey = const void*; // identity of the data file for the owner; never followed
    // Runs on the UI thread.
    using OnChange = std::function<void(EFileChange change, FileKey file)>;

    // `port` must outlive the thread. `period` is the time before the first poll and between two polls.
    CTrvDataFileMonitorThread(Outils::CMessagePort& port, OnChange onChange,
                              std::chrono::milliseconds period = std::chrono::seconds(2))
        : m_port(port), m_onChange(std::move(onChange)), m_period(period) {}
    ~CTrvDataFileMonitorThread() override { Kill(); }

    // Adds a file and starts the thread if need be; a file that is watched already changes nothing. One that
    // exists is reported as appeared by the next poll. On the UI thread.
    void Watch(FileKey file, std::filesystem::path path);
    // From here on nothing is reported of the file, not even a change that was posted already. On the UI
    // thread.
    void Unwatch(FileKey file);

  protected:
    void Run() override;
    void RequestStop() override;

  private:
    // A file from Watch to Unwatch. The next watch of the same file is another one.
    struct SWatch {
        const FileKey file;
        const std::filesystem::path path;
        CWatchedFile state{}; // of the thread alone
        bool isHeard = true;  // of the UI thread alone
    };
    struct SRequest {
        std::shared_ptr<SWatch> watch;
        bool ends;
    };

    void Ask(SRequest request);
    void Poll();

    Outils::CMessagePort& m_port;
    OnChange m_onChange;
    std::chrono::milliseconds m_period;
    std::map<FileKey, std::shared_ptr<SWatch>> m_watches; // of the UI thread alone
    std::set<std::shared_ptr<SWatch>> m_polled;           // of the thread alone

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_wake;
    std::vector<SRequest> m_requests; // in the order in which they were made
    bool m_stop = false;
};

} // namespace Application_Tarvel
