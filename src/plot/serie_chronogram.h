// A serie drawn as steps between states. GUI thread.
#pragma once

#include "plot/pens.h"
#include "plot/serie.h"

#include <memory>
#include <string>
#include <vector>

namespace Outils_Plot2D {

// A step signal of whole states, each with its text where there is room. Buckets that hold several states are
// drawn as blocks over all rows.
class CPlot2DSerieChronogram : public CPlot2DSerie {
  public:
    CPlot2DSerieChronogram(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name);

    void Draw(CGraphics& graphics) override;
    void SetColor(Colour colour) override;

    const CPlot2DPen& GetPen() const { return m_pen; }
    const CPlot2DSolidBrush& GetBrush() const { return m_brush; }

  private:
    void DrawBuckets(CGraphics& graphics, const CPlot2DDataSource& source, Colour colour);
    void DrawSteps(CGraphics& graphics);
    void AddToSegment(float left, float right, float y, double state, bool goesOn);
    void DrawLabels(CGraphics& graphics) const;

    // One state without a break.
    struct SSegment {
        float left, right, y;
        double state;
    };

    std::vector<SPoint> m_steps; // kept between paints
    std::vector<SSegment> m_segments;
    CPlot2DPen m_drawnPen{0xFF000000};
    CPlot2DPen m_pen;
    CPlot2DSolidBrush m_brush;
};

} // namespace Outils_Plot2D
