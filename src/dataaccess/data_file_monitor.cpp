#include "dataaccess/data_file_monitor.h"

#include <sys/stat.h>
#include <utility>

namespace Application_Tarvel {

namespace {

std::optional<SFileEntry> FindFile(const std::filesystem::path& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return SFileEntry{static_cast<std::uint64_t>(status.st_size), static_cast<std::uint64_t>(status.st_dev),
                      static_cast<std::uint64_t>(status.st_ino)};
}

} // namespace

std::optional<EFileChange> CWatchedFile::Update(const std::optional<SFileEntry>& found) {
    if (m_last && found && m_last->size == found->size) return std::nullopt;
    const auto former = std::exchange(m_last, found);
    if (!found) return former ? std::optional(EFileChange::disappeared) : std::nullopt;
    if (!former) return EFileChange::appeared;
    const bool same = found->device == former->device && found->number == former->number;
    return same && found->size > former->size ? EFileChange::grew : EFileChange::shrank;
}

void CTrvDataFileMonitorThread::Watch(FileKey file, std::filesystem::path path) {
    auto& watch = m_watches[file];
    if (watch) return;
    watch = std::make_shared<SWatch>(SWatch{file, std::move(path)});
    Ask({watch, false});
}

void CTrvDataFileMonitorThread::Unwatch(FileKey file) {
    const auto place = m_watches.find(file);
    if (place == m_watches.end()) return;
    place->second->isHeard = false;
    Ask({std::move(place->second), true});
    m_watches.erase(place);
}

void CTrvDataFileMonitorThread::Ask(SRequest request) {
    const bool ends = request.ends;
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(std::move(request));
        m_stop = m_stop && IsAlive();
    }
    m_wake.notify_all();
    if (!ends && !IsAlive()) Start();
}

void CTrvDataFileMonitorThread::RequestStop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
}

void CTrvDataFileMonitorThread::Run() {
    auto nextPoll = std::chrono::steady_clock::now() + m_period;
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait_until(lock, nextPoll, [this] { return m_stop || !m_requests.empty(); });
            if (m_stop) return;
            for (SRequest& request : m_requests) {
                if (request.ends)
                    m_polled.erase(request.watch);
                else
                    m_polled.insert(std::move(request.watch));
            }
            m_requests.clear();
        }
        if (std::chrono::steady_clock::now() < nextPoll) continue;
        Poll();
        nextPoll = std::chrono::steady_clock::now() + m_period;
    }
}

void CTrvDataFileMonitorThread::Poll() {
    for (const auto& watch : m_polled) {
        const auto change = watch->state.Update(FindFile(watch->path));
        if (!change) continue;
        m_port.Post([report = m_onChange, change = *change, watch] {
            if (watch->isHeard) report(change, watch->file);
        });
    }
}

} // namespace Application_Tarvel
