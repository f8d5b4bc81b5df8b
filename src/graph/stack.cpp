#include "graph/stack.h"

#include "graph/enum_portlet.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

namespace {

constexpr float kPortletGap = 3;  // between two portlets
constexpr float kFarAway = -1e5f; // the place of those that are left out
constexpr float kGreatestHeight = 1e4f;

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

void CTrv1DGraphStack::SetGraphs(const std::vector<SGraphDescription>& graphs,
                                 Outils_Plot2D::CPlot2DSettings& settings) {
    const CTrv1DGraphPortlet* selected = GetSelected();
    m_heights = GetHeights();
    Portlets portlets;
    for (const SGraphDescription& graph : graphs) portlets.push_back(TakePortlet(graph, settings));
    m_portlets = std::move(portlets);
    Select(selected);
    Select(m_selected);
    Collapse();
}

// The portlet that shows the graph already, or a new one.
std::unique_ptr<CTrv1DGraphPortlet> CTrv1DGraphStack::TakePortlet(const SGraphDescription& graph,
                                                                  Outils_Plot2D::CPlot2DSettings& settings) {
    for (auto& portlet : m_portlets) {
        // A default graph that becomes part of the project keeps its title.
        if (!portlet || (portlet->GetGraph() && portlet->GetGraph() != graph.graph)) continue;
        if (!portlet->GetGraph() && portlet->GetTitle() != graph.title) continue;
        // An address may come again with another graph.
        const bool isChronogram = !dynamic_cast<CTrv1DGraphMeasurePortlet*>(portlet.get());
        if (isChronogram != graph.IsChronogram()) continue;
        portlet->Update(graph);
        return std::move(portlet);
    }
    std::unique_ptr<CTrv1DGraphPortlet> portlet;
    if (graph.IsChronogram())
        portlet = std::make_unique<CTrv1DGraphEnumPortlet>(settings, m_timeText, graph);
    else
        portlet = std::make_unique<CTrv1DGraphMeasurePortlet>(settings, m_timeText, graph);
    portlet->GetPlot().SetLegendVisible(m_legendsVisible);
    const auto height = m_heights.find(portlet->GetTitle());
    if (height != m_heights.end()) portlet->SetUserHeight(height->second);
    if (HasPeriod()) portlet->SetDisplay(m_period.start, m_period.end);
    return portlet;
}

void CTrv1DGraphStack::Clear() {
    m_heights = GetHeights();
    m_portlets.clear();
    m_period = m_fullExtent = SPeriod();
    m_selected = 0;
    m_alone = false;
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
    Collapse();
}

void CTrv1DGraphStack::ShowAlone(bool alone) {
    m_alone = alone;
    Collapse();
}

void CTrv1DGraphStack::Collapse() {
    const auto* selected = GetSelected();
    for (const auto& portlet : m_portlets) portlet->SetCollapsed(m_alone && portlet.get() != selected);
}

std::map<std::string, float> CTrv1DGraphStack::GetHeights() const {
    auto heights = m_heights;
    for (const auto& portlet : m_portlets) {
        heights.erase(portlet->GetTitle());
        if (portlet->GetUserHeight() > 0) heights[portlet->GetTitle()] = portlet->GetUserHeight();
    }
    return heights;
}

void CTrv1DGraphStack::SetHeights(std::map<std::string, float> heights) {
    std::erase_if(heights, [](const auto& row) { return !(row.second > 0 && row.second < kGreatestHeight); });
    m_heights = std::move(heights);
}

std::vector<CTrv1DGraphPortlet*> CTrv1DGraphStack::GetShown() const {
    std::vector<CTrv1DGraphPortlet*> shown;
    for (const auto& portlet : m_portlets)
        if (!portlet->IsCollapsed()) shown.push_back(portlet.get());
    return shown;
}

void CTrv1DGraphStack::Select(const CTrv1DGraphPortlet* portlet) {
    for (std::size_t i = 0; i < m_portlets.size(); ++i)
        if (m_portlets[i].get() == portlet) Select(static_cast<int>(i));
}

void CTrv1DGraphStack::Show(const SView& view) {
    // What came before there was a time to show it at has points from now on.
    bool level = !HasPeriod();
    SetPeriod(view.period);
    for (const auto& portlet : m_portlets) {
        auto* measure = dynamic_cast<CTrv1DGraphMeasurePortlet*>(portlet.get());
        if (!measure) continue;
        const SRange before = measure->GetRange();
        const auto range = view.ranges.find(measure->GetKey());
        if (range != view.ranges.end())
            measure->SetRange(range->second);
        else if (!measure->IsRangeAutomatic())
            measure->SetRangeAutomatic();
        level = level || measure->GetRange() != before;
    }
    if (level) LevelMargins();
}

void CTrv1DGraphStack::SetPeriod(const SPeriod& period) {
    if (period.IsEmpty() || !(period.end - period.start).IsValid()) return;
    m_period = period;
    if (!m_portlets.empty()) {
        // All axes have the same ticks: the first decides what the texts show.
        m_portlets.front()->GetTimeScale().SetDisplay(period.start, period.end);
        m_timeText.FitPrecision(m_portlets.front()->GetTimeScale().GetTickSpan());
    }
    for (const auto& portlet : m_portlets) portlet->SetDisplay(period.start, period.end);
}

CTrv1DGraphMeasurePortlet* CTrv1DGraphStack::GetSelectedMeasure() const {
    return dynamic_cast<CTrv1DGraphMeasurePortlet*>(GetSelected());
}

void CTrv1DGraphStack::SetDataset(const SChannelKey& channel,
                                  const std::shared_ptr<const CTrv1DGraphDataset>& dataset,
                                  const std::shared_ptr<const CTrv1DGraphDataset>& preview) {
    bool changed = false;
    for (const auto& portlet : m_portlets) {
        bool shown = false;
        portlet->ForEachSource([&](CTrv1DGraphDataSource& source) {
            if (source.GetChannel() != channel) return;
            source.SetDataset(dataset, preview);
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

void CTrv1DGraphStack::Layout(SSize size, ELayout layout) {
    m_size = size;
    m_layout = layout;
    PlacePortlets(size, layout);
    ShareMargin();
}

void CTrv1DGraphStack::PlacePortlets(SSize size, ELayout layout) {
    float y = 0;
    const float share =
        std::floor(size.height / static_cast<float>(std::max<std::size_t>(GetShown().size(), 1)));
    for (const auto& portlet : m_portlets) {
        if (portlet->IsCollapsed()) {
            portlet->Layout({0, kFarAway, size.width, kMinimumPortletHeight}, 0);
            continue;
        }
        float height = share;
        if (layout == ELayout::scroll && !m_alone) {
            const float automatic = std::max(portlet->GetMinimumHeight(), share);
            const float user = portlet->GetUserHeight();
            height = user > 0 ? std::max(user, kLeastHeight) + kPortletGap : automatic;
        }
        portlet->Layout({0, y, size.width, std::max(1.0f, height - kPortletGap)}, 0);
        y += height;
    }
    m_height = y;
}

void CTrv1DGraphStack::LevelMargins() {
    if (!(m_size.width > 0)) return;
    for (const auto& portlet : m_portlets) portlet->Layout(portlet->GetRect(), 0);
    ShareMargin();
}

// The greatest margin that any portlet asks for is given to all, so that their time axes stay aligned.
void CTrv1DGraphStack::ShareMargin() {
    float margin = 0;
    for (const auto& portlet : m_portlets) margin = std::max(margin, portlet->GetWantedMargin());
    for (const auto& portlet : m_portlets)
        if (portlet->GetWantedMargin() != margin) portlet->Layout(portlet->GetRect(), margin);
}

float CTrv1DGraphStack::GetPlotWidth() const {
    return m_portlets.empty() || !(m_size.width > 0) ? 0 : m_portlets.front()->GetPlottingRect().width;
}

} // namespace Presentation_Tarvel_Graphics
