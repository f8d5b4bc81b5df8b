// A serie drawn as a curve. GUI thread.
#pragma once

#include "plot/pens.h"
#include "plot/serie.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace Outils_Plot2D {

// A line through the points and, above it, a translucent band between the extrema of the buckets.
class CPlot2DSerieCurve : public CPlot2DSerie {
  public:
    // Takes the next colour of the palette.
    CPlot2DSerieCurve(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name);

    // Points that are not finite break the line and the band. Provisional points are a thin pale line.
    void Draw(CGraphics& graphics) override;
    // The band takes the same colour with the transparency of the settings.
    void SetColor(Colour colour) override;

    const CPlot2DPen& GetPen() const { return m_pen; }
    const CPlot2DSolidBrush& GetBrush() const { return m_brush; }

  private:
    void Project(const CPlot2DDataSource& source);
    void DrawProvisional(CGraphics& graphics, const CPlot2DDataSource& source);
    void DrawLineAndBand(CGraphics& graphics);
    void DrawBands(CGraphics& graphics, const CPlot2DSolidBrush& brush);
    void DrawMarkers(CGraphics& graphics);

    // Kept between paints; each paint fills them again. One that is not finite is a break.
    std::vector<SPoint> m_screenPoints;
    std::vector<SBucket> m_buckets;
    float m_halfWidth = 0;            // of a bucket
    std::vector<SPoint> m_bandPoints; // of the polygon at hand
    CPlot2DPen m_pen;
    CPlot2DSolidBrush m_brush;
};

} // namespace Outils_Plot2D
