// Requests that run in the background: one first-in first-out queue, one loader thread, no priorities. A view
// feels live because it cancels its stale query when the user moves on.
#pragma once

#include "foundation/message_target.h"
#include "foundation/thread.h"

#include <deque>
#include <memory>
#include <mutex>

namespace Application_Tarvel {

// How a query ended.
enum class EQueryEnd { done, failed, cancelled };

// One request. It is shared by its owner and the manager until one of its two closing operations has run.
class CAsyncQuery {
  public:
    enum EState { fresh = 0, queued = 1, running = 2, finished = 3, cancelled = 4 };

    virtual ~CAsyncQuery() = default;

    // Thread-safe.
    EState GetState() const { return m_state.load(std::memory_order_acquire); }

    // The work. Loader thread only. Of all exceptions only std::bad_alloc may leave it, and counts as
    // failure.
    virtual EQueryEnd Execute() = 0;
    // Makes a running Execute stop soon. Called from the owner's thread, while Execute may run.
    virtual void RequestCancel() {}

    // Exactly one of the two runs, on the UI thread.
    virtual void OnFinished(bool success) = 0;
    virtual void OnCancelled() = 0;

  private:
    friend class CAsyncQueryLoaderThread;
    friend class CAsyncQueryManager;
    std::atomic<EState> m_state{fresh};
};

class CAsyncQueryManager;

// Runs the queued queries one after the other and ends when none is left.
class CAsyncQueryLoaderThread : public Outils::CThread {
  public:
    explicit CAsyncQueryLoaderThread(Outils::CMessagePort& port) : m_port(port) {}
    ~CAsyncQueryLoaderThread() override { Kill(); }

  protected:
    void Run() override;
    void RequestStop() override;

  private:
    friend class CAsyncQueryManager;

    // For a system without a free thread: a failure now is better than an answer that never comes.
    void FailQueued();

    Outils::CMessagePort& m_port;
    std::mutex m_mutex; // guards what follows
    std::deque<std::shared_ptr<CAsyncQuery>> m_queue;
    std::shared_ptr<CAsyncQuery> m_current;
    bool m_stop = false;
    bool m_serving = false; // Run will look at the queue again
};

// All operations on the UI thread; none waits for a query. Destroying the manager does; callbacks that are
// still queued then never run.
class CAsyncQueryManager {
  public:
    // `target` must outlive the manager.
    explicit CAsyncQueryManager(Outils::IMessageTarget& target)
        : m_port(target), m_loader(std::make_unique<CAsyncQueryLoaderThread>(m_port)) {}

    // Appends the query unless it is queued or running, and starts the loader if it is not at work.
    void Submit(const std::shared_ptr<CAsyncQuery>& query);
    // Withdraws a queued query or asks the running one to stop; its OnCancelled comes later. False when there
    // was nothing to do: the query has finished, was never submitted, or has been asked to stop by Stop and
    // runs on a loader that was replaced since; then its closing operation is still to come.
    bool Cancel(const std::shared_ptr<CAsyncQuery>& query);
    // Asks the loader to end after its current query, which is asked to stop; true once the loader has ended.
    // Queued queries stay queued and run after the next Submit, which does not wait for a loader that has not
    // ended yet.
    bool Stop();

  private:
    void ReplaceStoppedLoader();

    Outils::CMessagePort m_port;
    Outils::CEndingThreads m_stopped; // loaders that were asked to end
    std::unique_ptr<CAsyncQueryLoaderThread> m_loader;
};

} // namespace Application_Tarvel
