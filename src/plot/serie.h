// The series of a plot: curves and chronograms. They are made by CPlot2D, which owns them. GUI thread.
#pragma once

#include "plot/data_source.h"
#include "plot/pens.h"

#include <memory>
#include <string>
#include <vector>

namespace Outils_Plot2D {

class CPlot2D;

class CPlot2DSerie {
  public:
    CPlot2DSerie(const CPlot2DSerie&) = delete;
    CPlot2DSerie& operator=(const CPlot2DSerie&) = delete;
    virtual ~CPlot2DSerie() = default;

    // Takes `source` (may be null). The previous one is destroyed, or handed back to the caller if
    // `deletePrevious` is false.
    virtual std::unique_ptr<CPlot2DDataSource> SetDataSource(std::unique_ptr<CPlot2DDataSource> source,
                                                             bool deletePrevious = true);
    // Draws within the plotting area, clipped to it; takes every clip off at the end.
    virtual void Draw(CGraphics& graphics);
    virtual void SetColor(Colour colour);

    CPlot2D& GetPlot() const { return m_plot; }
    // Shown in the legend, UTF-8.
    const std::string& GetName() const { return m_name; }
    void SetName(std::string name) { m_name = std::move(name); }
    CPlot2DDataSource* GetDataSource() const { return m_source.get(); }
    Colour GetColor() const { return m_color; }

  protected:
    CPlot2DSerie(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name);

  private:
    CPlot2D& m_plot; // not owned: owns this serie
    std::string m_name;
    std::unique_ptr<CPlot2DDataSource> m_source;
    Colour m_color = 0xFF000000;
};

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
    void AddBucket(SPoint minimum, SPoint maximum, float halfWidth);
    void CloseBand();

    // Kept between paints, filled anew by each. The upper edges stand apart until the end of a band is known.
    std::vector<SPoint> m_screenPoints;
    std::vector<SPoint> m_bandPoints;
    std::vector<SPoint> m_upperEdge;
    std::vector<SBand> m_bands;
    CPlot2DPen m_pen;
    CPlot2DSolidBrush m_brush;
};

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
