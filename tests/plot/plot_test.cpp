#include "recording.h"

#include <gmock/gmock.h>

using namespace Outils_Plot2D;
using testing::ElementsAre;

namespace {

constexpr QRgb kAxis = 0xFF112233, kGrid = 0xFF445566;

std::vector<std::string> Labels(const std::vector<SOperation>& operations) {
    std::vector<std::string> labels;
    for (const SOperation& operation : operations) labels.push_back(operation.text);
    return labels;
}

struct SAxesOfTest : SPlotOfTest {
    SAxesOfTest() {
        plot.GetPlottingArea().SetRect({50, 0, 400, 400});
        for (CPlot2DAxis* axis : {&plot.GetHorizontalAxis(), &plot.GetVerticalAxis()}) {
            axis->SetFormater(std::make_unique<CPlot2DSimpleFormater>());
            axis->SetPen(std::make_unique<CPlot2DPen>(kAxis));
        }
        plot.GetHorizontalAxis().GetGrid().SetPen(std::make_unique<CPlot2DPen>(kGrid));
    }
};

} // namespace

TEST(Axis, CrossingLabelsHaveOnlyAGridLine) {
    const SPainting painting = SAxesOfTest().Paint();
    EXPECT_THAT(Labels(painting.Find(SOperation::Text)), ElementsAre("20.00", "40.00", "60.00", "80.00"));
    EXPECT_EQ(painting.Find(SOperation::Line, kGrid).size(), 6u);
    const auto lines = painting.Find(SOperation::Line, kAxis); // axis, four ticks, and the vertical axis
    ASSERT_EQ(lines.size(), 6u);
    EXPECT_THAT(lines[0].points, ElementsAre(QPointF(60, 420), QPointF(460, 420)));
    EXPECT_THAT(lines[1].points, ElementsAre(QPointF(140, 423), QPointF(140, 418)));
    EXPECT_THAT(lines[5].points, ElementsAre(QPointF(60, 20), QPointF(60, 420)));
}

TEST(Axis, VerticalLabelsStayBelowTheTop) {
    SAxesOfTest test;
    test.plot.GetHorizontalAxis().SetScale(nullptr);
    test.plot.AddCurve(nullptr, "");
    const SPainting painting = test.Paint();
    EXPECT_THAT(Labels(painting.Find(SOperation::Text)),
                ElementsAre("0.00", "20.00", "40.00", "60.00", "80.00"));
    const auto lines = painting.Find(SOperation::Line, kAxis);
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_THAT(lines[2].points, ElementsAre(QPointF(57, 420), QPointF(62, 420)));
}

TEST(Axis, LabelsAreMeasuredWithoutAWindow) {
    SAxesOfTest test;
    CGraphics scratch;
    CPlot2DAxis& axis = test.plot.GetVerticalAxis();
    EXPECT_EQ(axis.MeasureLabels(scratch).width,
              scratch.MeasureString("100.00", axis.GetFont(), SPoint{}, {}).width);
    EXPECT_EQ(axis.MeasureLabels(scratch).height, scratch.GetFontHeight(axis.GetFont()));
    axis.SetFormater(nullptr);
    EXPECT_EQ(axis.MeasureLabels(scratch).width, 0);
    scratch.DrawLine(QPen(), {0, 0}, {1, 1});
    EXPECT_EQ(scratch.GetLastStatus(), CGraphics::GenericError);
    const SRect centred = scratch.MeasureString("abc", DefaultFont(), SPoint{50, 50},
                                                {StringAlignment::Center, StringAlignment::Far});
    EXPECT_FLOAT_EQ(centred.x + centred.width / 2, 50);
    EXPECT_FLOAT_EQ(centred.Bottom(), 50);
}

TEST(Plot, HitTestTellsTheParts) {
    SPlotOfTest test;
    test.plot.SetLegendVisible(true);
    EXPECT_EQ(test.plot.HitTest({10, 20}), CPlot2D::HitPlot);
    EXPECT_EQ(test.plot.HitTest({60, 120}), CPlot2D::HitPlot | CPlot2D::HitPlottingArea);
    EXPECT_EQ(test.plot.HitTest({160, 50}), 7u); // the border that area and legend share
    EXPECT_EQ(test.plot.HitTest({210.5f, 50}), 0u);
    test.plot.SetLegendVisible(false);
    EXPECT_EQ(test.plot.HitTest({180, 50}), CPlot2D::HitPlot);
}

TEST(Plot, ARemovedSerieIsForgottenEverywhere) {
    SPlotOfTest test;
    auto& first = test.plot.AddCurve(nullptr, "first");
    auto& second = test.plot.AddCurve(nullptr, "second");
    test.plot.SetHoveredSerie(&first);
    test.plot.SetSelectedSerie(&first);
    SPlotOfTest other;
    test.plot.RemoveSerie(&other.plot.AddCurve(nullptr, "of another plot"));
    ASSERT_EQ(test.plot.GetSeries().size(), 2u);
    test.plot.RemoveSerie(&first);
    EXPECT_EQ(test.plot.GetHoveredSerie(), nullptr);
    EXPECT_EQ(test.plot.GetSelectedSerie(), nullptr);
    ASSERT_EQ(test.plot.GetSeries().size(), 1u);
    EXPECT_EQ(test.plot.GetSeries()[0].get(), &second);
}

TEST(Legend, LeavesLinesForValuesAsLongAsTheyFit) {
    SPlotOfTest test;
    auto& legend = test.plot.GetLegend();
    test.plot.SetLegendVisible(true);
    legend.SetValueLines(true);
    test.plot.AddCurve(nullptr, "first");
    auto& second = test.plot.AddCurve(nullptr, "second");
    second.SetVisible(false);
    for (const float height : {300.0f, 50.0f}) {
        legend.SetRect({5, 7, 120, height});
        test.Paint();
        std::vector<const CPlot2DSerie*> series;
        legend.ForEachValue([&](const CPlot2DSerie* serie, const SRect& box) {
            series.push_back(serie);
            EXPECT_EQ(legend.SerieAt({10 + box.x, 20 + box.y + 2}), serie) << "the value is part of the row";
            EXPECT_EQ(legend.BoxAt({10 + 5 + 8, 20 + box.y}), serie);
            EXPECT_EQ(legend.BoxAt({10 + box.x, 20 + box.y}), nullptr);
        });
        EXPECT_EQ(series.size(), height > 100 ? 2u : 0u);
    }
}

TEST(Legend, MarkersHitTheirSerie) {
    SPlotOfTest test;
    test.plot.SetLegendVisible(true);
    test.plot.GetLegend().SetRect({5, 7, 120, 300});
    test.plot.AddCurve(nullptr, "short");
    test.plot.AddCurve(nullptr, "a name much too long for one line of this legend and for two lines as well");
    test.plot.AddChronogram(nullptr, "").SetColor(0xFF010203);
    test.plot.SetHoveredSerie(test.plot.GetSeries()[1].get());
    const SPainting painting = test.Paint();
    std::size_t markers = 0;
    for (const SOperation& operation : painting.Find(SOperation::Rectangle, 0)) {
        const SPoint corner{static_cast<float>(operation.points[0].x()),
                            static_cast<float>(operation.points[0].y())};
        if (corner.x != 10 + 5 + 5) continue;
        ASSERT_LT(markers, 3u);
        const CPlot2DSerie* serie = test.plot.GetSeries()[markers++].get();
        EXPECT_EQ(operation.brush, serie->GetColor());
        EXPECT_EQ(test.plot.GetLegend().SerieAt(corner), serie);
        EXPECT_EQ(test.plot.GetLegend().SerieAt({corner.x - 1, corner.y}), nullptr);
        EXPECT_EQ(test.plot.GetLegend().SerieAt({corner.x, corner.y - 1}), nullptr);
    }
    EXPECT_EQ(markers, 3u);
    // The long name takes two lines at most, and one row is framed.
    EXPECT_EQ(painting.Find(SOperation::Text).size(), 3u);
    EXPECT_EQ(painting.Find(SOperation::Rectangle, 0xFF99DEFE).size(), 1u);
}
