#include "dataaccess/async_query.h"

#include <algorithm>
#include <new>
#include <utility>

namespace Application_Tarvel {

namespace {

// A result too big for the memory fails its query and nothing else.
EQueryEnd Execute(CAsyncQuery& query) {
    try {
        return query.Execute();
    } catch (const std::bad_alloc&) {
        return EQueryEnd::failed;
    }
}

} // namespace

void CAsyncQueryLoaderThread::Run() {
    for (;;) {
        std::shared_ptr<CAsyncQuery> query;
        {
            const std::lock_guard lock(m_mutex);
            if (m_stop || m_queue.empty()) {
                // Told under the lock: a Submit that comes now starts the thread again.
                m_serving = false;
                return;
            }
            query = m_queue.front();
            m_queue.pop_front();
            m_current = query;
        }
        query->m_state = CAsyncQuery::running;
        const EQueryEnd end = Execute(*query);
        {
            const std::lock_guard lock(m_mutex);
            m_current.reset();
        }
        const bool isCancelled = end == EQueryEnd::cancelled;
        query->m_state = isCancelled ? CAsyncQuery::cancelled : CAsyncQuery::finished;
        // Moved, so that the last hold on a query, and on what it captures, is let go on the UI thread.
        if (isCancelled)
            m_port.Post([query = std::move(query)] { query->OnCancelled(); });
        else
            m_port.Post([query = std::move(query), end] { query->OnFinished(end == EQueryEnd::done); });
    }
}

void CAsyncQueryLoaderThread::FailQueued() {
    const std::lock_guard lock(m_mutex);
    m_serving = false;
    for (const auto& query : m_queue) {
        query->m_state = CAsyncQuery::finished;
        m_port.Post([query] { query->OnFinished(false); });
    }
    m_queue.clear();
}

void CAsyncQueryLoaderThread::RequestStop() {
    const std::lock_guard lock(m_mutex);
    m_stop = true;
    if (m_current) m_current->RequestCancel();
}

// A loader that was asked to end may be held by a read that the system does not answer: another one takes its
// queue over.
void CAsyncQueryManager::ReplaceStoppedLoader() {
    std::deque<std::shared_ptr<CAsyncQuery>> queue;
    {
        const std::lock_guard lock(m_loader->m_mutex);
        if (!m_loader->m_stop || !m_loader->m_serving) return;
        queue.swap(m_loader->m_queue);
    }
    auto fresh = std::make_unique<CAsyncQueryLoaderThread>(m_port);
    fresh->m_queue = std::move(queue);
    m_stopped.Take(std::exchange(m_loader, std::move(fresh)));
}

void CAsyncQueryManager::Submit(const std::shared_ptr<CAsyncQuery>& query) {
    ReplaceStoppedLoader();
    bool start = false;
    {
        const std::lock_guard lock(m_loader->m_mutex);
        auto& queue = m_loader->m_queue;
        if (m_loader->m_current != query && std::find(queue.begin(), queue.end(), query) == queue.end()) {
            query->m_state = CAsyncQuery::queued;
            queue.push_back(query);
        }
        m_loader->m_stop = false;
        start = !m_loader->m_serving && !queue.empty();
        if (start) m_loader->m_serving = true;
    }
    if (!start) return;
    // A former run of the thread has left its loop for good and is at most on its last instructions.
    m_loader->Join();
    if (!m_loader->Start()) m_loader->FailQueued();
}

bool CAsyncQueryManager::Cancel(const std::shared_ptr<CAsyncQuery>& query) {
    const std::lock_guard lock(m_loader->m_mutex);
    if (m_loader->m_current == query) {
        query->RequestCancel();
        return true;
    }
    auto& queue = m_loader->m_queue;
    const auto place = std::find(queue.begin(), queue.end(), query);
    if (place == queue.end()) return false;
    queue.erase(place);
    query->m_state = CAsyncQuery::cancelled;
    m_port.Post([query] { query->OnCancelled(); });
    return true;
}

bool CAsyncQueryManager::Stop() {
    if (!m_loader->IsAlive()) return true;
    return m_loader->Stop();
}

} // namespace Application_Tarvel
