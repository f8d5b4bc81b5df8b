// The list of the series of a plot, with a coloured marker each. GUI thread.
#pragma once

#include "plot/area.h"

#include <vector>

namespace Outils_Plot2D {

class CPlot2DSerie;

class CPlot2DLegend : public CPlot2DArea {
  public:
    // `plot` holds the legend.
    explicit CPlot2DLegend(CPlot2D& plot);

    // The graphics have the origin of the plot. The hovered and the selected serie have a gradient.
    void Draw(CGraphics& graphics);
    // Leaves a line under each name for a value, as long as all rows fit.
    void SetValueLines(bool on) { m_valueLines = on; }
    // Calls `visit(serie, box)` for the line of each value, in the coordinates of the plot, as they were
    // drawn last.
    template <class Visitor>
    void ForEachValue(Visitor&& visit) const {
        for (const SValueLine& line : m_values) visit(line.serie, line.box);
    }
    // The serie whose row is under `point`, or null. `point` is in the coordinates in which the plot itself
    // lies, as for CPlot2D::HitTest. Needs no window.
    CPlot2DSerie* SerieAt(SPoint point) const;
    // The same for the coloured box of a row.
    CPlot2DSerie* BoxAt(SPoint point) const;

    const QFont& GetFont() const { return m_font; }
    void SetFont(const QFont& font) { m_font = font; }

  private:
    struct SValueLine {
        const CPlot2DSerie* serie; // may have gone since: compared only
        SRect box;
    };

    float GetLegendHeight(const CGraphics& graphics, float valueHeight) const;
    template <class Visitor>
    void ForEachRow(const CGraphics& graphics, Visitor&& visit) const;
    void DrawRow(CGraphics& graphics, const CPlot2DSerie& serie, const SRect& box, float height);

    CPlot2D& m_plot; // not owned
    QFont m_font;
    SStringFormat m_format;
    bool m_valueLines = false;
    std::vector<SValueLine> m_values;
};

} // namespace Outils_Plot2D
