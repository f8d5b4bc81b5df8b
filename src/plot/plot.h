// One plot: a frame with a plotting area, two axes with their grids, series and a legend. It knows nothing of
// what the values mean. GUI thread; drawing into a picture may happen anywhere as long as nobody else uses
// the plot.
#pragma once

#include "plot/area.h"
#include "plot/axis.h"
#include "plot/legend.h"
#include "plot/serie.h"
#include "plot/serie_chronogram.h"
#include "plot/serie_curve.h"
#include "plot/settings.h"

#include <memory>
#include <string>
#include <vector>

namespace Outils_Plot2D {

class CPlot2D : public CPlot2DArea {
  public:
    // The bits of HitTest.
    enum Hit : unsigned { HitPlot = 1, HitPlottingArea = 2, HitLegend = 4 };

    // `settings` is shared by all plots of the process and must outlive them.
    explicit CPlot2D(CPlot2DSettings& settings);
    ~CPlot2D() override;

    // Paints everything at the place given by the plot's rectangle; the transform is as before afterwards, a
    // clip of the caller's is lost.
    void Draw(CGraphics& graphics);
    // Which of the parts hold `point`, given in the coordinates in which the plot's rectangle lies; borders
    // count as inside. The legend counts while it is visible.
    unsigned HitTest(SPoint point) const;

    // Make a serie and append it; the plot owns it and it owns `source`, which may be null.
    CPlot2DSerieCurve& AddCurve(std::unique_ptr<CPlot2DDataSource> source, std::string name);
    CPlot2DSerieChronogram& AddChronogram(std::unique_ptr<CPlot2DDataSource> source, std::string name);
    // Destroys the serie; one that is not of this plot is ignored.
    void RemoveSerie(CPlot2DSerie* serie);

    CPlot2DSettings& GetSettings() const { return m_settings; }
    CPlot2DAxis& GetHorizontalAxis() { return m_horizontalAxis; }
    CPlot2DAxis& GetVerticalAxis() { return m_verticalAxis; }
    const CPlot2DAxis& GetVerticalAxis() const { return m_verticalAxis; }
    CPlot2DPlottingArea& GetPlottingArea() { return m_plottingArea; }
    // In drawing order.
    const std::vector<std::unique_ptr<CPlot2DSerie>>& GetSeries() const { return m_series; }
    CPlot2DLegend& GetLegend() { return m_legend; }
    const CPlot2DLegend& GetLegend() const { return m_legend; }
    bool IsLegendVisible() const { return m_legendVisible; }
    void SetLegendVisible(bool visible) { m_legendVisible = visible; }
    // The serie under the mouse in the legend, and the one picked by the user; may be null, not owned.
    CPlot2DSerie* GetHoveredSerie() const { return m_hoveredSerie; }
    void SetHoveredSerie(CPlot2DSerie* serie) { m_hoveredSerie = serie; }
    CPlot2DSerie* GetSelectedSerie() const { return m_selectedSerie; }
    void SetSelectedSerie(CPlot2DSerie* serie) { m_selectedSerie = serie; }

  private:
    CPlot2DSettings& m_settings; // not owned
    CPlot2DAxis m_horizontalAxis;
    CPlot2DAxis m_verticalAxis;
    CPlot2DPlottingArea m_plottingArea;
    std::vector<std::unique_ptr<CPlot2DSerie>> m_series;
    CPlot2DLegend m_legend;
    bool m_legendVisible = true;
    CPlot2DSerie* m_hoveredSerie = nullptr;
    CPlot2DSerie* m_selectedSerie = nullptr;
};

} // namespace Outils_Plot2D
