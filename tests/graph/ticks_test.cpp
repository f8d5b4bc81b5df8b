#include "graph/ticks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Presentation_Tarvel_Graphics;
using namespace Outils_Temps;

namespace {

struct STimeCase {
    double displayed; // seconds
    double tick;      // seconds
};

TEST(GraphTicks, TickSpanIsHalfATenth) {
    const STimeCase cases[] = {
        {20 * 86400.0, 86400},            // two days
        {10 * 129600.0, 86400},           // 1 day 12 hours rounds up to two
        {10 * 129599.0, 43200},           // a second less stays one
        {10 * 86400.0, 43200},            // the first row of days
        {10 * 86399.0, 43200},            // 23 hours 59 minutes round up to 24
        {10 * (2 * 3600 + 1800.0), 5400}, // 2 hours 30 minutes round up to three
        {10 * (2 * 3600 + 1799.0), 3600}, // a second less stays two
        {10 * 3600.0, 1800},              // the first row of hours
        {10 * 3599.0, 1800},              // 59 minutes 59 seconds become an hour
        {10 * 3569.0, 1800},              // 59 minutes 29 seconds are 59, raised to an hour
        {10 * (54 * 60 + 29.0), 1650},    // 54 minutes are raised to 55
        {3 * 3600 + 20 * 60.0, 750},      // 20 minutes are raised to 25
        {10 * (5 * 60 + 30.0), 300},      // 5 minutes 30 seconds are 6, raised to 10
        {10 * (5 * 60 + 29.0), 150},      // a second less stays five
        {10 * 60.0, 30},                  // the first row of minutes
        {10 * 59.5, 30},                  // 59.5 seconds become a minute
        {10 * 54.499, 27.5},              // 54 seconds are raised to 55
        {10 * 5.5, 5},                    // 5.5 seconds are 6, raised to 10
        {10 * 5.499, 2.5},                // a millisecond less stays five
        {10 * 1.0, 0.5},                  // the first row of seconds
        {10 * 0.9995, 0.5},               // 999.5 milliseconds become a second
        {10 * 0.989499, 0.495},           // 989 milliseconds are raised to 990
        {5.0, 0.255},                     // 500 milliseconds are raised to 510
        {10 * 0.0105, 0.01},              // 10.5 milliseconds are 11, raised to 20
        {10 * 0.010499, 0.005},           // a microsecond less stays ten
        {10 * 0.001, 0.0005},             // the first row of milliseconds
        {10 * 0.000999, 0.00025},         // below a millisecond
    };
    for (const auto& [displayed, tick] : cases)
        EXPECT_EQ(ChooseTickSpan(CDateTimeSpan::FromSeconds(displayed)), CDateTimeSpan::FromSeconds(tick))
            << displayed;
    EXPECT_EQ(ChooseTickSpan(CDateTimeSpan()).GetTicks(), 0);
    EXPECT_EQ(ChooseTickSpan(CDateTimeSpan(-5)).GetTicks(), 0);
}

TEST(GraphTicks, FirstTickFollowsTheOrigin) {
    const std::int64_t cases[][3] = {{0, 10, 0},  {3, 10, 10},    {10, 10, 20},   {25, 10, 30},
                                     {-3, 10, 0}, {-10, 10, -10}, {-25, 10, -20}, {7, 0, 0}};
    for (const auto& [offset, tick, first] : cases)
        EXPECT_EQ(AlignFirstTick(CDateTimeSpan(offset), CDateTimeSpan(tick)).GetTicks(), first)
            << offset << " by " << tick;
}

TEST(GraphTicks, VerticalStepSuitsTheUnit) {
    EXPECT_DOUBLE_EQ(ChooseVerticalStep(0, 100, 200, 10, {}), 10);
    EXPECT_DOUBLE_EQ(ChooseVerticalStep(0, 100, 1000, 10, {}), 5); // twenty steps, that is ten labels
    EXPECT_DOUBLE_EQ(ChooseVerticalStep(-3, 4, 140, 10, {}), 1);
    EXPECT_DOUBLE_EQ(ChooseVerticalStep(0, 0.003, 60, 10, {}), 0.001);
    // 100 feet over ten places: ten feet, in metres.
    EXPECT_NEAR(ChooseVerticalStep(0, 30.48, 200, 10, {30.48, 100, 0}), 3.048, 1e-12);
}

TEST(GraphTicks, RangesWithoutTicks) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [low, high] :
         {std::pair{1.0, 1.0}, {2.0, 1.0}, {nan, 1.0}, {0.0, infinity}, {-1e308, 1e308 * 1.7}})
        EXPECT_EQ(ChooseVerticalStep(low, high, 200, 10, {}), 0) << low << " to " << high;
    EXPECT_EQ(ChooseVerticalStep(0, 1, 0, 10, {}), 0);
    // Ranges at the ends of what a double holds still give a step or none, in finite time.
    EXPECT_GE(ChooseVerticalStep(0, 5e-324, 200, 10, {}), 0);
    EXPECT_GT(ChooseVerticalStep(0, 1e300, 200, 10, {}), 0);
}

} // namespace
