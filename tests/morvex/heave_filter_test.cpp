#include "morvex/heave_filter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace Morvex;

// A swell on a height that drifts as a unit with a bias drifts; and a roll on an axis.
TEST(HeaveFilter, FindsTheSwellOnADrift) {
    struct SRow {
        EHeave kind;
        double period;  // s, of the swell
        double allowed; // share of its amplitude
    };
    for (const SRow& row : {SRow{EHeave::zeroPhase, 8.0, 0.01},
                            {EHeave::zeroPhase, 25.0, 0.03},
                            {EHeave::causal, 8.0, 0.09},
                            {EHeave::none, 8.0, 1.0}}) {
        CHeaveFilter filter(row.kind, 200.0);
        const auto swell = [&](double t) { return 1.5 * std::sin(2.0 * std::numbers::pi * t / row.period); };
        const auto height = [&](double t) { return 40.0 + 0.3 * t - 3e-3 * t * t + swell(t); };
        double worst = 0.0, largest = 0.0;
        int early = 0, checked = 0;
        for (int i = 0; i <= 150000; ++i) {
            const double t = 0.01 * i;
            filter.Add(t, {height(t), 0.0, 0.1 + 0.02 * swell(t), 1.0});
            const double wanted = t - 60.0;
            if (i % 37 != 0 || wanted < 900.0) continue;
            early += !filter.IsReady(wanted);
            ++checked;
            const CHeaveFilter::Values values = filter.Get(wanted);
            worst = std::max(worst, std::abs(values[0] - swell(wanted)));
            EXPECT_NEAR(values[2], 0.02 * values[0], 0.002);
            EXPECT_NEAR(values[3], 0.0, 1e-9);
            largest = std::max(largest, std::abs(values[0]));
        }
        EXPECT_GT(checked, 1000);
        EXPECT_EQ(early, 0);
        EXPECT_LE(worst, row.allowed * 1.5 + 1e-9) << static_cast<int>(row.kind) << " at " << row.period;
        EXPECT_EQ(largest > 1.0, row.kind != EHeave::none);
    }
}

TEST(HeaveFilter, WaitsForTheMinuteAhead) {
    CHeaveFilter filter(EHeave::zeroPhase);
    EXPECT_FALSE(filter.IsReady(0.0));
    EXPECT_EQ(filter.Get(0.0), CHeaveFilter::Values::Zero());
    for (int i = 0; i < 500; ++i) filter.Add(0.1 * i, CHeaveFilter::Values::Constant(7.0));
    EXPECT_FALSE(filter.IsReady(0.0));
    EXPECT_NEAR(filter.Get(49.0)[0], 0.0, 1e-9) << "at the end what there is decides";
    for (int i = 500; i < 600; ++i) filter.Add(0.1 * i, CHeaveFilter::Values::Constant(7.0));
    EXPECT_TRUE(filter.IsReady(0.5));
    filter.Reset();
    EXPECT_FALSE(filter.IsReady(0.5));
}
