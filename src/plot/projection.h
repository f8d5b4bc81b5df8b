// Where the values of a serie lie on the plotting area: both scales and the rectangle, looked up once per
// paint.
#pragma once

#include "plot/plot.h"

namespace Outils_Plot2D {

class CProjection {
  public:
    explicit CProjection(CPlot2D& plot)
        : m_area(plot.GetPlottingArea().GetRect()),
          m_horizontal(plot.GetHorizontalAxis().GetScale()),
          m_vertical(plot.GetVerticalAxis().GetScale()) {}

    // Both axes have a scale; without, nothing else may be asked.
    bool IsValid() const { return m_horizontal && m_vertical; }

    const CPlot2DScale& GetVertical() const { return *m_vertical; }
    float X(double value) const { return m_area.x + m_horizontal->ToPixel(value, m_area.width); }
    // The vertical axis grows upwards.
    float Y(double value) const { return m_area.Bottom() - m_vertical->ToPixel(value, m_area.height); }
    SPoint operator()(double x, double y) const { return {X(x), Y(y)}; }
    // The scale is asked as it is: with a minimum other than zero the result is shifted by it. Scales
    // over which series are drawn begin at zero.
    float HalfPeriod(double period) const { return m_horizontal->ToPixel(period * 0.5, m_area.width); }

  private:
    SRect m_area;
    const CPlot2DScale* m_horizontal;
    const CPlot2DScale* m_vertical;
};

} // namespace Outils_Plot2D
