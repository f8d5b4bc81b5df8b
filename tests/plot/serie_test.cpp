#include "recording.h"

#include <QImage>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace Outils_Plot2D;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

QPointF At(double x, double y) { return SPlotOfTest::At(x, y); }

std::unique_ptr<CTestSource> Source(double period, bool extrema, std::vector<SBucketOfTest> buckets) {
    return std::make_unique<CTestSource>(period, extrema, std::move(buckets));
}

std::vector<std::vector<QPointF>> Points(const std::vector<SOperation>& operations) {
    std::vector<std::vector<QPointF>> points;
    for (const SOperation& operation : operations) points.push_back(operation.points);
    return points;
}

} // namespace

TEST(Curve, TwelfthCurveHasTheFirstColour) {
    SPlotOfTest test, other;
    test.settings.extremumTransparency = 0x40;
    for (int i = 0; i < 11; ++i) test.plot.AddCurve(nullptr, "");
    auto& first = *test.plot.GetSeries()[0];
    EXPECT_EQ(other.plot.AddCurve(nullptr, "").GetColor(), first.GetColor());
    EXPECT_NE(other.plot.AddCurve(nullptr, "").GetColor(), first.GetColor());
    auto& curve = test.plot.AddCurve(nullptr, "");
    curve.SetColor(0xFF102030);
    EXPECT_EQ(curve.GetPen().GetColor(), 0xFF102030u);
    EXPECT_EQ(curve.GetBrush().GetColor(), 0x40102030u);
}

TEST(Curve, BandIsAStaircase) {
    SPlotOfTest test;
    test.plot.AddCurve(Source(10, true, {{20, 50, 40, 60}, {30, 55, 45, 70}}), "");
    const SPainting painting = CRecordingDevice().Record([&](auto& graphics) {
        test.plot.Draw(graphics);
        graphics.DrawLine(QPen(), {0, 0}, {900, 0}); // shows that the clip is off again
    });
    ASSERT_EQ(painting.size(), 3u);
    EXPECT_EQ(painting[0].kind, SOperation::Polyline);
    EXPECT_THAT(painting[0].points, ElementsAre(At(20, 50), At(30, 55)));
    EXPECT_EQ(painting[0].clip, QRectF(60, 20, 100, 100));
    EXPECT_EQ(painting[1].kind, SOperation::Polygon);
    EXPECT_THAT(painting[1].points, ElementsAre(At(15, 40), At(25, 40), At(25, 45), At(35, 45), At(35, 70),
                                                At(25, 70), At(25, 60), At(15, 60)));
    EXPECT_TRUE(painting[2].clip.isNull());
}

TEST(Curve, PlacelessBucketsBreakTheLine) {
    SPlotOfTest test;
    test.plot.AddCurve(Source(2, true,
                              {{10, 1, 0, 2},
                               {20, 0, 0, 0, false},
                               {30, 3, 2, 4},
                               {40, kNaN, 2, 4},
                               {50, 5, kNaN, 6},
                               {60, 6, 5, INFINITY},
                               {70, 7, 6, 8}}),
                       "");
    EXPECT_THAT(Points(test.Paint().Find(SOperation::Polyline)),
                ElementsAre(ElementsAre(At(10, 1), At(30, 3)), ElementsAre(At(50, 5), At(60, 6), At(70, 7))));
    const auto bands = test.Paint().Find(SOperation::Polygon);
    ASSERT_EQ(bands.size(), 2u);
    EXPECT_EQ(bands[0].points.size(), 12u); // 10, 30 and 40
    EXPECT_EQ(bands[1].points.size(), 4u);  // 70
}

TEST(Curve, EmptyCurveDrawsNothing) {
    SPlotOfTest test;
    auto& curve = test.plot.AddCurve(Source(10, true, {}), "");
    EXPECT_THAT(test.Paint(), IsEmpty());
    auto previous = curve.SetDataSource(Source(10, false, {{0, 0, 0, 0}, {9, 9, 0, 0}}), false);
    ASSERT_NE(previous, nullptr);
    EXPECT_EQ(previous->GetCount(), 0u);
    EXPECT_EQ(test.Paint().Find(SOperation::Polyline).size(), 1u);
    test.plot.GetVerticalAxis().GetScale()->SetRange(5, 5);
    EXPECT_THAT(test.Paint(), IsEmpty());
    test.plot.GetVerticalAxis().SetScale(nullptr);
    EXPECT_THAT(test.Paint(), IsEmpty());
}

TEST(Curve, FarPointsKeepTheSlope) {
    SPlotOfTest test;
    test.plot.AddCurve(Source(1, true,
                              {{-1e7, -1e7, -1e30, 1e30},
                               {1e7, 1e7, -1e30, 1e30}, // through the origin, at 45 degrees
                               {1e7, 2e7, 0, 0},
                               {2e7, 2e7, 0, 0}}),
                       "");
    const auto lines = test.Paint().Find(SOperation::Polyline);
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_EQ(lines[0].points.size(), 2u);
    for (const QPointF point : lines[0].points) {
        EXPECT_NEAR(point.x() - 60, 120 - point.y(), 2) << "no longer on the diagonal";
        EXPECT_LT(std::fabs(point.x()), 1000);
    }
    for (const SOperation& band : test.Paint().Find(SOperation::Polygon))
        for (const QPointF point : band.points) EXPECT_LT(std::hypot(point.x(), point.y()), 10000);
}

TEST(Curve, SplinesJoinThePointsWhereAsked) {
    SPlotOfTest test;
    test.settings.drawCurve = true;
    test.plot.AddCurve(Source(10, true, {{20, 50, 40, 60}, {30, 70, 45, 70}, {40, 20, 1, 30}}), "");
    EXPECT_EQ(test.Paint().Find(SOperation::Path).size(), 1u);
    EXPECT_THAT(test.Paint().Find(SOperation::Polyline), IsEmpty());
    EXPECT_EQ(test.Paint().Find(SOperation::Polygon).size(), 1u);
}

// On a screen the band is made of columns: they must cover what the polygon covers, at any resolution.
TEST(Curve, BandOnPixelsIsThePolygon) {
    for (const int ratio : {1, 2}) {
        SPlotOfTest test;
        test.plot.AddCurve(Source(20, true, {{20, 50, 40, 60}, {40, 50, 20, 55}, {60, 50, 45, 130}}), "")
            .SetColor(0xFF0000FF);
        QImage image(220 * ratio, 200 * ratio, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            CGraphics graphics(painter);
            test.plot.Draw(graphics);
        }
        const auto isBand = [&](double x, double y) {
            const QPointF point = At(x, y) * ratio;
            const QRgb pixel = image.pixel(static_cast<int>(point.x()), static_cast<int>(point.y()));
            return qBlue(pixel) == 255 && qRed(pixel) < 128;
        };
        for (const auto& [x, low, high] : {std::tuple{11.5, 40, 60},
                                           {29.0, 40, 60},
                                           {31.5, 20, 55},
                                           {49.0, 20, 55},
                                           {51.5, 45, 99},
                                           {69.0, 45, 99}}) {
            EXPECT_TRUE(isBand(x, low + 1.5) && isBand(x, high - 1.5)) << x << " at ratio " << ratio;
            EXPECT_FALSE(isBand(x, low - 1.5) || (high < 99 && isBand(x, high + 1.5)))
                << x << " at ratio " << ratio;
        }
        EXPECT_FALSE(isBand(8.5, 50) || isBand(71.5, 50));
    }
}

namespace {

struct SChronogramOfTest : SPlotOfTest {
    // Five rows of 20 pixels: state s lies at 20 s + 10.
    SPainting Paint(double period, std::vector<SBucketOfTest> buckets) {
        plot.GetVerticalAxis().SetScale(std::make_unique<CPlot2DChronogramScale>(0, 4));
        plot.AddChronogram(Source(period, true, std::move(buckets)), "");
        return SPlotOfTest::Paint();
    }
};

} // namespace

TEST(Chronogram, StepsFollowTheBucketWidth) {
    const std::vector<SBucketOfTest> buckets = {
        {10, 1, 1, 1}, {20, 1, 1, 1}, {30, 3, 3, 3}, {40, 0, 0, 0, false}};
    const auto wide = SChronogramOfTest().Paint(10, buckets);
    ASSERT_EQ(wide.size(), 1u);
    EXPECT_THAT(wide[0].points, ElementsAre(At(5, 30), At(25, 30), At(25, 70), At(35, 70)));
    const auto narrow = SChronogramOfTest().Paint(0.9, buckets);
    ASSERT_EQ(narrow.size(), 1u);
    EXPECT_THAT(narrow[0].points, ElementsAre(At(10, 30), At(30, 30), At(30, 70), At(30, 70)));
}

TEST(Chronogram, MixedBucketsMakeOneBlock) {
    const auto operations = SChronogramOfTest().Paint(
        10, {{10, 1, 1, 1}, {20, 2, 0, 4}, {30, 1, 0, 2}, {40, 1, 1, 2}, {50, 3, 3, 3}, {60, 1, 0, 3}});
    std::vector<SOperation::Kind> kinds;
    for (const SOperation& operation : operations) kinds.push_back(operation.kind);
    using enum SOperation::Kind;
    ASSERT_THAT(kinds, ElementsAre(Polyline, Rectangle, Rectangle, Polyline, Rectangle, Rectangle));
    EXPECT_THAT(operations[0].points, ElementsAre(At(5, 30), At(15, 30), At(15, 50)));
    // From the left of the first mixed bucket to the left of the next plain one, over all rows.
    EXPECT_THAT(operations[1].points, ElementsAre(At(15, 90), At(45, 10)));
    EXPECT_EQ(operations[1].pen, 0u); // filled, then outlined
    EXPECT_THAT(operations[3].points, ElementsAre(At(45, 70), At(55, 70), At(55, 30)));
    // The last run ends with its own bucket; here the outline comes first.
    EXPECT_THAT(operations[4].points, ElementsAre(At(55, 90), At(65, 10)));
    EXPECT_EQ(operations[4].brush, 0u);
    EXPECT_EQ(operations[5].pen, 0u);
}

TEST(Chronogram, WideSegmentsSayTheirState) {
    SChronogramOfTest test;
    auto formater = std::make_unique<CPlot2DChronogramFormater>();
    formater->SetText(1, "on");
    test.plot.GetVerticalAxis().SetFormater(std::move(formater));
    const auto painting = test.Paint(10, {{5, 1, 1, 1},
                                          {15, 1, 1, 1},
                                          {25, 1, 1, 1},
                                          {35, 1, 1, 1},
                                          {45, 3, 3, 3},
                                          {55, 2, 2, 2},
                                          {85, 2, 2, 2}});
    std::vector<std::string> labels;
    for (const SOperation& text : painting.Find(SOperation::Text))
        if (text.points[0].x() > At(0, 0).x()) labels.push_back(text.text); // in the plotting area
    EXPECT_THAT(labels, ElementsAre("on", "2"))
        << "the narrow one has no room, a state without a name its number";
}

TEST(Theme, DarkGroundKeepsCurvesVisible) {
    for (const Colour colour : kCurvePalette) {
        EXPECT_EQ(kLightTheme.OnGround(colour), colour);
        const QColor shown = QColor::fromRgba(kDarkTheme.OnGround(colour));
        EXPECT_GT(qGray(shown.rgb()), 100) << std::hex << colour;
        EXPECT_EQ(shown.alpha(), 0xFF);
    }
}
