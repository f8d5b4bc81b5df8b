#include "plot/formater.h"
#include "plot/scale.h"

#include <gmock/gmock.h>

#include <limits>

using namespace Outils_Plot2D;
using testing::DoubleNear;
using testing::ElementsAre;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::vector<double> Ticks(const CPlot2DScale& scale) {
    std::vector<double> ticks;
    ForEachTick(scale, [&](double value) { ticks.push_back(value); });
    return ticks;
}

} // namespace

TEST(LinearScale, TicksAreTwoStepsApart) {
    EXPECT_THAT(Ticks(CPlot2DLinearScale(0, 100, 10)), ElementsAre(0, 20, 40, 60, 80, 100));
    EXPECT_THAT(Ticks(CPlot2DLinearScale(3, 61, 10)), ElementsAre(10, 30, 50));
    // Below zero truncation goes towards zero: the walk passes through zero one step at a time.
    EXPECT_THAT(Ticks(CPlot2DLinearScale(-30, 30, 10)), ElementsAre(-30, -10, 10, 30));
    EXPECT_THAT(Ticks(CPlot2DLinearScale(0, 0.9, 0.1)),
                ElementsAre(0, DoubleNear(0.2, 1e-9), DoubleNear(0.4, 1e-9), DoubleNear(0.6, 1e-9),
                            DoubleNear(0.8, 1e-9)));
}

TEST(LinearScale, UselessRangesHaveNoTicks) {
    for (const double step : {0.0, -1.0, 1e-300, 5e-324, kNaN, kInfinity})
        EXPECT_LE(Ticks(CPlot2DLinearScale(0, 100, step)).size(), std::size_t(kMaximumTickCount)) << step;
    EXPECT_LE(Ticks(CPlot2DLinearScale(1e17, 2e17, 1)).size(), std::size_t(kMaximumTickCount));
    for (const double end : {kNaN, kInfinity, -kInfinity, 1.7e308})
        EXPECT_LE(Ticks(CPlot2DLinearScale(-end, end, 10)).size(), std::size_t(kMaximumTickCount)) << end;
}

TEST(LinearScale, PixelsAndValuesAreInverse) {
    const CPlot2DLinearScale scale(-50, 150);
    EXPECT_EQ(scale.ToPixel(0, 400), 100.0f);
    for (const float pixel : {-20.0f, 0.0f, 12.5f, 400.0f})
        EXPECT_FLOAT_EQ(scale.ToPixel(scale.FromPixel(pixel, 400), 400), pixel);
}

TEST(ChronogramScale, PositionsAreInMidBand) {
    CPlot2DChronogramScale scale(0, 3);
    EXPECT_EQ(scale.ToPixel(0, 80), 10.0f);
    EXPECT_EQ(scale.ToPixel(3.4, 80), 70.0f);
    for (int position = 0; position <= 3; ++position)
        for (const float inBand : {1.0f, 10.0f, 19.0f})
            EXPECT_EQ(scale.FromPixel(static_cast<float>(position) * 20 + inBand, 80), position) << inBand;
    EXPECT_THAT(Ticks(scale), ElementsAre(0, 1, 2, 3));
    scale.SetRange(0.4, 2.6);
    EXPECT_EQ(scale.GetMinimum(), 0);
    EXPECT_EQ(scale.GetMaximum(), 3);
    EXPECT_LE(Ticks(CPlot2DChronogramScale(0, 1e18)).size(), std::size_t(kMaximumTickCount));
}

TEST(Formaters, ShowDecimalsAndNames) {
    EXPECT_EQ(CPlot2DSimpleFormater().Format(1.005e3), "1005.00");
    CPlot2DChronogramFormater names;
    names.SetText(2, "Fixed");
    EXPECT_EQ(names.Format(1.5), "Fixed");
    EXPECT_EQ(names.Format(2.5), "3");
    EXPECT_EQ(names.Format(-0.2), "0");
    EXPECT_EQ(names.Format(1e12), "1000000000000");
    EXPECT_EQ(names.Format(kNaN), "");
}
