#include "common/run_control.h"

namespace Compagnon {

void CRunControl::Command(std::string_view word) {
    {
        const std::lock_guard lock(m_mutex);
        if (word == "start")
            m_started = true;
        else if (word == "pause")
            m_paused = true;
        else if (word == "resume")
            m_paused = false;
        else if (word == "stop")
            m_stopped = true;
        else
            return;
    }
    m_changed.notify_all();
}

bool CRunControl::WaitForStart() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_started || m_stopped; });
    return !m_stopped;
}

bool CRunControl::GoOn() {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_paused || m_stopped; });
    return !m_stopped;
}

} // namespace Compagnon
