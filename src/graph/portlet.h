// One graph on the screen: a framed strip with a title and a plot. Knows no widget and asks for no data. UI
// thread.
#pragma once

#include "graph/data_source.h"
#include "graph/time_scale.h"
#include "graph/vertical_scale.h"
#include "plot/plot.h"

#include <functional>
#include <string>
#include <vector>

namespace Metier_Tarvel_Graphics {
class CTrv1DCurve;
class CTrv1DGraph;
} // namespace Metier_Tarvel_Graphics

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CGraphics;
using Outils_Plot2D::Colour;
using Outils_Plot2D::CPlot2D;
using Outils_Plot2D::CPlot2DSerie;
using Outils_Plot2D::SPoint;
using Outils_Plot2D::SRect;

// The least height that still shows a curve, in pixels.
inline constexpr float kMinimumPortletHeight = 130;

// One serie to show. `curve` is the saved one, or null for a chronogram and for a default graph.
struct SCurveDescription {
    std::string name; // in the legend, UTF-8
    SChannelKey channel;
    std::uint32_t field = 0;
    double factor = 1.0;
    Colour colour = 0xFF000000;
    const Metier_Tarvel_Graphics::CTrv1DCurve* curve = nullptr;
};

class CTrv1DGraphPortlet {
  public:
    virtual ~CTrv1DGraphPortlet();
    CTrv1DGraphPortlet(const CTrv1DGraphPortlet&) = delete;
    CTrv1DGraphPortlet& operator=(const CTrv1DGraphPortlet&) = delete;

    // The saved graph, null for a default one. It may be gone while the document tells that it changes: until
    // the portlets are made anew it is good for comparing only.
    Metier_Tarvel_Graphics::CTrv1DGraph* GetGraph() const { return m_graph; }
    const std::string& GetTitle() const { return m_title; }
    CPlot2D& GetPlot() { return m_plot; }
    CTrv1DGraphSimulationTimeScale& GetTimeScale() const { return *m_timeScale; }

    // The saved curve behind a serie of the plot; null if there is none.
    const Metier_Tarvel_Graphics::CTrv1DCurve* GetCurve(const CPlot2DSerie* serie) const;
    // Takes the serie off the plot; the data goes with the last curve that needs it.
    void RemoveSerie(const CPlot2DSerie* serie);
    // Calls for the data source of every serie, in drawing order.
    void ForEachSource(const std::function<void(CTrv1DGraphDataSource&)>& visit) const;

    // The displayed time. REQUIRES: start < end.
    void SetDisplay(CDateTimeSpan start, CDateTimeSpan end);
    // A dataset of one of the shown channels was replaced.
    virtual void OnDataChanged();
    // Texts and units are to be taken from the settings again.
    virtual void Reformat() {}
    // What the plotting area says while there is nothing to draw; empty for nothing.
    void SetNotice(std::string notice) { m_notice = std::move(notice); }
    // Some curve has a point.
    bool HasPoints() const;

    // The strip, in the coordinates of the stack. `margin` pixels at least are left for the labels of the
    // vertical axis. Chooses the ticks anew.
    void Layout(const SRect& rect, float margin);
    // The margin that the labels need in the present layout.
    float GetWantedMargin() const { return m_wantedMargin; }
    const SRect& GetRect() const { return m_rect; }
    // The plotting area in the coordinates of the stack.
    const SRect& GetPlottingRect() const { return m_plottingRect; }
    // The height that the user gave, or 0 to share what there is.
    float GetUserHeight() const { return m_userHeight; }
    void SetUserHeight(float height) { m_userHeight = height; }
    // The least height in which everything can be read.
    virtual float GetMinimumHeight() const { return kMinimumPortletHeight; }

    void Draw(CGraphics& graphics, bool selected);

  protected:
    // `settings` and `timeText` must outlive the portlet.
    CTrv1DGraphPortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                       Metier_Tarvel_Graphics::CTrv1DGraph* graph, std::string title);

    void Register(CPlot2DSerie& serie, const SCurveDescription& description);
    // Once the plotting area is known: the ticks of the vertical axis.
    virtual void ChooseVerticalTicks(const CGraphics& graphics) = 0;

  private:
    struct SEntry {
        const CPlot2DSerie* serie;
        const Metier_Tarvel_Graphics::CTrv1DCurve* curve;
    };

    void LayoutPlot(const CGraphics& graphics);
    void ChooseTimeLabels(const CGraphics& graphics);
    void DrawNotice(CGraphics& graphics) const;

    CPlot2D m_plot;
    Metier_Tarvel_Graphics::CTrv1DGraph* m_graph; // Not owned, may be gone.
    std::string m_title;
    CTrv1DGraphSimulationTimeScale* m_timeScale;    // owned by the plot's axis
    CTrv1DGraphTimeAdaptorFormater* m_timeFormater; // owned by the plot's axis
    std::vector<SEntry> m_entries;
    std::string m_notice;
    SRect m_rect;
    SRect m_plottingRect;
    float m_margin = 0;       // at least, as the layout said
    float m_wantedMargin = 0; // for the labels
    float m_userHeight = 0;
};

// Curves of one kind of measure. Its vertical range fits the data until the user changes it.
class CTrv1DGraphMeasurePortlet : public CTrv1DGraphPortlet {
  public:
    // `adaptor` shows the values; it must outlive the portlet.
    CTrv1DGraphMeasurePortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                              Metier_Tarvel_Graphics::CTrv1DGraph* graph, std::string title,
                              const CNumericValueAdaptor& adaptor);

    CPlot2DSerie& AddCurve(const SCurveDescription& description);

    double GetMinimum() const { return m_scale->GetMinimum(); }
    double GetMaximum() const { return m_scale->GetMaximum(); }
    // The range follows the data.
    bool IsRangeAutomatic() const { return m_automatic; }
    // The user's range; ignored unless it is finite and wide enough for its values to be told apart.
    void SetRange(double minimum, double maximum);
    void SetRangeAutomatic();
    // Zooms by `factor` about the middle of the range; moves it by this part of its width.
    void Zoom(double factor);
    void Scroll(double factor);

    void OnDataChanged() override;
    void Reformat() override;

  protected:
    void ChooseVerticalTicks(const CGraphics& graphics) override;

  private:
    void FitRange();

    CTrv1DGraphVerticalScale* m_scale;             // owned by the plot's axis
    CTrv1DGraphNumericAdaptorFormater* m_formater; // owned by the plot's axis
    bool m_automatic = true;
};

// The chronogram of one enumerated field.
class CTrv1DGraphEnumPortlet : public CTrv1DGraphPortlet {
  public:
    // `literals` are the texts of the states, from 0 on.
    CTrv1DGraphEnumPortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                           Metier_Tarvel_Graphics::CTrv1DGraph* graph, std::string title,
                           const SCurveDescription& description, const std::vector<std::string>& literals);

    float GetMinimumHeight() const override;

  protected:
    void ChooseVerticalTicks(const CGraphics&) override {}

  private:
    std::size_t m_rows;
};

} // namespace Presentation_Tarvel_Graphics
