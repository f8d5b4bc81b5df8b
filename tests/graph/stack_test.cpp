#include "graph/fabricated.h"
#include "graph/stack.h"

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
        for (const std::uint32_t field : {kLatitude, kAltitude}) {
            auto portlet = std::make_unique<CTrv1DGraphMeasurePortlet>(
                m_settings, m_stack.GetTimeText(), nullptr, "measure",
                field == kAltitude ? m_adaptors.GetForNature(13) : m_adaptors.GetNumeric());
            portlet->AddCurve({"a curve", kNavigation, field, 1.0, 0xFF4682B4, nullptr});
            m_stack.Add(std::move(portlet));
        }
        const SCurveDescription states{"states", {kNavigation.file, 2}, 0, 1.0, 0xFF808080, nullptr};
        m_stack.Add(std::make_unique<CTrv1DGraphEnumPortlet>(m_settings, m_stack.GetTimeText(), nullptr,
                                                             "states", states,
                                                             std::vector<std::string>{"valid", "rejected"}));
        m_stack.Layout({800, 300}, ELayout::scroll);
    }

    CTrv1DGraphMeasurePortlet& Measure(std::size_t index) {
        return dynamic_cast<CTrv1DGraphMeasurePortlet&>(*m_stack.GetPortlets()[index]);
    }
    void Show(std::int64_t start, std::int64_t end) {
        m_stack.SetPeriod({CDateTimeSpan(start), CDateTimeSpan(end)});
    }
    std::pair<std::int64_t, std::int64_t> Shown() const {
        return {m_stack.GetPeriod().start.GetTicks(), m_stack.GetPeriod().end.GetTicks()};
    }

    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_settings;
    CTrv1DGraphStack m_stack;
};

using Ticks = std::pair<std::int64_t, std::int64_t>;
constexpr std::int64_t kSecond = kTicksPerSecond;

TEST_F(StackTest, NothingMovesWithoutAPeriod) {
    EXPECT_FALSE(m_stack.ZoomIn(0.5) || m_stack.ZoomOut(2) || m_stack.Scroll(0.25) || m_stack.ViewAll());
    EXPECT_FALSE(m_stack.Pan(10));
    Show(5, 5);
    Show(9, 3);
    EXPECT_FALSE(m_stack.HasPeriod());
}

TEST_F(StackTest, HorizontalArithmetic) {
    struct SCase {
        Ticks before;
        bool (*act)(CTrv1DGraphStack&);
        Ticks after;
    };
    const auto in = [](CTrv1DGraphStack& stack) { return stack.ZoomIn(0.5); };
    const auto out = [](CTrv1DGraphStack& stack) { return stack.ZoomOut(2); };
    const auto left = [](CTrv1DGraphStack& stack) { return stack.Scroll(-0.25); };
    const auto right = [](CTrv1DGraphStack& stack) { return stack.Scroll(0.25); };
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
        Show(row.before.first, row.before.second);
        EXPECT_TRUE(row.act(m_stack)) << row.before.first;
        EXPECT_EQ(Shown(), row.after) << row.before.first << " to " << row.before.second;
    }
    Show(0, kSecond - 1);
    EXPECT_FALSE(m_stack.ZoomIn(0.5)) << "below one second there is nothing more to see";
    EXPECT_EQ(Shown(), Ticks(0, kSecond - 1));
    // However long somebody zooms out, ticks do not overflow.
    for (int i = 0; i < 100; ++i) m_stack.ZoomOut(2);
    for (int i = 0; i < 100; ++i) m_stack.Scroll(0.9);
    EXPECT_TRUE(m_stack.HasPeriod());
}

TEST_F(StackTest, PixelsBecomeTimes) {
    Show(0, 1000 * kSecond);
    const SRect area = m_stack.GetPortlets()[1]->GetPlottingRect();
    const auto& portlet = *m_stack.GetPortlets()[1];
    CDateTimeSpan time;
    ASSERT_TRUE(m_stack.TimeAt(area.x + area.width / 4, time));
    EXPECT_NEAR(time.GetTotalSeconds(), 250, 0.1);
    EXPECT_FALSE(m_stack.TimeAt(area.x - 2, time));

    EXPECT_TRUE(m_stack.ZoomToPixels(portlet, area.x + area.width / 2, area.x + area.width / 4));
    EXPECT_NEAR(m_stack.GetPeriod().start.GetTotalSeconds(), 250, 0.1);
    EXPECT_NEAR(m_stack.GetPeriod().end.GetTotalSeconds(), 500, 0.1);
    const Ticks before = Shown();
    EXPECT_FALSE(m_stack.ZoomToPixels(portlet, area.x + 10, area.x + 10.5f)) << "less than a second";
    EXPECT_EQ(Shown(), before);
    EXPECT_TRUE(m_stack.ZoomToPixels(portlet, -5000, 5000)) << "kept within the plotting area";
    EXPECT_NEAR(m_stack.GetPeriod().end.GetTotalSeconds(), 500, 0.1);

    Show(0, 1000 * kSecond);
    EXPECT_TRUE(m_stack.Pan(area.width / 10));
    EXPECT_NEAR(m_stack.GetPeriod().start.GetTotalSeconds(), -100, 0.1);
    EXPECT_NEAR((m_stack.GetPeriod().end - m_stack.GetPeriod().start).GetTotalSeconds(), 1000, 1e-6);
}

TEST_F(StackTest, RangeFollowsTheDataUntilTheUserTakesIt) {
    Show(0, 100 * kSecond);
    m_stack.SetFullExtent(m_stack.GetPeriod());
    m_stack.SetDataset(kNavigation, MakeDataset(
                                        0, 100, [](double t) { return t; }, 5));
    EXPECT_LT(Measure(0).GetMinimum(), -5);
    EXPECT_GT(Measure(0).GetMaximum(), 104);
    EXPECT_LT(Measure(0).GetMaximum(), 130);

    m_stack.Select(0);
    Measure(0).SetRange(0, 100);
    EXPECT_TRUE(m_stack.ZoomVertical(0.5));
    EXPECT_EQ(Measure(0).GetMinimum(), 25);
    EXPECT_EQ(Measure(0).GetMaximum(), 75);
    EXPECT_TRUE(m_stack.ScrollVertical(0.25));
    EXPECT_EQ(Measure(0).GetMinimum(), 37.5);
    m_stack.SetDataset(kNavigation, MakeDataset(0, 100, [](double) { return 1e6; }));
    EXPECT_EQ(Measure(0).GetMaximum(), 87.5) << "the user's range stays";
    EXPECT_GT(Measure(1).GetMinimum(), 9e5) << "the other graph's follows";

    m_stack.Select(2);
    EXPECT_FALSE(m_stack.ZoomVertical(0.5)) << "a chronogram has no range";
    m_stack.ViewAll();
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
    m_stack.Select(0);
    Measure(0).SetRange(1, 2);
    for (int i = 0; i < 200; ++i) m_stack.ZoomVertical(0.5);
    EXPECT_LT(Measure(0).GetMinimum(), Measure(0).GetMaximum());
    for (int i = 0; i < 3000; ++i) m_stack.ZoomVertical(2);
    EXPECT_TRUE(std::isfinite(Measure(0).GetMaximum() - Measure(0).GetMinimum()));
}

// The texts of neighbouring ticks of an axis.
std::vector<std::string> Labels(Outils_Plot2D::CPlot2DAxis& axis) {
    std::vector<std::string> labels;
    Outils_Plot2D::ForEachTick(*axis.GetScale(),
                               [&](double value) { labels.push_back(axis.GetFormater()->Format(value)); });
    return labels;
}

TEST_F(StackTest, LabelsTellTheirTicksApartAtAnyZoom) {
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
        for (int i : {0, 1}) {
            m_stack.Select(i);
            m_stack.ZoomVertical(0.5);
        }
        // Past the second, by the way that a test may take and a user may not.
        const auto [start, end] = Shown();
        Show(start, start + (end - start) / 2);
    }
    // Out again, the axis is as short as the settings ask.
    Show(0, 3600 * kSecond);
    EXPECT_EQ(m_stack.GetTimeText().span.precision, m_adaptors.GetDateTimeSpan().precision);
}

TEST_F(StackTest, UtcTicksStandAtRoundTimes) {
    Outils_Temps::CDateTime reference;
    reference.SetDateTime(2026, 3, 14, 10, 17, 23, 0);
    SSimulationTimeText text;
    text.mode = Outils_Configuration::ESimulationTimeMode::utcTime;
    text.utcReference = reference;
    m_stack.SetTimeText(text);
    Show(0, 3600 * kSecond);
    auto labels = Labels(Measure(0).GetPlot().GetHorizontalAxis());
    std::erase(labels, std::string());
    ASSERT_FALSE(labels.empty());
    for (const auto& label : labels)
        EXPECT_TRUE(label.ends_with(":00.000") || label.ends_with(":30.000")) << label;
    EXPECT_TRUE(labels[0].starts_with("14/03/2026 10:")) << labels[0];
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
            EXPECT_GE(portlet->GetRect().height, 100);
        }
        EXPECT_EQ(first.x > 150, legends);
    }
    EXPECT_GT(m_stack.GetHeight(), 300) << "three graphs do not fit and are not squeezed";
    const auto* second = m_stack.GetPortlets()[1].get();
    const SRect rect = second->GetRect();
    EXPECT_EQ(m_stack.PortletAt({10, rect.y + 5}), second);
    EXPECT_EQ(m_stack.PortletAt({10, 1e6f}), nullptr);
    EXPECT_EQ(m_stack.BorderAt(rect.Bottom() + 2), second);
    EXPECT_EQ(m_stack.BorderAt(rect.Bottom() - 4), nullptr);

    m_stack.GetPortlets()[1]->SetUserHeight(200);
    m_stack.Layout({800, 300}, ELayout::scroll);
    EXPECT_EQ(m_stack.GetPortlets()[1]->GetRect().height, 200);
    m_stack.Layout({800, 300}, ELayout::fit);
    EXPECT_LE(m_stack.GetHeight(), 300) << "a picture holds all of it";
}

TEST_F(StackTest, AnySizeIsDrawnAndHoldsTheCurve) {
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
