// Start, pause, resume and stop of a run, commanded from another thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string_view>

namespace Compagnon {

// Any thread. Stop is final: a start before or after it has no effect.
class CRunControl {
  public:
    // Takes one of the words "start", "pause", "resume", "stop"; ignores any other.
    void Command(std::string_view word);

    // Waits for the first start; false when stop comes first.
    bool WaitForStart();
    // Waits while paused; false once stopped. Cheap enough for once in a few samples.
    bool GoOn();

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_started = false;
    bool m_paused = false;
    bool m_stopped = false;
};

} // namespace Compagnon
