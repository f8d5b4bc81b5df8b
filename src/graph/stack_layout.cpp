// Where the portlets of a stack lie, and how they are drawn.
#include "graph/stack.h"

#include "plot/pens.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CPlot2DPen;

namespace {

constexpr float kBorderReach = 3;  // pixels from a border at which it can be taken
constexpr float kPortletGap = 3;   // between two portlets
constexpr float kLeastHeight = 60; // of a portlet, whatever the user drags

} // namespace

void CTrv1DGraphStack::Layout(SSize size, ELayout layout) {
    m_size = size;
    m_layout = layout;
    PlacePortlets(size, layout);
    ShareMargin();
}

void CTrv1DGraphStack::PlacePortlets(SSize size, ELayout layout) {
    float y = 0;
    const float share =
        std::floor(size.height / static_cast<float>(std::max<std::size_t>(m_portlets.size(), 1)));
    for (const auto& portlet : m_portlets) {
        float height = share;
        if (layout == ELayout::scroll) {
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

CTrv1DGraphPortlet* CTrv1DGraphStack::PortletAt(SPoint point) const {
    for (const auto& portlet : m_portlets)
        if (portlet->GetRect().Contains(point)) return portlet.get();
    return nullptr;
}

CTrv1DGraphPortlet* CTrv1DGraphStack::BorderAt(float y) const {
    for (const auto& portlet : m_portlets)
        if (std::abs(portlet->GetRect().Bottom() - y) < kBorderReach) return portlet.get();
    return nullptr;
}

bool CTrv1DGraphStack::TimeAt(float x, CDateTimeSpan& time) const {
    if (!HasPeriod() || !(GetPlotWidth() > 0)) return false;
    const SRect area = m_portlets.front()->GetPlottingRect();
    if (x < area.x || x > area.Right()) return false;
    const auto& scale = m_portlets.front()->GetTimeScale();
    time = scale.ToTime(scale.FromPixel(x - area.x, area.width));
    return time.IsValid();
}

void CTrv1DGraphStack::Draw(CGraphics& graphics, const SRect& visible, bool markSelected) {
    const CTrv1DGraphPortlet* selected = markSelected ? GetSelected() : nullptr;
    for (const auto& portlet : m_portlets) {
        const SRect& rect = portlet->GetRect();
        if (rect.Bottom() < visible.y || rect.y > visible.Bottom()) continue;
        portlet->Draw(graphics, portlet.get() == selected);
    }
}

void CTrv1DGraphStack::DrawCursor(CGraphics& graphics, CDateTimeSpan time, const SCursorLook& look,
                                  bool echo) {
    if (!HasPeriod() || !(m_size.width > 0)) return;
    const CPlot2DPen pen(look.colour, look.width);
    const CPlot2DPen echoPen(look.echoColour, look.echoWidth);
    for (const auto& portlet : m_portlets) {
        const SRect area = portlet->GetPlottingRect();
        const double percent = portlet->GetTimeScale().ToPercent(time);
        if (!(percent >= 0 && percent <= 100)) return;
        const float x = area.x + portlet->GetTimeScale().ToPixel(percent, area.width);
        graphics.DrawLine(pen.GetNative(), {x, area.y}, {x, area.Bottom()});
        if (!echo) continue;
        const auto* vertical = portlet->GetPlot().GetVerticalAxis().GetScale();
        portlet->ForEachSource([&](const CTrv1DGraphDataSource& source) {
            double px = 0, value = 0;
            if (!source.GetNearestPoint(time, px, value)) return;
            const float cx = area.x + portlet->GetTimeScale().ToPixel(px, area.width);
            const float cy = area.Bottom() - vertical->ToPixel(value, area.height);
            if (!area.Contains({cx, cy})) return;
            const float half = look.echoSize / 2;
            graphics.DrawRectangle(echoPen.GetNative(), {cx - half, cy - half, look.echoSize, look.echoSize});
        });
    }
}

void DrawStack(CTrv1DGraphStack& stack, QPainter& painter, SSize size) {
    stack.Layout(size, ELayout::fit);
    painter.fillRect(QRectF(0, 0, static_cast<double>(size.width), static_cast<double>(size.height)),
                     Qt::white);
    CGraphics graphics(painter);
    stack.Draw(graphics, {0, 0, size.width, size.height}, false);
}

} // namespace Presentation_Tarvel_Graphics
