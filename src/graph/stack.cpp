#include "graph/stack.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Temps::kTicksPerSecond;

namespace {

constexpr double kShortestSpan = kTicksPerSecond;
// Periods stay well within what ticks hold, whatever is zoomed out: some four thousand years about zero.
constexpr double kGreatestTime = 1.2e18;

double ToDouble(CDateTimeSpan time) { return static_cast<double>(time.GetTicks()); }

} // namespace

void CTrv1DGraphStack::SetTimeText(const SSimulationTimeText& timeText) {
    m_timeText = timeText;
    Reformat();
}

void CTrv1DGraphStack::Reformat() {
    SetPeriod(m_period);
    for (const auto& portlet : m_portlets) portlet->Reformat();
    LevelMargins();
}

CTrv1DGraphPortlet& CTrv1DGraphStack::Add(std::unique_ptr<CTrv1DGraphPortlet> portlet) {
    CTrv1DGraphPortlet& added = *portlet;
    added.GetPlot().SetLegendVisible(m_legendsVisible);
    if (HasPeriod()) added.SetDisplay(m_period.start, m_period.end);
    m_portlets.push_back(std::move(portlet));
    return added;
}

void CTrv1DGraphStack::Clear() {
    m_portlets.clear();
    m_height = 0;
}

CTrv1DGraphPortlet* CTrv1DGraphStack::GetSelected() const {
    return m_portlets.empty() ? nullptr : m_portlets[static_cast<std::size_t>(GetSelectedIndex())].get();
}

int CTrv1DGraphStack::GetSelectedIndex() const {
    return std::clamp(m_selected, 0, std::max(0, static_cast<int>(m_portlets.size()) - 1));
}

void CTrv1DGraphStack::Select(int index) {
    m_selected = index;
    m_selected = GetSelectedIndex();
}

void CTrv1DGraphStack::Select(const CTrv1DGraphPortlet* portlet) {
    for (std::size_t i = 0; i < m_portlets.size(); ++i)
        if (m_portlets[i].get() == portlet) m_selected = static_cast<int>(i);
}

void CTrv1DGraphStack::SetPeriod(const SPeriod& period) {
    if (period.IsEmpty() || !(period.end - period.start).IsValid()) return;
    const bool first = !HasPeriod();
    m_period = period;
    if (!m_portlets.empty()) {
        // All axes have the same ticks: the first tells what the texts must show.
        m_portlets.front()->GetTimeScale().SetDisplay(period.start, period.end);
        m_timeText.FitPrecision(m_portlets.front()->GetTimeScale().GetTickSpan());
    }
    for (const auto& portlet : m_portlets) portlet->SetDisplay(period.start, period.end);
    // What came before there was a time to show it at has points from now on.
    if (first) LevelMargins();
}

void CTrv1DGraphStack::ForgetPeriod() { m_period = m_fullExtent = SPeriod(); }

bool CTrv1DGraphStack::Apply(double start, double end) {
    if (!(std::abs(start) < kGreatestTime) || !(std::abs(end) < kGreatestTime)) return false;
    const SPeriod period = {CDateTimeSpan(static_cast<std::int64_t>(start)),
                            CDateTimeSpan(static_cast<std::int64_t>(end))};
    if (period.IsEmpty()) return false;
    SetPeriod(period);
    return true;
}

bool CTrv1DGraphStack::ZoomIn(double factor) {
    if (!HasPeriod()) return false;
    const CDateTimeSpan displayed = m_period.end - m_period.start;
    if (displayed.GetTotalSeconds() < 1.0) return false;
    return ZoomTo(std::max(std::trunc(factor * ToDouble(displayed)), kShortestSpan));
}

bool CTrv1DGraphStack::ZoomOut(double factor) {
    return HasPeriod() && ZoomTo(std::trunc(factor * ToDouble(m_period.end - m_period.start)));
}

bool CTrv1DGraphStack::ZoomTo(double span) {
    const double centre = std::trunc((ToDouble(m_period.start) + ToDouble(m_period.end)) * 0.5 + 0.5);
    const double half = std::trunc(span / 2);
    return Apply(centre - half, centre + half);
}

bool CTrv1DGraphStack::Scroll(double factor) {
    if (!HasPeriod()) return false;
    const double shift = factor * ToDouble(m_period.end - m_period.start);
    return Apply(std::trunc(ToDouble(m_period.start) + shift), std::trunc(ToDouble(m_period.end) + shift));
}

bool CTrv1DGraphStack::ViewAll() {
    for (const auto& portlet : m_portlets)
        if (auto* measure = dynamic_cast<CTrv1DGraphMeasurePortlet*>(portlet.get()))
            measure->SetRangeAutomatic();
    LevelMargins();
    if (m_fullExtent.IsEmpty() || m_period == m_fullExtent) return false;
    SetPeriod(m_fullExtent);
    return true;
}

bool CTrv1DGraphStack::ZoomToPixels(const CTrv1DGraphPortlet& portlet, float x0, float x1) {
    if (!HasPeriod()) return false;
    const SRect area = portlet.GetPlottingRect();
    const auto toTime = [&](float x) {
        const float inside = std::clamp(x, area.x, area.Right()) - area.x;
        return portlet.GetTimeScale().ToTime(portlet.GetTimeScale().FromPixel(inside, area.width));
    };
    const SPeriod period = {toTime(std::min(x0, x1)), toTime(std::max(x0, x1))};
    if (period.IsEmpty() || (period.end - period.start).GetTotalSeconds() < 1.0) return false;
    SetPeriod(period);
    return true;
}

bool CTrv1DGraphStack::Pan(float dx) {
    const float width = GetPlotWidth();
    if (!HasPeriod() || !(width > 0) || dx == 0) return false;
    const double shift = std::trunc(-static_cast<double>(dx) / static_cast<double>(width) *
                                    ToDouble(m_period.end - m_period.start));
    return Apply(ToDouble(m_period.start) + shift, ToDouble(m_period.end) + shift);
}

namespace {

CTrv1DGraphMeasurePortlet* AsMeasure(CTrv1DGraphPortlet* portlet) {
    return dynamic_cast<CTrv1DGraphMeasurePortlet*>(portlet);
}

} // namespace

bool CTrv1DGraphStack::ZoomVertical(double factor) {
    auto* portlet = AsMeasure(GetSelected());
    if (!portlet) return false;
    portlet->Zoom(factor);
    LevelMargins();
    return true;
}

bool CTrv1DGraphStack::ScrollVertical(double factor) {
    auto* portlet = AsMeasure(GetSelected());
    if (!portlet) return false;
    portlet->Scroll(factor);
    LevelMargins();
    return true;
}

bool CTrv1DGraphStack::PanVertical(CTrv1DGraphPortlet& portlet, float dy) {
    auto* measure = AsMeasure(&portlet);
    const float height = portlet.GetPlottingRect().height;
    if (!measure || !(height > 0) || dy == 0) return false;
    measure->Scroll(static_cast<double>(dy / height));
    LevelMargins();
    return true;
}

void CTrv1DGraphStack::SetDataset(const SChannelKey& channel,
                                  const std::shared_ptr<const CTrv1DGraphDataset>& dataset) {
    bool changed = false;
    for (const auto& portlet : m_portlets) {
        bool shown = false;
        portlet->ForEachSource([&](CTrv1DGraphDataSource& source) {
            if (source.GetChannel() != channel) return;
            source.SetDataset(dataset);
            shown = true;
        });
        if (shown) portlet->OnDataChanged();
        changed = changed || shown;
    }
    if (changed) LevelMargins();
}

void CTrv1DGraphStack::SetLegendsVisible(bool visible) {
    m_legendsVisible = visible;
    for (const auto& portlet : m_portlets) portlet->GetPlot().SetLegendVisible(visible);
}

} // namespace Presentation_Tarvel_Graphics
