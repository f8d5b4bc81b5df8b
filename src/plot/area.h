// A rectangle with an optional background and border; both are owned and may be null.
#pragma once

#include "plot/pens.h"

#include <memory>

namespace Outils_Plot2D {

class CPlot2D;

class CPlot2DArea {
  public:
    CPlot2DArea() = default;
    CPlot2DArea(const CPlot2DArea&) = delete;
    CPlot2DArea& operator=(const CPlot2DArea&) = delete;
    virtual ~CPlot2DArea() = default;

    // Pixels, in the coordinates of whatever holds the area.
    const SRect& GetRect() const { return m_rect; }
    void SetRect(const SRect& rect) { m_rect = rect; }

    const CPlot2DBrush* GetBrush() const { return m_brush.get(); }
    void SetBrush(std::unique_ptr<CPlot2DBrush> brush) { m_brush = std::move(brush); }
    const CPlot2DPen* GetPen() const { return m_pen.get(); }
    void SetPen(std::unique_ptr<CPlot2DPen> pen) { m_pen = std::move(pen); }

    // Fills the rectangle, then draws its border, as far as there are a brush and a pen.
    void DrawArea(CGraphics& graphics) const;

  private:
    SRect m_rect;
    std::unique_ptr<CPlot2DBrush> m_brush;
    std::unique_ptr<CPlot2DPen> m_pen;
};

// Where the series are drawn, in the coordinates of the plot after its own origin.
class CPlot2DPlottingArea : public CPlot2DArea {
  public:
    explicit CPlot2DPlottingArea(CPlot2D& plot) : m_plot(plot) {}

    CPlot2D& GetPlot() const { return m_plot; }

  private:
    CPlot2D& m_plot; // not owned: holds this area
};

} // namespace Outils_Plot2D
