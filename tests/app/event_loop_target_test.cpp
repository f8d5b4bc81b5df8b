#include "app/event_loop_target.h"

#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

using Application_Tarvel::CEventLoopTarget;

namespace {

TEST(EventLoopTarget, KeepsTheOrderOfEveryThread) {
    CEventLoopTarget target;
    std::vector<int> seen[4];
    std::size_t count = 0;
    std::vector<std::thread> threads;
    for (auto& order : seen)
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) target.Post([&, i] { order.push_back(i), ++count; });
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return count == 2000 * std::size(seen); }, 30'000));
    for (auto& thread : threads) thread.join();
    for (const auto& order : seen) EXPECT_TRUE(std::ranges::is_sorted(order));
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
