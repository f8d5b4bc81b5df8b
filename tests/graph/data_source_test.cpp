#include "graph/data_source.h"
#include "graph/fabricated.h"

#include <gtest/gtest.h>

#include <limits>

using namespace test;

namespace {

struct SPointOf {
    double x = -1, y = -1;
};

std::shared_ptr<CTrv1DGraphDataset> DatasetOf(Application_Tarvel::SReducedSeries series) {
    return std::make_shared<CTrv1DGraphDataset>(std::move(series), Seconds(1), CDateTimeSpan());
}

TEST(DataSource, MapsValuesAndDates) {
    CTrv1DGraphDataSource source({nullptr, 0}, kLatitude, -2.0);
    EXPECT_EQ(source.GetCount(), 0u);
    // Packets from 10 s on, on a clock that is 90 s behind the simulation: the first is at 100 s.
    source.SetDataset(MakeDataset(
        10, 20, [](double t) { return t; }, 0.5, Seconds(90)));
    EXPECT_EQ(source.GetCount(), 0u) << "nothing is drawn before the displayed time is known";
    source.SetDisplay(Seconds(100), Seconds(300));

    SPointOf point, low, high;
    ASSERT_TRUE(source.HasExtremum());
    EXPECT_EQ(source.GetCount(), 10u);
    EXPECT_DOUBLE_EQ(source.GetPeriod(), 0.5); // one second of two hundred
    ASSERT_TRUE(source.GetPoint(4, point.x, point.y));
    EXPECT_DOUBLE_EQ(point.x, 2.0);
    EXPECT_DOUBLE_EQ(point.y, -28.0);
    // The factor mirrors the extremes with the value.
    ASSERT_TRUE(source.GetMinimum(4, low.x, low.y));
    ASSERT_TRUE(source.GetMaximum(4, high.x, high.y));
    EXPECT_DOUBLE_EQ(low.y, -27.0);
    EXPECT_DOUBLE_EQ(high.y, -29.0);

    // A pan moves the same data at once.
    source.SetDisplay(Seconds(104), Seconds(204));
    ASSERT_TRUE(source.GetPoint(0, point.x, point.y));
    EXPECT_DOUBLE_EQ(point.x, -4.0);
    EXPECT_FALSE(source.GetPoint(10, point.x, point.y));
}

TEST(DataSource, MissingValuesAreNoPoints) {
    Application_Tarvel::SReducedSeries series;
    series.representatives.push_back(MakeResult(0, 5));
    series.representatives.push_back(nullptr);
    series.minima.push_back(MakeResult(0, 5));
    const auto dataset = DatasetOf(std::move(series));
    SPointOf point;
    for (const std::uint32_t field : {kLatitude, 500u}) {
        CTrv1DGraphDataSource source({nullptr, 0}, field, 1);
        source.SetDisplay(Seconds(0), Seconds(10));
        source.SetDataset(dataset);
        EXPECT_FALSE(source.HasExtremum()) << "lists of unequal length";
        EXPECT_EQ(source.GetPoint(0, point.x, point.y), field == kLatitude);
        EXPECT_FALSE(source.GetPoint(1, point.x, point.y));
    }
}

TEST(DataSource, RangeIgnoresInfiniteValues) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double values[] = {3, infinity, -infinity, std::nan(""), 1e305, -4};
    CTrv1DGraphDataSource source({nullptr, 0}, kLatitude, 1);
    source.SetDataset(MakeDataset(0, 6, [&](double t) { return values[static_cast<int>(t)]; }));
    double low = infinity, high = -infinity;
    ASSERT_TRUE(source.IncludeValues(low, high));
    EXPECT_EQ(low, -4);
    EXPECT_EQ(high, 3);
}

TEST(DataSource, StatesAreReadFromStatusFields) {
    auto packet = std::make_unique<Persistance_Xpf::CXpfTarinDepthPacketV1>();
    packet->SetDate(0, Seconds(1));
    packet->SetUInt8(2, 1); // rejected
    std::uint32_t literal = 9;
    ASSERT_TRUE(packet->GetStatusValue(0, literal));
    Application_Tarvel::SReducedSeries series;
    series.representatives.push_back(std::move(packet));
    const auto dataset = DatasetOf(std::move(series));
    for (const std::uint32_t field : {0u, 77u}) {
        CTrv1DGraphDataSourceEnum source({nullptr, 0}, field);
        source.SetDisplay(Seconds(0), Seconds(10));
        source.SetDataset(dataset);
        SPointOf point;
        ASSERT_EQ(source.GetPoint(0, point.x, point.y), field == 0);
        EXPECT_EQ(point.y, field == 0 ? static_cast<double>(literal) : -1.0);
    }
}

TEST(DataSource, NearestPointIsNearEnough) {
    CTrv1DGraphDataSource source({nullptr, 0}, kLatitude, 1);
    source.SetDataset(MakeDataset(0, 10, [](double t) { return 10 * t; }));
    source.SetDisplay(Seconds(0), Seconds(100));
    SPointOf point;
    for (const auto& [time, value] : {std::pair{3.4, 30.0}, {3.6, 40.0}, {-1.2, 0.0}, {10.2, 90.0}}) {
        ASSERT_TRUE(source.GetNearestPoint(Seconds(time), point.x, point.y)) << time;
        EXPECT_EQ(point.y, value) << time;
    }
    EXPECT_FALSE(source.GetNearestPoint(Seconds(-2), point.x, point.y));
    EXPECT_FALSE(source.GetNearestPoint(Seconds(11), point.x, point.y));
}

} // namespace
