#include "graph/stack_picture.h"

#include "plot/pens.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CPlot2DPen;

namespace {

constexpr float kBorderReach = 3; // pixels from a border at which it can be taken

} // namespace

CTrv1DGraphPortlet* PortletAt(const CTrv1DGraphStack& stack, SPoint point) {
    for (const auto& portlet : stack.GetPortlets())
        if (portlet->GetRect().Contains(point)) return portlet.get();
    return nullptr;
}

CTrv1DGraphPortlet* BorderAt(const CTrv1DGraphStack& stack, float y) {
    for (const auto& portlet : stack.GetPortlets())
        if (std::abs(portlet->GetRect().Bottom() - y) < kBorderReach) return portlet.get();
    return nullptr;
}

bool TimeAt(const CTrv1DGraphStack& stack, float x, CDateTimeSpan& time) {
    if (!stack.HasPeriod() || !(stack.GetPlotWidth() > 0)) return false;
    const SRect area = stack.GetPortlets().front()->GetPlottingRect();
    if (x < area.x || x > area.Right()) return false;
    const auto& scale = stack.GetPortlets().front()->GetTimeScale();
    time = scale.ToTime(scale.FromPixel(x - area.x, area.width));
    return time.IsValid();
}

SPeriod PeriodBetween(const CTrv1DGraphStack& stack, float x0, float x1) {
    if (!stack.HasPeriod() || !(stack.GetPlotWidth() > 0)) return {};
    // All plotting areas have the same edges.
    const auto& portlet = *stack.GetPortlets().front();
    const SRect area = portlet.GetPlottingRect();
    const auto toTime = [&](float x) {
        const float inside = std::clamp(x, area.x, area.Right()) - area.x;
        return portlet.GetTimeScale().ToTime(portlet.GetTimeScale().FromPixel(inside, area.width));
    };
    const SPeriod period = {toTime(std::min(x0, x1)), toTime(std::max(x0, x1))};
    return period.IsEmpty() || (period.end - period.start).GetTotalSeconds() < 1.0 ? SPeriod() : period;
}

SView DragView(const CTrv1DGraphStack& stack, const SView& view, const CTrv1DGraphPortlet* portlet, float dx,
               float dy) {
    SView dragged = view;
    const auto part = [](float pixels, float length) {
        return static_cast<double>(pixels) / static_cast<double>(length);
    };
    if (const float width = stack.GetPlotWidth(); width > 0 && dx != 0) {
        const double span = static_cast<double>((view.period.end - view.period.start).GetTicks());
        if (const SPeriod moved = Move(view.period, -part(dx, width) * span); !moved.IsEmpty())
            dragged.period = moved;
    }
    const auto* measure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet);
    if (const float height = measure ? measure->GetPlottingRect().height : 0; height > 0 && dy != 0)
        if (const SRange range = Scroll(measure->GetRange(), part(dy, height)); IsUsable(range))
            dragged.ranges[measure->GetKey()] = range;
    return dragged;
}

void DrawStack(const CTrv1DGraphStack& stack, CGraphics& graphics, const SRect& visible, bool markSelected) {
    const CTrv1DGraphPortlet* selected = markSelected ? stack.GetSelected() : nullptr;
    for (const auto& portlet : stack.GetPortlets()) {
        const SRect& rect = portlet->GetRect();
        if (rect.Bottom() < visible.y || rect.y > visible.Bottom()) continue;
        portlet->Draw(graphics, portlet.get() == selected);
    }
}

void DrawStack(CTrv1DGraphStack& stack, QPainter& painter, SSize size) {
    stack.Layout(size, ELayout::fit);
    painter.fillRect(QRectF(0, 0, static_cast<double>(size.width), static_cast<double>(size.height)),
                     Qt::white);
    CGraphics graphics(painter);
    DrawStack(stack, graphics, {0, 0, size.width, size.height}, false);
}

void DrawCursor(const CTrv1DGraphStack& stack, CGraphics& graphics, CDateTimeSpan time,
                const SCursorLook& look, bool echo) {
    if (!stack.HasPeriod() || !(stack.GetPlotWidth() > 0)) return;
    const CPlot2DPen pen(look.colour, look.width);
    const CPlot2DPen echoPen(look.echoColour, look.echoWidth);
    for (const auto& portlet : stack.GetPortlets()) {
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

} // namespace Presentation_Tarvel_Graphics
