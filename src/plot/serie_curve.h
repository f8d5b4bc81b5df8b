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

    // Points that are not finite break the line and the band.
    void Draw(CGraphics& graphics) override;
    // The band takes the same colour with the transparency of the settings.
    void SetColor(Colour colour) override;

    const CPlot2DPen& GetPen() const { return m_pen; }
    const CPlot2DSolidBrush& GetBrush() const { return m_brush; }

  private:
    struct SBand {
        std::size_t first;
        std::size_t count;
    };

    void Project(const CPlot2DDataSource& source);
    void DrawMarkers(CGraphics& graphics);
    void DrawBand(CGraphics& graphics, const CPlot2DSolidBrush& brush, const SBand& band);
    void AddBucket(SPoint minimum, SPoint maximum, float halfWidth);
    void CloseBand();

    // Kept between paints; each paint fills them again. A band gets its upper edge when it ends.
    std::vector<SPoint> m_screenPoints;
    std::vector<SPoint> m_bandPoints;
    std::vector<SPoint> m_upperEdge;
    std::vector<SBand> m_bands;
    std::vector<SRect> m_buckets; // of the band at hand
    CPlot2DPen m_pen;
    CPlot2DSolidBrush m_brush;
};

} // namespace Outils_Plot2D
