#include "graph/stack_picture.h"

#include "plot/pens.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CPlot2DPen;
using Outils_Plot2D::SStringFormat;

namespace {

constexpr float kBorderReach = 3; // pixels from a border at which it can be taken
constexpr Outils_Plot2D::Colour kIntervalTint = 0x304682B4;
constexpr float kAxisGap = 3; // from the plotting area to what is on its axis

} // namespace

CTrv1DGraphPortlet* PortletAt(const CTrv1DGraphStack& stack, SPoint point) {
    for (CTrv1DGraphPortlet* portlet : stack.GetShown())
        if (portlet->GetRect().Contains(point)) return portlet;
    return nullptr;
}

CTrv1DGraphPortlet* BorderAt(const CTrv1DGraphStack& stack, float y) {
    for (CTrv1DGraphPortlet* portlet : stack.GetShown())
        if (std::abs(portlet->GetRect().Bottom() - y) < kBorderReach) return portlet;
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

std::vector<SValueAt> GetValuesAt(const CTrv1DGraphPortlet& portlet, CDateTimeSpan time) {
    std::vector<SValueAt> values;
    portlet.ForEachVisible([&](const CPlot2DSerie& serie, const CTrv1DGraphDataSource& source) {
        SValueAt& row = values.emplace_back();
        row.serie = &serie;
        if (source.GetNearestPoint(time, row.percent, row.value)) row.text = portlet.FormatValue(row.value);
    });
    return values;
}

namespace {

void DrawLine(const CTrv1DGraphPortlet& portlet, CGraphics& graphics, CDateTimeSpan time, const QPen& pen) {
    const SRect& area = portlet.GetPlottingRect();
    const double percent = portlet.GetTimeScale().ToPercent(time);
    if (!(percent >= 0 && percent <= 100)) return;
    const float x = area.x + portlet.GetTimeScale().ToPixel(percent, area.width);
    graphics.DrawLine(pen, {x, area.y}, {x, area.Bottom()});
}

// Takes the labels of the time axis that would be seen in part off as a whole.
void CoverTimeLabels(CTrv1DGraphPortlet& portlet, CGraphics& graphics, const SRect& box) {
    const auto& axis = portlet.GetPlot().GetHorizontalAxis();
    const SRect& area = portlet.GetPlottingRect();
    SStringFormat format;
    format.align = Outils_Plot2D::StringAlignment::Center;
    Outils_Plot2D::ForEachTick(*axis.GetScale(), [&](double percent) {
        const std::string label = axis.GetFormater()->Format(percent);
        if (label.empty()) return;
        const SPoint anchor = {area.x + axis.GetScale()->ToPixel(percent, area.width), box.y};
        const SRect own = graphics.MeasureString(label, axis.GetFont(), anchor, format);
        // One that would cross an end of the axis is not there.
        const bool isShown = own.x >= area.x && own.Right() <= area.Right();
        if (isShown && own.x < box.Right() && own.Right() > box.x)
            graphics.FillRectangle(QColor::fromRgba(graphics.GetTheme().ground), own);
    });
}

void DrawInterval(CTrv1DGraphPortlet& portlet, CGraphics& graphics, const SPeriod& interval,
                  const std::string& length) {
    const SRect& area = portlet.GetPlottingRect();
    const auto toX = [&](CDateTimeSpan time) {
        const double percent = std::clamp(portlet.GetTimeScale().ToPercent(time), 0.0, 100.0);
        return area.x + portlet.GetTimeScale().ToPixel(percent, area.width);
    };
    const float left = toX(interval.start), right = toX(interval.end);
    if (!(right > left)) return;
    graphics.FillRectangle(QColor::fromRgba(kIntervalTint), {left, area.y, right - left, area.height});
    const QFont& font = portlet.GetPlot().GetVerticalAxis().GetFont();
    SStringFormat format;
    format.align = Outils_Plot2D::StringAlignment::Center;
    const SPoint anchor = {(left + right) / 2, area.Bottom() + kAxisGap};
    const SRect text = graphics.MeasureString(length, font, anchor, format);
    const SRect box = {text.x - kAxisGap, text.y, text.width + 2 * kAxisGap, text.height};
    CoverTimeLabels(portlet, graphics, box);
    graphics.FillRectangle(QColor::fromRgba(graphics.GetTheme().selectedTo), box);
    graphics.DrawString(length, font, anchor, format, graphics.GetTheme().text);
}

void DrawValues(const CTrv1DGraphPortlet& portlet, CGraphics& graphics, CDateTimeSpan time,
                const SCursorLook& look, bool echo) {
    const auto values = GetValuesAt(portlet, time);
    const SRect& area = portlet.GetPlottingRect();
    const auto& plot = portlet.GetPlot();
    const auto* vertical = plot.GetVerticalAxis().GetScale();
    const CPlot2DPen pen(look.echoColour, look.echoWidth);
    for (const SValueAt& row : values) {
        if (row.text.empty() || !echo) continue;
        const float x = area.x + portlet.GetTimeScale().ToPixel(row.percent, area.width);
        const float y = area.Bottom() - vertical->ToPixel(row.value, area.height);
        const float half = look.echoSize / 2;
        if (area.Contains({x, y}))
            graphics.DrawRectangle(pen.GetNative(), {x - half, y - half, look.echoSize, look.echoSize});
    }
    if (!plot.IsLegendVisible()) return;
    const SPoint origin = {plot.GetRect().x, plot.GetRect().y};
    plot.GetLegend().ForEachValue([&](const CPlot2DSerie* serie, const SRect& box) {
        for (const SValueAt& row : values)
            if (row.serie == serie && !row.text.empty())
                graphics.DrawString(row.text, plot.GetVerticalAxis().GetFont(),
                                    SPoint{origin.x + box.x, origin.y + box.y}, SStringFormat{},
                                    graphics.GetTheme().text);
    });
}

} // namespace

void DrawCursors(const CTrv1DGraphStack& stack, CGraphics& graphics, const CViewState& viewState,
                 const SCursorLook& look, bool echo) {
    if (!stack.HasPeriod() || !(stack.GetPlotWidth() > 0)) return;
    const auto interval = viewState.GetInterval();
    std::string length;
    if (interval) stack.GetTimeText().span.ValueToText(interval->end - interval->start, length);
    const CPlot2DPen pen(look.colour, look.width);
    QPen second = pen.GetNative();
    second.setStyle(Qt::DashLine);
    for (CTrv1DGraphPortlet* portlet : stack.GetShown()) {
        if (interval) DrawInterval(*portlet, graphics, *interval, length);
        if (const auto time = viewState.GetCursor(ECursor::second))
            DrawLine(*portlet, graphics, *time, second);
        const auto time = viewState.GetCursor(ECursor::first);
        if (!time) continue;
        DrawLine(*portlet, graphics, *time, pen.GetNative());
        DrawValues(*portlet, graphics, *time, look, echo);
    }
}

} // namespace Presentation_Tarvel_Graphics
