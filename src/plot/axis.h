// An axis of a plot with its labels, tick marks and grid lines. GUI thread.
#pragma once

#include "plot/formater.h"
#include "plot/pens.h"
#include "plot/scale.h"

#include <memory>

namespace Outils_Plot2D {

class CPlot2D;
class CPlot2DAxis;

enum class Orientation { Horizontal = 0, Vertical = 1 };

// Lines across the plotting area at every tick, with or without a label.
class CPlot2DGrid {
  public:
    explicit CPlot2DGrid(CPlot2DAxis& axis) : m_axis(axis) {}

    // Draws nothing without a pen or without a scale of the axis.
    void Draw(CGraphics& graphics) const;

    const CPlot2DPen* GetPen() const { return m_pen.get(); }
    void SetPen(std::unique_ptr<CPlot2DPen> pen) { m_pen = std::move(pen); }

  private:
    CPlot2DAxis& m_axis; // not owned: holds this grid
    std::unique_ptr<CPlot2DPen> m_pen;
};

class CPlot2DAxis {
  public:
    // A linear scale from 0 to 100 with step 10, two decimals, the default font, no pens. `plot` holds the
    // axis.
    CPlot2DAxis(CPlot2D& plot, Orientation orientation);
    CPlot2DAxis(const CPlot2DAxis&) = delete;
    CPlot2DAxis& operator=(const CPlot2DAxis&) = delete;

    // Grid, axis line, tick marks and labels about the plotting area; the graphics' origin is that of the
    // plot. A horizontal label that would cross an end of the axis is left out with its tick mark. Labels of
    // a vertical axis appear once the plot has a serie.
    void Draw(CGraphics& graphics) const;
    // The largest width and the largest height of the labels in pixels; zeros without a scale or a formatter.
    // A scratch graphics serves as well as any.
    SSize MeasureLabels(const CGraphics& graphics) const;

    CPlot2D& GetPlot() const { return m_plot; }
    Orientation GetOrientation() const { return m_orientation; }
    // Owned; null: no ticks / no labels.
    CPlot2DScale* GetScale() const { return m_scale.get(); }
    void SetScale(std::unique_ptr<CPlot2DScale> scale) { m_scale = std::move(scale); }
    CPlot2DValueFormater* GetFormater() const { return m_formater.get(); }
    void SetFormater(std::unique_ptr<CPlot2DValueFormater> formater) { m_formater = std::move(formater); }
    const CPlot2DPen* GetPen() const { return m_pen.get(); }
    void SetPen(std::unique_ptr<CPlot2DPen> pen) { m_pen = std::move(pen); }
    const QFont& GetFont() const { return m_font; }
    void SetFont(const QFont& font) { m_font = font; }
    CPlot2DGrid& GetGrid() { return m_grid; }

  private:
    void DrawHorizontalTick(CGraphics& graphics, double value) const;
    void DrawVerticalTick(CGraphics& graphics, double value, float halfFontHeight) const;

    CPlot2D& m_plot; // not owned
    Orientation m_orientation;
    std::unique_ptr<CPlot2DScale> m_scale;
    std::unique_ptr<CPlot2DValueFormater> m_formater;
    QFont m_font;
    SStringFormat m_format;
    CPlot2DGrid m_grid;
    std::unique_ptr<CPlot2DPen> m_pen;
};

} // namespace Outils_Plot2D
