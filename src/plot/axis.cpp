#include "plot/axis.h"

#include "plot/plot.h"

#include <algorithm>

namespace Outils_Plot2D {

namespace {

constexpr float kTickLength = 5;
constexpr float kLabelGap = 3; // from the plotting area to the labels

} // namespace

void CPlot2DGrid::Draw(CGraphics& graphics) const {
    const CPlot2DScale* scale = m_axis.GetScale();
    if (!scale || !m_pen) return;
    const SRect& area = m_axis.GetPlot().GetPlottingArea().GetRect();
    ForEachTick(*scale, [&](double value) {
        if (m_axis.GetOrientation() == Orientation::Horizontal) {
            const float x = area.x + scale->ToPixel(value, area.width);
            graphics.DrawLine(m_pen->GetNative(), {x, area.y}, {x, area.Bottom()});
        } else {
            const float y = area.Bottom() - scale->ToPixel(value, area.height);
            graphics.DrawLine(m_pen->GetNative(), {area.x, y}, {area.Right(), y});
        }
    });
}

CPlot2DAxis::CPlot2DAxis(CPlot2D& plot, Orientation orientation)
    : m_plot(plot),
      m_orientation(orientation),
      m_scale(std::make_unique<CPlot2DLinearScale>()),
      m_formater(std::make_unique<CPlot2DSimpleFormater>()),
      m_font(DefaultFont()),
      m_grid(*this) {
    const bool horizontal = orientation == Orientation::Horizontal;
    m_format.align = horizontal ? StringAlignment::Center : StringAlignment::Far;
    m_format.lineAlign = horizontal ? StringAlignment::Near : StringAlignment::Center;
}

void CPlot2DAxis::Draw(CGraphics& graphics) const {
    m_grid.Draw(graphics);
    const bool horizontal = m_orientation == Orientation::Horizontal;
    const SRect& area = m_plot.GetPlottingArea().GetRect();
    if (m_pen) {
        const SPoint corner = {area.x, area.Bottom()};
        graphics.DrawLine(m_pen->GetNative(), horizontal ? corner : SPoint{area.x, area.y},
                          horizontal ? SPoint{area.Right(), area.Bottom()} : corner);
    }
    if (!m_scale) return;
    const float halfFontHeight = graphics.GetFontHeight(m_font) / 2;
    ForEachTick(*m_scale, [&](double value) {
        if (horizontal)
            DrawHorizontalTick(graphics, value);
        else
            DrawVerticalTick(graphics, value, halfFontHeight);
    });
}

void CPlot2DAxis::DrawHorizontalTick(CGraphics& graphics, double value) const {
    if (!m_formater) return;
    const SRect& area = m_plot.GetPlottingArea().GetRect();
    const SPoint anchor = {area.x + m_scale->ToPixel(value, area.width), area.Bottom() + kLabelGap};
    const std::string label = m_formater->Format(value);
    const SRect box = graphics.MeasureString(label, m_font, anchor, m_format);
    // The comparison is false for a tick that has no place at all.
    if (!(box.x >= area.x && box.Right() <= area.Right())) return;
    graphics.DrawString(label, m_font, anchor, m_format, graphics.GetTheme().text);
    if (m_pen) graphics.DrawLine(m_pen->GetNative(), anchor, {anchor.x, anchor.y - kTickLength});
}

void CPlot2DAxis::DrawVerticalTick(CGraphics& graphics, double value, float halfFontHeight) const {
    const SRect& area = m_plot.GetPlottingArea().GetRect();
    const SPoint anchor = {area.x - kLabelGap, area.Bottom() - m_scale->ToPixel(value, area.height)};
    // The lower half of the bottom label may leave the area.
    if (!(anchor.y - halfFontHeight >= area.y && anchor.y <= area.Bottom()) || m_plot.GetSeries().empty())
        return;
    if (m_pen) graphics.DrawLine(m_pen->GetNative(), anchor, {anchor.x + kTickLength, anchor.y});
    if (m_formater)
        graphics.DrawString(m_formater->Format(value), m_font, anchor, m_format, graphics.GetTheme().text);
}

SSize CPlot2DAxis::MeasureLabels(const CGraphics& graphics) const {
    SSize largest;
    if (!m_scale || !m_formater) return largest;
    ForEachTick(*m_scale, [&](double value) {
        const SRect box = graphics.MeasureString(m_formater->Format(value), m_font, SPoint{}, m_format);
        largest.width = std::max(largest.width, box.width);
        largest.height = std::max(largest.height, box.height);
    });
    return largest;
}

} // namespace Outils_Plot2D
