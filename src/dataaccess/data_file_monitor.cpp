#include "dataaccess/data_file_monitor.h"

#include <utility>

namespace Application_Tarvel {

namespace {

std::optional<std::uint64_t> GetSize(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) return std::nullopt;
    const auto size = std::filesystem::file_size(path, error);
    return error ? std::nullopt : std::optional<std::uint64_t>(size);
}

} // namespace

std::optional<EFileChange> CWatchedFile::Update(std::optional<std::uint64_t> size) {
    if (!size) {
        const bool existed = std::exchange(m_exists, false);
        m_size = 0;
        return existed ? std::optional(EFileChange::disappeared) : std::nullopt;
    }
    const std::uint64_t former = std::exchange(m_size, *size);
    if (!std::exchange(m_exists, true)) return EFileChange::appeared;
    if (*size < former) return EFileChange::shrank;
    if (*size > former) return EFileChange::grew;
    return std::nullopt;
}

void CTrvDataFileMonitorThread::Watch(FileKey file, std::filesystem::path path) {
    Ask({file, std::move(path)});
}

void CTrvDataFileMonitorThread::Unwatch(FileKey file) { Ask({file, {}}); }

void CTrvDataFileMonitorThread::Ask(SRequest request) {
    const bool forget = request.path.empty();
    {
        const std::lock_guard lock(m_mutex);
        m_requests.push_back(std::move(request));
        m_stop = m_stop && IsAlive();
    }
    m_wake.notify_all();
    if (!forget && !IsAlive()) Start();
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
                if (request.path.empty())
                    m_watched.erase(request.file);
                else
                    m_watched.try_emplace(request.file, SEntry{std::move(request.path), {}});
            }
            m_requests.clear();
        }
        if (std::chrono::steady_clock::now() < nextPoll) continue;
        Poll();
        nextPoll = std::chrono::steady_clock::now() + m_period;
    }
}

void CTrvDataFileMonitorThread::Poll() {
    for (auto& [file, entry] : m_watched) {
        const auto change = entry.state.Update(GetSize(entry.path));
        if (change) m_port.Post([report = m_onChange, change = *change, key = file] { report(change, key); });
    }
}

} // namespace Application_Tarvel
