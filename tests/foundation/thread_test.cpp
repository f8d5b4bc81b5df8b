#include "foundation/message_target.h"
#include "foundation/thread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Outils;
using namespace std::chrono_literals;

namespace {

constexpr auto kForever = std::chrono::milliseconds::max();

// Counts its runs; a run lasts until Stop.
class CWorker : public CThread {
  public:
    ~CWorker() override { Kill(); }

    CEvent running;
    CEvent end{CEvent::automatic};
    int runs = 0; // written by the body, read after it has ended

  protected:
    void Run() override {
        ++runs;
        running.Set();
        end.Wait(kForever);
    }
    void RequestStop() override { end.Set(); }
};

TEST(Thread, StartsAgainAfterItHasEnded) {
    CWorker worker;
    EXPECT_FALSE(worker.IsAlive());
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(worker.Start());
        EXPECT_TRUE(worker.running.Wait(kForever));
        EXPECT_TRUE(worker.IsAlive());
        EXPECT_FALSE(worker.Start()) << "while it runs";
        worker.running.Reset();
        if (round == 2)
            worker.Kill();
        else
            while (!worker.Stop()) {
            }
        EXPECT_FALSE(worker.IsAlive());
        worker.end.Reset();
    }
    worker.Join();
    EXPECT_EQ(worker.runs, 3);
    ASSERT_TRUE(worker.Start()); // destroyed while it runs
}

TEST(Event, ManualStaysAutomaticLetsOnePass) {
    CEvent manual;
    EXPECT_FALSE(manual.Wait(0ms));
    manual.Set();
    EXPECT_TRUE(manual.Wait(0ms) && manual.Wait(0ms) && manual.IsSet());
    manual.Reset();
    EXPECT_FALSE(manual.IsSet() || manual.Wait(0ms));

    CEvent automatic(CEvent::automatic);
    automatic.Set();
    automatic.Set();
    EXPECT_TRUE(automatic.IsSet());
    EXPECT_TRUE(automatic.Wait(0ms));
    EXPECT_FALSE(automatic.Wait(0ms));
}

TEST(MessageQueue, RunsInTheOrderOfPosting) {
    CMessageQueue queue;
    std::vector<int> order;
    queue.Post([&] {
        order.push_back(1);
        queue.Post([&] { order.push_back(3); });
    });
    queue.Post([&] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    EXPECT_EQ(queue.RunPending(), 3u);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
    EXPECT_FALSE(queue.RunOne(0ms));
    EXPECT_FALSE(queue.RunUntil([] { return false; }, 0ms));
}

TEST(MessageQueue, KeepsTheOrderOfEveryThread) {
    CMessageQueue queue;
    constexpr int count = 2000;
    std::vector<int> seen[2];
    std::vector<std::thread> threads;
    for (auto& order : seen)
        threads.emplace_back([&] {
            for (int i = 0; i < count; ++i) queue.Post([&order, i] { order.push_back(i); });
        });
    EXPECT_TRUE(queue.RunUntil([&] { return seen[0].size() + seen[1].size() == 2 * count; }, kForever));
    for (auto& thread : threads) thread.join();
    for (const auto& order : seen) EXPECT_TRUE(std::ranges::is_sorted(order));
}

TEST(MessagePort, ClosedPortRunsNothing) {
    CMessageQueue queue;
    int runs = 0;
    auto closing = std::make_unique<CMessagePort>(queue);
    CMessagePort other(queue);
    closing->Post([&] { ++runs; });
    closing->Post([&] { closing.reset(); }); // closes itself from its own message
    closing->Post([&] { runs += 100; });
    other.Post([&] { runs += 10; });
    EXPECT_EQ(queue.RunPending(), 4u);
    EXPECT_EQ(runs, 11);
}

} // namespace
