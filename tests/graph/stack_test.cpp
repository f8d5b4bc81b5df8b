#include "graph/enum_portlet.h"
#include "graph/fabricated.h"
#include "graph/stack_picture.h"

#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

#include <set>

using namespace test;
using Outils_Temps::kTicksPerSecond;

namespace {

const SChannelKey kNavigation = {reinterpret_cast<const Metier_Tarvel::CTrvDataFile*>(8), 1}; // only compared

// A stack of measure graphs and, below them, one chronogram.
class StackTest : public testing::Test {
  protected:
    StackTest() {
        const auto curve = [](std::uint32_t field) {
            return SCurveDescription{"a curve", kNavigation, field, 1.0, 0xFF4682B4, nullptr};
        };
        const SCurveDescription states{"states", {kNavigation.file, 2}, 0, 1.0, 0xFF808080, nullptr};
        m_graphs = {{nullptr, "latitude", &m_adaptors.GetNumeric(), {curve(kLatitude)}, {}},
                    {nullptr, "altitude", &m_adaptors.GetForNature(13), {curve(kAltitude)}, {}},
                    {nullptr, "states", nullptr, {states}, {"valid", "rejected"}}};
        Update();
    }

    CTrv1DGraphMeasurePortlet& Measure(std::size_t index) {
        return dynamic_cast<CTrv1DGraphMeasurePortlet&>(*m_stack.GetPortlets()[index]);
    }
    void Update() {
        m_stack.SetGraphs(m_graphs, m_settings);
        m_stack.Layout({800, 300}, ELayout::scroll);
    }
    void Show(std::int64_t start, std::int64_t end) {
        m_view.period = {CDateTimeSpan(start), CDateTimeSpan(end)};
        m_stack.Show(m_view);
    }
    void SetRange(std::size_t index, double low, double high) {
        m_view.ranges[Measure(index).GetKey()] = {low, high};
        m_stack.Show(m_view);
    }
    std::pair<std::int64_t, std::int64_t> Shown() const {
        return {m_stack.GetPeriod().start.GetTicks(), m_stack.GetPeriod().end.GetTicks()};
    }

    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_settings;
    std::vector<SGraphDescription> m_graphs;
    CTrv1DGraphStack m_stack;
    SView m_view;
};

using Ticks = std::pair<std::int64_t, std::int64_t>;
constexpr std::int64_t kSecond = kTicksPerSecond;

TEST_F(StackTest, NothingMovesWithoutAPeriod) {
    EXPECT_TRUE(ZoomIn({}, 0.5).IsEmpty() && ZoomOut({}, 2).IsEmpty() && Scroll(SPeriod(), 0.25).IsEmpty());
    EXPECT_EQ(DragView(m_stack, {}, nullptr, 10, 10), SView());
    Show(5, 5);
    Show(9, 3);
    EXPECT_FALSE(m_stack.HasPeriod());
}

TEST(GraphPeriod, MovesInWholeTicks) {
    struct SCase {
        Ticks before;
        SPeriod (*act)(const SPeriod&);
        Ticks after;
    };
    const auto in = [](const SPeriod& period) { return ZoomIn(period, 0.5); };
    const auto out = [](const SPeriod& period) { return ZoomOut(period, 2); };
    const auto left = [](const SPeriod& period) { return Scroll(period, -0.25); };
    const auto right = [](const SPeriod& period) { return Scroll(period, 0.25); };
    const auto make = [](Ticks ticks) {
        return SPeriod{CDateTimeSpan(ticks.first), CDateTimeSpan(ticks.second)};
    };
    const SCase cases[] = {
        {{0, 100 * kSecond}, in, {25 * kSecond, 75 * kSecond}},
        {{0, 30 * kSecond + 1}, in, {75'000'001, 225'000'001}},       // centre up from the half, span down
        {{3 * kSecond, 4 * kSecond}, in, {3 * kSecond, 4 * kSecond}}, // one second zooms to one second
        {{0, 15'000'000}, in, {2'500'000, 12'500'000}},               // and nothing below it
        {{25 * kSecond, 75 * kSecond}, out, {0, 100 * kSecond}},
        {{0, 10}, out, {-5, 15}}, // out knows no bound
        {{0, 100 * kSecond}, left, {-25 * kSecond, 75 * kSecond}},
        {{-3, 4}, right, {-1, 5}}, // -1.25 and 5.75 towards zero
    };
    for (const SCase& row : cases) {
        EXPECT_EQ(row.act(make(row.before)), make(row.after))
            << row.before.first << " to " << row.before.second;
    }
    EXPECT_TRUE(in(make({0, kSecond - 1})).IsEmpty()) << "below one second there is nothing more to see";
    // However long somebody zooms out, ticks do not overflow.
    SPeriod last = make({0, kSecond});
    for (SPeriod next = last; !next.IsEmpty(); next = out(next)) last = next;
    EXPECT_GT(last.end - last.start, CDateTimeSpan(std::int64_t{1} << 60));
    for (SPeriod next = last; !next.IsEmpty(); next = right(next)) last = next;
    EXPECT_TRUE(last.end.IsValid());
}

TEST_F(StackTest, PixelsBecomeTimes) {
    Show(0, 1000 * kSecond);
    const SRect area = m_stack.GetPortlets()[1]->GetPlottingRect();
    CDateTimeSpan time;
    ASSERT_TRUE(TimeAt(m_stack, area.x + area.width / 4, time));
    EXPECT_NEAR(time.GetTotalSeconds(), 250, 0.1);
    EXPECT_FALSE(TimeAt(m_stack, area.x - 2, time));

    const auto zoom = [&](float x0, float x1) {
        m_view.period = PeriodBetween(m_stack, x0, x1);
        m_stack.Show(m_view);
        return !m_view.period.IsEmpty();
    };
    EXPECT_TRUE(zoom(area.x + area.width / 2, area.x + area.width / 4));
    EXPECT_NEAR(m_stack.GetPeriod().start.GetTotalSeconds(), 250, 0.1);
    EXPECT_NEAR(m_stack.GetPeriod().end.GetTotalSeconds(), 500, 0.1);
    const Ticks before = Shown();
    EXPECT_FALSE(zoom(area.x + 10, area.x + 10.5f)) << "less than a second";
    EXPECT_EQ(Shown(), before);
    EXPECT_TRUE(zoom(-5000, 5000)) << "kept within the plotting area";
    EXPECT_NEAR(m_stack.GetPeriod().end.GetTotalSeconds(), 500, 0.1);

    Show(0, 1000 * kSecond);
    m_stack.Show(DragView(m_stack, m_view, nullptr, area.width / 10, 0));
    EXPECT_NEAR(m_stack.GetPeriod().start.GetTotalSeconds(), -100, 0.1);
    EXPECT_NEAR((m_stack.GetPeriod().end - m_stack.GetPeriod().start).GetTotalSeconds(), 1000, 1e-6);
}

TEST_F(StackTest, UserRangeEndsAutomaticRange) {
    Show(0, 100 * kSecond);
    m_stack.SetFullExtent(m_stack.GetPeriod());
    m_stack.SetDataset(kNavigation, MakeDataset(
                                        0, 100, [](double t) { return t; }, 5));
    EXPECT_LT(Measure(0).GetMinimum(), -5);
    EXPECT_GT(Measure(0).GetMaximum(), 104);
    EXPECT_LT(Measure(0).GetMaximum(), 130);

    SetRange(0, 0, 100);
    m_view = DragView(m_stack, m_view, &Measure(0), 0, Measure(0).GetPlottingRect().height / 4);
    m_stack.Show(m_view);
    m_stack.SetDataset(kNavigation, MakeDataset(0, 100, [](double) { return 1e6; }));
    EXPECT_EQ(Measure(0).GetRange(), (SRange{25, 125})) << "the user's range stays";
    EXPECT_GT(Measure(1).GetMinimum(), 9e5) << "the other graph's follows";
    EXPECT_EQ(DragView(m_stack, m_view, m_stack.GetPortlets()[2].get(), 0, 10), m_view)
        << "a chronogram has no range";

    m_view.ranges.clear();
    m_stack.Show(m_view);
    EXPECT_TRUE(Measure(0).IsRangeAutomatic());
    EXPECT_GT(Measure(0).GetMinimum(), 9e5);
}

TEST_F(StackTest, RangesAlwaysHaveAWidth) {
    Show(0, 100 * kSecond);
    for (const double constant : {0.0, 43.5, -1e12, 1e299}) {
        m_stack.SetDataset(kNavigation, MakeDataset(0, 3, [&](double) { return constant; }));
        EXPECT_LT(Measure(0).GetMinimum(), constant);
        EXPECT_GT(Measure(0).GetMaximum(), constant);
    }
    SetRange(0, 1, 2);
    const auto zoom = [&](double factor, int times) {
        for (int i = 0; i < times; ++i) Measure(0).SetRange(Zoom(Measure(0).GetRange(), factor));
        return Measure(0).GetRange().GetWidth();
    };
    EXPECT_GT(zoom(0.5, 200), 0);
    EXPECT_TRUE(std::isfinite(zoom(2, 3000)));
}

// The texts of neighbouring ticks of an axis.
std::vector<std::string> Labels(Outils_Plot2D::CPlot2DAxis& axis) {
    std::vector<std::string> labels;
    Outils_Plot2D::ForEachTick(*axis.GetScale(),
                               [&](double value) { labels.push_back(axis.GetFormater()->Format(value)); });
    return labels;
}

TEST_F(StackTest, LabelsDifferAtAnyZoom) {
    m_stack.SetDataset(kNavigation, MakeDataset(0, 3, [](double t) { return 1234.5 + t; }));
    Show(3600 * kSecond, 7200 * kSecond);
    for (int zoom = 0; zoom < 20; ++zoom) {
        for (std::size_t i : {0u, 1u}) {
            const auto labels = Labels(Measure(i).GetPlot().GetVerticalAxis());
            EXPECT_GE(labels.size(), 1u) << zoom;
            EXPECT_EQ(std::set(labels.begin(), labels.end()).size(), labels.size())
                << zoom << ": " << labels[0];
        }
        auto times = Labels(Measure(0).GetPlot().GetHorizontalAxis());
        std::erase(times, std::string()); // those that have no room
        EXPECT_GE(times.size(), 2u) << zoom;
        EXPECT_EQ(std::set(times.begin(), times.end()).size(), times.size()) << zoom;
        for (std::size_t i : {0u, 1u}) {
            const SRange range = Zoom(Measure(i).GetRange(), 0.5);
            SetRange(i, range.low, range.high);
        }
        // Past the second, by the way that a test may take and a user may not.
        const auto [start, end] = Shown();
        Show(start, start + (end - start) / 2);
    }
    // Out again, the axis is as short as the settings ask.
    Show(0, 3600 * kSecond);
    EXPECT_EQ(m_stack.GetTimeText().span.precision, m_adaptors.GetDateTimeSpan().precision);
}

TEST_F(StackTest, NarrowAxesHaveALabel) {
    m_stack.SetDataset(kNavigation, MakeDataset(0, 3, [](double t) { return t; }));
    for (const float width : {420.0f, 380.0f, 340.0f})
        for (int minutes = 3; minutes < 60; ++minutes) {
            Show(0, minutes * 61 * kSecond);
            m_stack.Layout({width, 300}, ELayout::scroll);
            auto& axis = Measure(0).GetPlot().GetHorizontalAxis();
            const float area = Measure(0).GetPlottingRect().width;
            int shown = 0;
            Outils_Plot2D::ForEachTick(*axis.GetScale(), [&](double percent) {
                const auto text = axis.GetFormater()->Format(percent);
                const SRect box = CGraphics().MeasureString(text, axis.GetFont(), SPoint{}, {});
                const float x = axis.GetScale()->ToPixel(percent, area), half = box.width / 2;
                shown += !text.empty() && x >= half && x + half <= area;
            });
            EXPECT_GE(shown, 1) << width << " pixels, " << minutes << " minutes";
        }
}

TEST_F(StackTest, UtcTicksAreAtRoundTimes) {
    Outils_Temps::CDateTime reference;
    reference.SetDateTime(2026, 3, 14, 10, 17, 23, 0);
    SSimulationTimeText text;
    text.mode = Outils_Configuration::ESimulationTimeMode::utcTime;
    text.utcReference = reference;
    m_stack.SetTimeText(text);
    const struct {
        std::int64_t start;
        const char* hour; // of the first label
    } rows[] = {{0, "14/03/2026 10:"},
                {5 * 3600 + 7, "14/03/2026 15:"},
                {-3601, "14/03/2026 09:"},
                {14 * 3600, "15/03/2026 00:"}};
    for (const auto& row : rows) {
        Show(row.start * kSecond, (row.start + 3600) * kSecond);
        auto labels = Labels(Measure(0).GetPlot().GetHorizontalAxis());
        std::erase(labels, std::string());
        ASSERT_FALSE(labels.empty());
        for (const auto& label : labels)
            EXPECT_TRUE(label.ends_with(":00.000") || label.ends_with(":30.000")) << label;
        EXPECT_TRUE(labels[0].starts_with(row.hour)) << labels[0];
    }
}

TEST_F(StackTest, LayoutLevelsMarginsAndFindsPortlets) {
    Show(0, 100 * kSecond);
    m_stack.SetDataset(kNavigation, MakeDataset(0, 100, [](double t) { return 1e8 + t; }));
    for (const bool legends : {true, false}) {
        m_stack.SetLegendsVisible(legends);
        m_stack.Layout({800, 300}, ELayout::scroll);
        const SRect first = m_stack.GetPortlets()[0]->GetPlottingRect();
        for (const auto& portlet : m_stack.GetPortlets()) {
            EXPECT_EQ(portlet->GetPlottingRect().x, first.x);
            EXPECT_EQ(portlet->GetPlottingRect().width, first.width);
            EXPECT_GE(portlet->GetRect().height, kMinimumPortletHeight - 3);
        }
        EXPECT_EQ(first.x > 150, legends);
    }
    EXPECT_GT(m_stack.GetHeight(), 300) << "three graphs do not fit and are not squeezed";
    const auto* second = m_stack.GetPortlets()[1].get();
    const SRect rect = second->GetRect();
    EXPECT_EQ(PortletAt(m_stack, {10, rect.y + 5}), second);
    EXPECT_EQ(PortletAt(m_stack, {10, 1e6f}), nullptr);
    for (const auto& [reach, taken] : {std::pair(2.9f, true), {-2.9f, true}, {3.0f, false}, {-3.0f, false}})
        EXPECT_EQ(BorderAt(m_stack, rect.Bottom() + reach) == second, taken) << reach;

    m_stack.GetPortlets()[1]->SetUserHeight(200);
    m_stack.Layout({800, 300}, ELayout::scroll);
    EXPECT_EQ(m_stack.GetPortlets()[1]->GetRect().height, 200);
    m_stack.GetPortlets()[1]->SetUserHeight(1);
    m_stack.Layout({800, 300}, ELayout::scroll);
    EXPECT_EQ(m_stack.GetPortlets()[1]->GetRect().height, kLeastHeight) << "what the user drags ends here";
    m_stack.Layout({800, 300}, ELayout::fit);
    EXPECT_LE(m_stack.GetHeight(), 300) << "a picture holds all of it";
}

TEST_F(StackTest, KeepsWhatIsShownAlready) {
    Show(0, 100 * kSecond);
    const auto dataset = MakeDataset(0, 100, [](double t) { return t; });
    m_stack.SetDataset(kNavigation, dataset);
    SetRange(1, 3, 7);
    Measure(1).SetUserHeight(222);
    auto* curve = Measure(1).GetPlot().GetSeries()[0].get();
    Measure(1).GetPlot().SetSelectedSerie(curve);
    m_stack.Select(1);
    const auto* altitude = m_stack.GetSelected();

    // One more curve, another colour; the graph above goes; a graph is added below.
    m_graphs[1].curves[0].colour = 0xFF000000;
    m_graphs[1].curves.push_back({"another", kNavigation, kHeading, 1.0, 0xFF112233, nullptr});
    m_graphs.erase(m_graphs.begin());
    m_graphs.push_back({nullptr, "new", &m_adaptors.GetNumeric(), {}, {}});
    Update();
    ASSERT_EQ(m_stack.GetPortlets().size(), 3u);
    EXPECT_EQ(m_stack.GetSelected(), altitude);
    EXPECT_EQ(Measure(0).GetPlot().GetSelectedSerie(), curve);
    EXPECT_EQ(curve->GetColor(), 0xFF000000u) << "black is a colour";
    EXPECT_EQ(Measure(0).GetMinimum(), 3);
    EXPECT_EQ(Measure(0).GetRect().height, 222);
    EXPECT_TRUE(Measure(0).HasPoints());
    EXPECT_EQ(Measure(0).GetPlot().GetSeries().size(), 2u);
    EXPECT_EQ(Shown(), Ticks(0, 100 * kSecond));

    // A curve that now reads otherwise keeps its place and its data; one before others comes first.
    m_graphs[0].curves[0].factor = -2;
    m_graphs[0].curves.erase(m_graphs[0].curves.begin() + 1);
    m_graphs[0].curves.insert(m_graphs[0].curves.begin(),
                              {"first", kNavigation, kLongitude, 1.0, 0xFF445566, nullptr});
    Update();
    const auto& series = Measure(0).GetPlot().GetSeries();
    ASSERT_EQ(series.size(), 2u);
    EXPECT_EQ(series[0]->GetName(), "first");
    m_stack.SetDataset(kNavigation, dataset);
    double x = 0, y = 0;
    ASSERT_TRUE(series[1]->GetDataSource()->GetPoint(10, x, y));
    EXPECT_EQ(y, -20);
    EXPECT_EQ(x, 10);
}

TEST_F(StackTest, AnySizeHoldsTheCurve) {
    Show(0, 100 * kSecond);
    const auto count = [&](int width, int height) {
        QImage image(std::max(width, 1), std::max(height, 1), QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        DrawStack(m_stack, painter, {static_cast<float>(width), static_cast<float>(height)});
        int found = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 300; x < image.width() - 10; ++x) found += image.pixel(x, y) == 0xFF4682B4;
        return found;
    };
    EXPECT_EQ(count(900, 500), 0) << "markers stand in the legend, no curve is there yet";
    m_stack.SetDataset(kNavigation, MakeDataset(0, 100, [](double t) { return std::sin(t / 10); }));
    EXPECT_GT(count(900, 500), 500);
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {160, 20}, {3000, 40}}) count(width, height);
}

} // namespace
