// Worker threads, events and the one ordered queue into the UI thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Outils {

// A flag that threads can wait for. Stays set until reset (manual) or until one waiter has passed
// (automatic).
class CEvent {
  public:
    enum EReset { manual, automatic };
    explicit CEvent(EReset reset = manual) : m_reset(reset) {}

    void Set();
    void Reset();
    // The state without waiting, without a lock: cheap enough for once per packet. Does not consume the
    // signal.
    bool IsSet() const { return m_set.load(std::memory_order_acquire); }
    // True when the event was set within the time.
    bool Wait(std::chrono::milliseconds time);

  private:
    EReset m_reset;
    std::atomic<bool> m_set{false};
    std::mutex m_mutex;
    std::condition_variable m_condition;
};

// A worker thread that can be started again after it has ended. The owner calls Start, Stop and Join from one
// thread. A derived class must call Kill() in its own destructor, before its members go.
class CThread {
  public:
    CThread() = default;
    virtual ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    // True from Start until Run has returned.
    bool IsAlive() const { return m_alive.load(std::memory_order_acquire); }

    // Asks the body to end and waits until it has: the forced end. The body polls, so this returns soon.
    void Kill();
    // False when the thread is running already, or the system has no thread left to give.
    virtual bool Start();
    // Asks the body to end, yields, and tells whether it has ended; the caller polls.
    virtual bool Stop();

    // Waits for the body to return. Does not ask it to.
    void Join();

  protected:
    // The thread's body.
    virtual void Run() = 0;
    // Makes a running body end soon; called from the owner's thread. The base does nothing.
    virtual void RequestStop() {}

  private:
    std::thread m_thread;
    std::atomic<bool> m_alive{false};
};

} // namespace Outils
