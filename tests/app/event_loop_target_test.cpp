#include "app/event_loop_target.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <map>
#include <thread>
#include <vector>

using Application_Tarvel::CEventLoopTarget;

namespace {

TEST(EventLoopTarget, KeepsTheOrderOfEveryThread) {
    constexpr int kThreads = 4, kMessages = 2000;
    CEventLoopTarget target;
    std::map<int, std::vector<int>> seen; // by thread
    int count = 0;
    std::vector<std::thread> threads;
    for (int id = 0; id < kThreads; ++id)
        threads.emplace_back([&, id] {
            for (int i = 0; i < kMessages; ++i)
                target.Post([&, id, i] {
                    seen[id].push_back(i);
                    ++count;
                });
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return count == kThreads * kMessages; }, 30'000));
    for (auto& thread : threads) thread.join();
    for (const auto& [id, order] : seen) EXPECT_TRUE(std::is_sorted(order.begin(), order.end())) << id;
}

TEST(EventLoopTarget, ADialogOpenedByAMessageDoesNotHoldUpTheRest) {
    CEventLoopTarget target;
    std::string seen;
    QEventLoop dialog;
    target.Post([&] {
        seen += "<";
        dialog.exec();
        seen += ">";
    });
    for (const char letter : {'a', 'b', 'c'})
        target.Post([&, letter] {
            seen += letter;
            if (letter == 'a') target.Post([&] { seen += 'z'; });
        });
    target.Post([&] { dialog.quit(); });
    EXPECT_TRUE(QTest::qWaitFor([&] { return seen.ends_with('>'); }, 30'000));
    QCoreApplication::processEvents();
    EXPECT_TRUE(seen == "<abcz>" || seen == "<abc>z") << seen;
}

TEST(EventLoopTarget, NothingRunsOnceItIsGone) {
    bool ran = false;
    auto kept = std::make_shared<int>();
    {
        CEventLoopTarget target;
        target.Post([&ran, kept] { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST(EventLoopTarget, AFloodLeavesTimeForOthers) {
    CEventLoopTarget target;
    bool userActed = false, over = false;
    std::function<void()> flood = [&] {
        if (!userActed && !over) target.Post(flood);
    };
    target.Post(flood);
    QTimer::singleShot(0, [&] { userActed = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return userActed; }, 30'000));
    over = true;
    QCoreApplication::processEvents();
}

} // namespace
