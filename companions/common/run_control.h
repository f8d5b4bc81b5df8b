// Start, pause, resume and stop of a run, from another thread.
#pragma once

#include <condition_variable>
#include <mutex>
#include <string_view>

namespace Morvex {

// Thread-safe. Stop is final; a start before or after is forgotten then.
class CRunControl {
  public:
    // One of the words "start", "pause", "resume", "stop"; any other is ignored.
    void Command(std::string_view word);

    // Waits for the first start; false when stop comes first.
    bool WaitForStart();
    // Waits while paused; false once stopped. Cheap enough to be asked once in a few samples.
    bool GoOn();

  private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_started = false;
    bool m_paused = false;
    bool m_stopped = false;
};

} // namespace Morvex
