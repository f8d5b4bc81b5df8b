// How results of background threads reach the UI thread: one ordered queue of closures.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace Outils {

// Takes closures from any thread and runs them later on the UI thread, in the order in which they were
// posted.
class IMessageTarget {
  public:
    virtual ~IMessageTarget() = default;
    // Thread-safe; never runs the closure itself.
    virtual void Post(std::function<void()> message) = 0;
};

// A plain queue for programs and tests without a window: the thread that calls the Run operations is the UI
// thread.
class CMessageQueue : public IMessageTarget {
  public:
    void Post(std::function<void()> message) override;
    // Runs all that is queued, also what is posted meanwhile; the count run.
    std::size_t RunPending();
    // Waits at most `time` for a message and runs one. False when none came.
    bool RunOne(std::chrono::milliseconds time);
    // Runs messages until `done` is true (asked before each) or the time is over; the last answer of `done`.
    bool RunUntil(const std::function<bool()>& done, std::chrono::milliseconds time);

  private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    std::deque<std::function<void()>> m_messages;
};

// One receiver's door to the queue: what is still queued when the door is closed or destroyed, on the UI
// thread, never runs.
class CMessagePort {
  public:
    // `target` must outlive the port.
    explicit CMessagePort(IMessageTarget& target) : m_target(target), m_open(std::make_shared<bool>(true)) {}
    ~CMessagePort() { Close(); }
    CMessagePort(const CMessagePort&) = delete;
    CMessagePort& operator=(const CMessagePort&) = delete;

    // For a receiver that goes before its senders do: they may go on posting.
    void Close() { *m_open = false; }

    // Thread-safe while the port lives. The flag is read and written on the UI thread only.
    void Post(std::function<void()> message) {
        m_target.Post([open = m_open, message = std::move(message)] {
            if (*open) message();
        });
    }

  private:
    IMessageTarget& m_target;
    std::shared_ptr<bool> m_open;
};

} // namespace Outils
