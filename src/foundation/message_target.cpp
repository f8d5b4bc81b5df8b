#include "foundation/message_target.h"

#include <algorithm>

namespace Outils {

namespace {

constexpr std::chrono::milliseconds kLongestWait =
    std::chrono::hours(24 * 365); // beyond, the clock would overflow

} // namespace

void CMessageQueue::Post(std::function<void()> message) {
    const std::lock_guard lock(m_mutex);
    m_messages.push_back(std::move(message));
    m_condition.notify_one();
}

std::size_t CMessageQueue::RunPending() {
    std::size_t count = 0;
    while (RunOne(std::chrono::milliseconds(0))) ++count;
    return count;
}

bool CMessageQueue::RunOne(std::chrono::milliseconds time) {
    std::function<void()> message;
    {
        std::unique_lock lock(m_mutex);
        if (!m_condition.wait_for(lock, std::min(time, kLongestWait), [this] { return !m_messages.empty(); }))
            return false;
        message = std::move(m_messages.front());
        m_messages.pop_front();
    }
    message(); // without the lock: it may post
    return true;
}

bool CMessageQueue::RunUntil(const std::function<bool()>& done, std::chrono::milliseconds time) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::min(time, kLongestWait);
    for (;;) {
        if (done()) return true;
        const Clock::time_point now = Clock::now();
        if (now >= end) return false;
        RunOne(std::chrono::ceil<std::chrono::milliseconds>(end - now));
    }
}

} // namespace Outils
