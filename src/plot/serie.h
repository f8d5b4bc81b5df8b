// What the curves and chronograms of a plot share. CPlot2D makes and owns them. GUI thread.
#pragma once

#include "plot/data_source.h"
#include "plot/graphics.h"
#include "plot/pens.h"

#include <memory>
#include <string>
#include <utility>

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
    // Whether the plot draws it; its row of the legend stays.
    bool IsVisible() const { return m_visible; }
    void SetVisible(bool visible) { m_visible = visible; }
    // Drawn here and there on it and in its box of the legend.
    EMarker GetMarker() const { return m_marker; }
    void SetMarker(EMarker marker) { m_marker = marker; }
    // Of the line of a curve, and of its box in the legend.
    ELineStyle GetLineStyle() const { return m_lineStyle; }
    void SetLineStyle(ELineStyle style) { m_lineStyle = style; }

  protected:
    CPlot2DSerie(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name);

  private:
    CPlot2D& m_plot; // not owned: owns this serie
    std::string m_name;
    std::unique_ptr<CPlot2DDataSource> m_source;
    Colour m_color = 0xFF000000;
    bool m_visible = true;
    EMarker m_marker = EMarker::none;
    ELineStyle m_lineStyle = ELineStyle::solid;
};

} // namespace Outils_Plot2D
