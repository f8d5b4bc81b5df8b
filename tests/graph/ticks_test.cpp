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

TEST(GraphTicks, TickSpanIsHalfOfAReadableTenth) {
    const STimeCase cases[] = {
        {20 * 86400.0, 86400},         // two days
        {15.2 * 86400.0, 86400},       // 1 day 12.48 hours rounds up to two
        {14.0 * 86400.0, 43200},       // 1 day 9.6 hours stays one
        {25 * 3600.0, 3 * 3600 / 2.0}, // 2 hours 30 minutes rounds up to three
        {3 * 3600 + 20 * 60.0, 750},   // 20 minutes are raised to 25
        {50 * 60.0, 150},              // 5 minutes stay
        {10 * 58 * 60.0, 1800},        // 58 minutes become an hour
        {10 * 57.0, 30},               // 57 seconds become a minute
        {50.0, 2.5},                   // 5 seconds stay
        {5.0, 0.255},                  // 500 milliseconds are raised to 510
        {10 * 0.996, 0.5},             // 996 milliseconds become a second
        {0.1, 0.005},                  // 10 milliseconds stay
        {0.001, 0.00025},              // below a millisecond
    };
    for (const auto& [displayed, tick] : cases)
        EXPECT_EQ(ChooseTickSpan(CDateTimeSpan::FromSeconds(displayed)), CDateTimeSpan::FromSeconds(tick))
            << displayed;
    EXPECT_EQ(ChooseTickSpan(CDateTimeSpan()).GetTicks(), 0);
    EXPECT_EQ(ChooseTickSpan(CDateTimeSpan(-5)).GetTicks(), 0);
}

TEST(GraphTicks, FirstTickIsAlignedWithTheOrigin) {
    const std::int64_t cases[][3] = {{0, 10, 0},  {3, 10, 10},    {10, 10, 20},   {25, 10, 30},
                                     {-3, 10, 0}, {-10, 10, -10}, {-25, 10, -20}, {7, 0, 0}};
    for (const auto& [offset, tick, first] : cases)
        EXPECT_EQ(AlignFirstTick(CDateTimeSpan(offset), CDateTimeSpan(tick)).GetTicks(), first)
            << offset << " by " << tick;
}

TEST(GraphTicks, VerticalStepIsReadableInTheUnitShown) {
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
