#include "graph/view_state.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Presentation_Tarvel_Graphics;

namespace {

constexpr SPeriod Period(std::int64_t start, std::int64_t end) {
    return {CDateTimeSpan(start), CDateTimeSpan(end)};
}

const SGraphKey kDepth{nullptr, "Depth"}, kSpeed{nullptr, "Speed"};

class ViewState : public testing::Test {
  protected:
    // What a step does is written as a word, what it leaves as "start-end".
    struct SStep {
        const char* action;
        std::int64_t start, end; // of the period to set
        bool changes;
        std::int64_t shownStart, shownEnd;
    };

    void Run(std::initializer_list<SStep> steps) {
        for (const SStep& step : steps) {
            SCOPED_TRACE(std::string(step.action) + ' ' + std::to_string(step.start));
            EXPECT_EQ(Do(step.action, Period(step.start, step.end)), step.changes);
            EXPECT_EQ(m_state.GetView().period, Period(step.shownStart, step.shownEnd));
        }
    }

    CViewState m_state;
    int m_views = 0, m_cursors = 0; // changes heard of
    CViewState::CSubscription m_subscription =
        m_state.Listen([this](EViewChange change) { ++(change == EViewChange::view ? m_views : m_cursors); });

  private:
    bool Do(std::string_view action, const SPeriod& period) {
        const int before = m_views;
        if (action == "set") return m_state.SetPeriod(period);
        if (action == "grow") return m_state.FollowData(period);
        if (action == "back") return m_state.GoBack();
        if (action == "on") return m_state.GoForward();
        if (action == "begin") m_state.BeginGesture();
        if (action == "end") m_state.EndGesture();
        if (action == "cancel") m_state.CancelGesture();
        return m_views != before;
    }
};

TEST_F(ViewState, ViewsGoBackAndForward) {
    Run({{"back", 0, 0, false, 0, 0},
         {"set", 0, 100, true, 0, 100},
         {"back", 0, 0, false, 0, 100},
         {"set", 10, 20, true, 10, 20},
         {"set", 10, 20, false, 10, 20},
         {"set", 20, 20, false, 10, 20},
         {"set", 12, 14, true, 12, 14},
         {"back", 0, 0, true, 10, 20},
         {"back", 0, 0, true, 0, 100},
         {"back", 0, 0, false, 0, 100},
         {"on", 0, 0, true, 10, 20},
         {"set", 30, 40, true, 30, 40},
         {"on", 0, 0, false, 30, 40},
         {"back", 0, 0, true, 10, 20}});
}

TEST_F(ViewState, GesturesAndGrowthAreOneStep) {
    Run({{"set", 0, 100, true, 0, 100},
         {"begin", 0, 0, false, 0, 100},
         {"set", 1, 99, true, 1, 99},
         {"set", 2, 98, true, 2, 98},
         {"end", 0, 0, false, 2, 98},
         {"grow", 2, 120, true, 2, 120},
         {"back", 0, 0, true, 0, 100},
         {"on", 0, 0, true, 2, 120},
         {"begin", 0, 0, false, 2, 120},
         {"set", 5, 6, true, 5, 6},
         {"cancel", 0, 0, true, 2, 120},
         {"begin", 0, 0, false, 2, 120},
         {"end", 0, 0, false, 2, 120},
         {"back", 0, 0, true, 0, 100},
         {"back", 0, 0, false, 0, 100}});
}

TEST_F(ViewState, RangesAreKeptWithTheirPeriod) {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    m_state.SetPeriod(Period(0, 100));
    EXPECT_TRUE(m_state.SetRange(kDepth, SRange{0, 5}));
    for (const SRange& odd : {SRange{5, 5}, {6, 5}, {0, kEndless}, {0, 5}})
        EXPECT_FALSE(m_state.SetRange(kDepth, odd));
    EXPECT_TRUE(m_state.SetView({Period(1, 2), {{kDepth, {0, 5}}, {kSpeed, {1, 2}}}}));
    EXPECT_TRUE(m_state.GoBack());
    EXPECT_EQ(m_state.GetView(), (SView{Period(0, 100), {{kDepth, {0, 5}}}}));
    EXPECT_TRUE(m_state.GoBack());
    EXPECT_TRUE(m_state.GetView().ranges.empty());

    m_state.ForgetGraph(kDepth);
    EXPECT_TRUE(m_state.GoForward());
    EXPECT_TRUE(m_state.GoForward());
    EXPECT_EQ(m_state.GetView(), (SView{Period(1, 2), {{kSpeed, {1, 2}}}}));
    EXPECT_TRUE(m_state.SetRange(kSpeed, {}));
    EXPECT_FALSE(m_state.SetRange(kSpeed, {}));
}

TEST_F(ViewState, KeepsFiftyViews) {
    for (int i = 0; i < 80; ++i) m_state.SetPeriod(Period(i, i + 1));
    std::size_t count = 0;
    while (m_state.GoBack()) ++count;
    EXPECT_EQ(count, CViewState::kKeptViews);
    EXPECT_EQ(m_state.GetView().period, Period(29, 30));
}

TEST_F(ViewState, IntervalLiesBetweenTheCursors) {
    using Time = std::optional<CDateTimeSpan>;
    struct SCase {
        Time first, second;
        std::optional<SPeriod> interval;
    };
    const auto at = [](std::int64_t ticks) { return Time(CDateTimeSpan(ticks)); };
    const SCase cases[] = {{at(5), {}, {}},
                           {at(5), at(9), Period(5, 9)},
                           {at(9), at(5), Period(5, 9)},
                           {at(5), at(5), {}},
                           {CDateTimeSpan::Invalid(), at(5), {}}};
    for (const SCase& row : cases) {
        m_state.SetCursor(ECursor::first, row.first);
        m_state.SetCursor(ECursor::second, row.second);
        EXPECT_EQ(m_state.GetInterval(), row.interval);
    }
    EXPECT_FALSE(m_state.SetCursor(ECursor::second, at(5)));
    EXPECT_EQ(m_cursors, 6); // changes only
}

TEST_F(ViewState, ListenersMayEndDuringAChange) {
    int heard = 0;
    std::optional<CViewState::CSubscription> second;
    const auto first = m_state.Listen([&](EViewChange) { second.reset(); });
    second = m_state.Listen([&](EViewChange) { ++heard; });
    m_state.SetPeriod(Period(0, 1));
    EXPECT_EQ(heard, 0);
    m_subscription = {};
    m_state.Clear();
    EXPECT_EQ(m_views, 1);
    EXPECT_FALSE(m_state.HasPeriod());
}

} // namespace
