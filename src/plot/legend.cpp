#include "plot/legend.h"

#include "plot/plot.h"

#include <cmath>

namespace Outils_Plot2D {

namespace {

constexpr float kMargin = 5;
constexpr float kMarkerSize = 12;
constexpr float kTextLeft = kMargin + kMarkerSize + kMargin;
constexpr float kRowInset = 2; // of the row's frame about its text

} // namespace

CPlot2DLegend::CPlot2DLegend(CPlot2D& plot) : m_plot(plot), m_font(DefaultFont()) {
    m_format.trimming = StringTrimming::Word;
    m_format.noClip = true;
}

float CPlot2DLegend::GetLegendHeight(const CGraphics& graphics, float valueHeight) const {
    float height = kMargin;
    const float lineHeight = graphics.GetFontHeight(m_font);
    for (const auto& serie : m_plot.GetSeries()) {
        const SRect box = {kTextLeft, 0, GetRect().width - kTextLeft - kMargin, 2 * lineHeight};
        height += std::trunc(graphics.MeasureString(serie->GetName(), m_font, box, m_format).height) +
                  valueHeight + kMargin;
    }
    return height;
}

// Calls `visit(serie, box of the name, height of the row)` from the top down, in coordinates of the legend,
// until it returns false. Drawing and hit test share the walk, so that what is hit is what is seen.
template <class Visitor>
void CPlot2DLegend::ForEachRow(const CGraphics& graphics, Visitor&& visit) const {
    const float lineHeight = graphics.GetFontHeight(m_font);
    const bool values = m_valueLines && GetLegendHeight(graphics, lineHeight) <= GetRect().height;
    float top = kMargin;
    for (const auto& serie : m_plot.GetSeries()) {
        const SRect box = {kTextLeft, top, GetRect().width - kTextLeft - kMargin, 2 * lineHeight};
        const float name = graphics.MeasureString(serie->GetName(), m_font, box, m_format).height;
        const float height = name + (values ? lineHeight : 0);
        if (!visit(*serie, SRect{box.x, box.y, box.width, name}, height)) return;
        top += std::trunc(height) + kMargin;
    }
}

void CPlot2DLegend::Draw(CGraphics& graphics) {
    DrawArea(graphics);
    graphics.SetClipRect(GetRect());
    const TextRenderingHint hint = graphics.GetTextRenderingHint();
    graphics.SetTextRenderingHint(TextRenderingHint::AntiAlias);
    const QTransform transform = graphics.GetTransform();
    graphics.Translate(GetRect().x, GetRect().y);
    m_values.clear();
    ForEachRow(graphics, [&](const CPlot2DSerie& serie, const SRect& box, float height) {
        DrawRow(graphics, serie, box, height);
        if (height > box.height)
            m_values.push_back(
                {&serie, {GetRect().x + box.x, GetRect().y + box.Bottom(), box.width, height - box.height}});
        return true;
    });
    graphics.SetTransform(transform);
    graphics.SetTextRenderingHint(hint);
    graphics.ResetClip();
}

namespace {

// The whole box in the colour, or stripes of the line's style.
void DrawSample(CGraphics& graphics, const CPlot2DSerie& serie, const SRect& box) {
    const Colour colour = graphics.GetTheme().OnGround(serie.GetColor());
    if (serie.GetLineStyle() == ELineStyle::solid) return CPlot2DSolidBrush(colour).Fill(graphics, box);
    CPlot2DSolidBrush(graphics.GetTheme().ground).Fill(graphics, box);
    const CPlot2DPen pen(colour, 1, serie.GetLineStyle());
    for (float y = box.y + 1; y < box.Bottom(); ++y)
        graphics.DrawLine(pen.GetNative(), {box.x, y}, {box.Right(), y});
}

} // namespace

void CPlot2DLegend::DrawRow(CGraphics& graphics, const CPlot2DSerie& serie, const SRect& box, float height) {
    const STheme& theme = graphics.GetTheme();
    const bool selected = m_plot.GetSelectedSerie() == &serie;
    if (selected || m_plot.GetHoveredSerie() == &serie) {
        const SRect row = {kMargin - kRowInset, box.y - kRowInset,
                           GetRect().width - 2 * kMargin + 2 * kRowInset, height + 2 * kRowInset};
        CPlot2DLinearGradientBrush(selected ? theme.pickedFrom : theme.hoveredFrom,
                                   selected ? theme.pickedTo : theme.hoveredTo, LinearGradientMode::Vertical)
            .Fill(graphics, row);
        graphics.DrawRectangle(CPlot2DPen(theme.frameSelected).GetNative(), row);
    }
    // The box of a hidden serie is empty.
    const SRect marker = {kMargin, box.y, kMarkerSize, kMarkerSize};
    if (serie.IsVisible()) DrawSample(graphics, serie, marker);
    graphics.DrawRectangle(CPlot2DPen(theme.text).GetNative(), marker);
    if (serie.IsVisible())
        graphics.DrawMarker(serie.GetMarker(), {marker.x + kMarkerSize / 2, marker.y + kMarkerSize / 2},
                            theme.ground, theme.text);
    graphics.DrawString(serie.GetName(), m_font, box, m_format, theme.text);
}

CPlot2DSerie* CPlot2DLegend::SerieAt(SPoint point) const {
    const SRect& plot = m_plot.GetRect();
    const float x = point.x - plot.x - GetRect().x, y = point.y - plot.y - GetRect().y;
    CPlot2DSerie* found = nullptr;
    if (!(x >= kMargin && x <= GetRect().width - kMargin)) return found;
    ForEachRow(CGraphics(), [&](CPlot2DSerie& serie, const SRect& box, float height) {
        if (y >= box.y && y <= box.y + height) found = &serie;
        return !found;
    });
    return found;
}

CPlot2DSerie* CPlot2DLegend::BoxAt(SPoint point) const {
    const float x = point.x - m_plot.GetRect().x - GetRect().x;
    return x <= kMargin + kMarkerSize ? SerieAt(point) : nullptr;
}

} // namespace Outils_Plot2D
