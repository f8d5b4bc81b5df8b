// The list of the series of a plot, with a coloured marker each. GUI thread.
#pragma once

#include "plot/area.h"

namespace Outils_Plot2D {

class CPlot2DSerie;

class CPlot2DLegend : public CPlot2DArea {
  public:
    // `plot` holds the legend.
    explicit CPlot2DLegend(CPlot2D& plot);

    // The graphics have the origin of the plot. The hovered and the selected serie have a gradient.
    void Draw(CGraphics& graphics);
    // The serie whose row is under `point`, or null. `point` is in the coordinates in which the plot itself
    // lies, as for CPlot2D::HitTest. Needs no window.
    CPlot2DSerie* SerieAt(SPoint point) const;

    const QFont& GetFont() const { return m_font; }
    void SetFont(const QFont& font) { m_font = font; }

  private:
    template <class Visitor>
    void ForEachRow(const CGraphics& graphics, Visitor&& visit) const;
    void DrawRow(CGraphics& graphics, const CPlot2DSerie& serie, const SRect& box, float height);

    CPlot2D& m_plot; // not owned
    CPlot2DPen m_markerPen;
    QFont m_font;
    CPlot2DSolidBrush m_textBrush;
    SStringFormat m_format;
    CPlot2DSolidBrush m_markerBrush;
};

} // namespace Outils_Plot2D
