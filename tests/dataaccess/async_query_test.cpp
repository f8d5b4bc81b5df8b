#include "dataaccess/async_query.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <vector>

using namespace Application_Tarvel;
using namespace std::chrono_literals;

namespace {

// A query that runs until it is released or cancelled, and writes down what becomes of it.
class CScriptedQuery : public CAsyncQuery {
  public:
    CScriptedQuery(std::string name, std::vector<std::string>& log, bool waits)
        : m_name(std::move(name)), m_log(log) {
        if (!waits) m_go.Set();
    }

    EQueryEnd Execute() override {
        m_started.Set();
        m_go.Wait(30s);
        if (m_needsTooMuch) throw std::bad_alloc();
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        return m_succeeds ? EQueryEnd::done : EQueryEnd::failed;
    }
    void RequestCancel() override {
        m_cancel.Set();
        if (!m_isHeld) m_go.Set();
    }
    void OnFinished(bool success) override { m_log.push_back(m_name + (success ? " done" : " failed")); }
    void OnCancelled() override { m_log.push_back(m_name + " cancelled"); }

    void WaitUntilStarted() { ASSERT_TRUE(m_started.Wait(30s)); }
    void Release() { m_go.Set(); }
    bool m_succeeds = true;
    bool m_needsTooMuch = false;
    bool m_isHeld = false; // by a read that does not return: asking it to end does not help

  private:
    std::string m_name;
    std::vector<std::string>& m_log;
    Outils::CEvent m_started, m_go, m_cancel;
};

class AsyncQueries : public testing::Test {
  protected:
    std::shared_ptr<CScriptedQuery> Make(std::string name, bool waits = false) {
        return std::make_shared<CScriptedQuery>(std::move(name), m_log, waits);
    }
    void RunUntil(std::size_t count) {
        ASSERT_TRUE(m_queue.RunUntil([&] { return m_log.size() >= count; }, 30s));
    }

    Outils::CMessageQueue m_queue;
    std::vector<std::string> m_log;
    CAsyncQueryManager m_manager{m_queue};
};

TEST_F(AsyncQueries, RunInOrderAndReportOnce) {
    const auto first = Make("first", true), second = Make("second"), third = Make("third");
    third->m_succeeds = false;
    first->m_needsTooMuch = true;
    for (const auto& query : {first, second, third, second}) m_manager.Submit(query); // one queued already
    first->WaitUntilStarted();
    m_manager.Submit(first); // running already
    EXPECT_EQ(first->GetState(), CAsyncQuery::running);
    EXPECT_EQ(second->GetState(), CAsyncQuery::queued);
    first->Release();
    RunUntil(3);
    EXPECT_EQ(m_log, (std::vector<std::string>{"first failed", "second done", "third failed"}));
    EXPECT_FALSE(m_manager.Cancel(first));
    EXPECT_EQ(m_queue.RunPending(), 0u);
}

TEST_F(AsyncQueries, CancelledQueuedAndRunning) {
    const auto running = Make("running", true), queued = Make("queued"), last = Make("last");
    for (const auto& query : {running, queued, last}) m_manager.Submit(query);
    running->WaitUntilStarted();
    EXPECT_TRUE(m_manager.Cancel(queued));
    EXPECT_FALSE(m_manager.Cancel(queued));
    EXPECT_TRUE(m_manager.Cancel(running));
    EXPECT_TRUE(m_log.empty()); // callbacks come with the messages, never from within Cancel
    RunUntil(3);
    EXPECT_EQ(m_log, (std::vector<std::string>{"queued cancelled", "running cancelled", "last done"}));
    EXPECT_EQ(queued->GetState(), CAsyncQuery::cancelled);
}

TEST_F(AsyncQueries, LoaderStartsAgainForEveryBurst) {
    for (std::size_t i = 1; i <= 200; ++i) {
        m_manager.Submit(Make("q"));
        RunUntil(i);
    }
}

TEST_F(AsyncQueries, StopCancelsRunningKeepsQueued) {
    for (const bool isHeld : {false, true}) {
        m_log.clear();
        const auto running = Make("running", true), queued = Make("queued");
        running->m_isHeld = isHeld;
        m_manager.Submit(running);
        m_manager.Submit(queued);
        running->WaitUntilStarted();
        while (!m_manager.Stop() && !isHeld) std::this_thread::yield();
        EXPECT_EQ(running->GetState(), isHeld ? CAsyncQuery::running : CAsyncQuery::cancelled);
        EXPECT_EQ(queued->GetState(), CAsyncQuery::queued);
        m_manager.Submit(Make("later")); // waits for no loader that does not end
        if (isHeld) RunUntil(2);
        running->Release();
        RunUntil(3);
        std::vector<std::string> order{"queued done", "later done"};
        order.insert(isHeld ? order.end() : order.begin(), "running cancelled");
        EXPECT_EQ(m_log, order);
    }
}

TEST_F(AsyncQueries, DestroyedManagersCallNothing) {
    auto manager = std::make_unique<CAsyncQueryManager>(m_queue);
    const auto query = Make("query");
    manager->Submit(query);
    while (query->GetState() != CAsyncQuery::finished) std::this_thread::yield();
    manager.reset();
    m_queue.RunPending();
    EXPECT_TRUE(m_log.empty());
}

} // namespace
