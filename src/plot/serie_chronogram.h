// A serie drawn as steps between states. GUI thread.
#pragma once

#include "plot/pens.h"
#include "plot/serie.h"

#include <memory>
#include <string>
#include <vector>

namespace Outils_Plot2D {

// A step signal of whole states. Buckets that hold several states are drawn as blocks over all rows.
class CPlot2DSerieChronogram : public CPlot2DSerie {
  public:
    CPlot2DSerieChronogram(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name);

    void Draw(CGraphics& graphics) override;
    void SetColor(Colour colour) override;

    const CPlot2DPen& GetPen() const { return m_pen; }
    const CPlot2DSolidBrush& GetBrush() const { return m_brush; }

  private:
    void DrawBuckets(CGraphics& graphics, const CPlot2DDataSource& source);
    void DrawSteps(CGraphics& graphics);

    std::vector<SPoint> m_steps; // kept between paints
    CPlot2DPen m_pen;
    CPlot2DSolidBrush m_brush;
};

} // namespace Outils_Plot2D
