#include "plot/legend.h"

#include "plot/plot.h"

#include <cmath>

namespace Outils_Plot2D {

namespace {

constexpr Colour kLegendColour = 0xFF000078;
constexpr Colour kRowBorderColour = 0xFF99DEFE;
constexpr float kMargin = 5;
constexpr float kMarkerSize = 12;
constexpr float kTextLeft = kMargin + kMarkerSize + kMargin;
constexpr float kRowInset = 2; // of the row's frame about its text

} // namespace

CPlot2DLegend::CPlot2DLegend(CPlot2D& plot)
    : m_plot(plot),
      m_markerPen(kLegendColour),
      m_font(DefaultFont()),
      m_textBrush(kLegendColour),
      m_markerBrush(kLegendColour) {
    m_format.trimming = StringTrimming::Word;
    m_format.noClip = true;
}

// Calls `visit(serie, layout box, measured height)` from the top down, in coordinates of the legend, until it
// returns false. Drawing and hit test share the walk, so that what is hit is what is seen.
template <class Visitor>
void CPlot2DLegend::ForEachRow(const CGraphics& graphics, Visitor&& visit) const {
    const float lineHeight = graphics.GetFontHeight(m_font);
    float top = kMargin;
    for (const auto& serie : m_plot.GetSeries()) {
        const SRect box = {kTextLeft, top, GetRect().width - kTextLeft - kMargin, 2 * lineHeight};
        const float height = graphics.MeasureString(serie->GetName(), m_font, box, m_format).height;
        if (!visit(*serie, box, height)) return;
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
    ForEachRow(graphics, [&](const CPlot2DSerie& serie, const SRect& box, float height) {
        DrawRow(graphics, serie, box, height);
        return true;
    });
    graphics.SetTransform(transform);
    graphics.SetTextRenderingHint(hint);
    graphics.ResetClip();
}

void CPlot2DLegend::DrawRow(CGraphics& graphics, const CPlot2DSerie& serie, const SRect& box, float height) {
    const bool selected = m_plot.GetSelectedSerie() == &serie;
    if (selected || m_plot.GetHoveredSerie() == &serie) {
        const SRect row = {kMargin - kRowInset, box.y - kRowInset,
                           GetRect().width - 2 * kMargin + 2 * kRowInset, height + 2 * kRowInset};
        CPlot2DLinearGradientBrush(selected ? 0xFFFAFAFA : 0xFFF5FAFF, selected ? 0xFFD2D2D2 : 0xFFD7EBFF,
                                   LinearGradientMode::Vertical)
            .Fill(graphics, row);
        graphics.DrawRectangle(CPlot2DPen(kRowBorderColour).GetNative(), row);
    }
    const SRect marker = {kMargin, box.y, kMarkerSize, kMarkerSize};
    m_markerBrush.SetColor(serie.GetColor());
    m_markerBrush.Fill(graphics, marker);
    graphics.DrawRectangle(m_markerPen.GetNative(), marker);
    graphics.DrawString(serie.GetName(), m_font, {box.x, box.y, box.width, height}, m_format,
                        m_textBrush.GetColor());
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

} // namespace Outils_Plot2D
