#include "foundation/thread.h"

#include <algorithm>
#include <cassert>
#include <system_error>

namespace Outils {

void CEvent::Set() {
    // Notified under the lock: a waiter that owns the event may destroy it as soon as it gets away.
    const std::lock_guard lock(m_mutex);
    m_set.store(true, std::memory_order_release);
    if (m_reset == automatic)
        m_condition.notify_one();
    else
        m_condition.notify_all();
}

void CEvent::Reset() {
    const std::lock_guard lock(m_mutex);
    m_set.store(false, std::memory_order_release);
}

bool CEvent::Wait(std::chrono::milliseconds time) {
    // A wait for the longest representable time would overflow the clock and return at once.
    constexpr std::chrono::milliseconds longest = std::chrono::hours(24 * 365);
    std::unique_lock lock(m_mutex);
    if (!m_condition.wait_for(lock, std::min(time, longest), [this] { return IsSet(); })) return false;
    if (m_reset == automatic) m_set.store(false, std::memory_order_release);
    return true;
}

CThread::~CThread() {
    // Too late to ask the body to end: the derived part, which it works on, is destroyed.
    assert(!m_thread.joinable() && "a thread class must call Kill() in its own destructor");
    Join();
}

bool CThread::Start() {
    if (IsAlive()) return false;
    Join();
    m_alive.store(true, std::memory_order_release);
    try {
        m_thread = std::thread([this] {
            Run();
            m_alive.store(false, std::memory_order_release);
        });
    } catch (const std::system_error&) {
        m_alive.store(false, std::memory_order_release);
        return false;
    }
    return true;
}

bool CThread::Stop() {
    RequestStop();
    std::this_thread::yield();
    return !IsAlive();
}

void CThread::Kill() {
    RequestStop();
    Join();
}

void CThread::Join() {
    if (m_thread.joinable()) m_thread.join();
}

void CEndingThreads::Take(std::unique_ptr<CThread> thread, std::shared_ptr<void> uses) {
    m_threads.remove_if([](const SEntry& entry) { return !entry.thread->IsAlive(); });
    if (thread && !thread->Stop()) m_threads.push_back({std::move(uses), std::move(thread)});
}

} // namespace Outils
