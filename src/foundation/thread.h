// Worker threads, events and the one ordered queue into the UI thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

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

    // Asks the body to end and waits until it has: the forced end. The body polls, so this returns soon,
    // unless the system holds it in a read: an owner that may not wait hands it to CEndingThreads instead.
    void Kill();
    // False when the thread is running already, or the system has no thread left to give.
    virtual bool Start();
    // Asks the body to end, and yields. True when the body has ended; the caller polls.
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

// Runs one function with an event that asks it to give up.
class CTask final : public CThread {
  public:
    explicit CTask(std::function<void(const CEvent& cancel)> work) : m_work(std::move(work)) {}
    ~CTask() override { Kill(); }

  protected:
    void Run() override { m_work(m_cancel); }
    void RequestStop() override { m_cancel.Set(); }

  private:
    std::function<void(const CEvent&)> m_work;
    CEvent m_cancel;
};

// Threads whose owner goes on without waiting for their end: a read that the system does not answer, of a
// lost disk for example, may hold one. They are joined here, with this object at the latest. Owner's thread
// only.
class CEndingThreads {
  public:
    // Asks the thread to end and takes it over, with what it uses.
    void Take(std::unique_ptr<CThread> thread, std::shared_ptr<void> uses = nullptr);

  private:
    struct SEntry {
        std::shared_ptr<void> uses;
        std::unique_ptr<CThread> thread; // goes first
    };
    std::list<SEntry> m_threads;
};

} // namespace Outils
