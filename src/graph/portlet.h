// One graph on the screen: a framed strip with a title and a plot. Knows no widget and asks for no data. UI
// thread.
#pragma once

#include "graph/data_source.h"
#include "graph/graph_description.h"
#include "graph/time_scale.h"
#include "graph/view_state.h"
#include "plot/plot.h"

#include <functional>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CGraphics;
using Outils_Plot2D::CPlot2D;
using Outils_Plot2D::CPlot2DSerie;
using Outils_Plot2D::SPoint;
using Outils_Plot2D::SRect;

// The least height that still shows a curve, in pixels.
inline constexpr float kMinimumPortletHeight = 130;

class CTrv1DGraphPortlet {
  public:
    virtual ~CTrv1DGraphPortlet();
    CTrv1DGraphPortlet(const CTrv1DGraphPortlet&) = delete;
    CTrv1DGraphPortlet& operator=(const CTrv1DGraphPortlet&) = delete;

    // The saved graph, null for a default one. Between its removal and the document's report of it this
    // pointer is good for comparing only.
    Metier_Tarvel_Graphics::CTrv1DGraph* GetGraph() const { return m_graph; }
    const std::string& GetTitle() const { return m_title; }
    // By what the view state knows the graph.
    SGraphKey GetKey() const { return {m_graph, m_graph ? std::string() : m_title}; }
    CPlot2D& GetPlot() { return m_plot; }
    const CPlot2D& GetPlot() const { return m_plot; }
    CTrv1DGraphSimulationTimeScale& GetTimeScale() const { return *m_timeScale; }

    // What each serie shows, in drawing order; saved curves may be destroyed.
    std::vector<SCurveDescription> GetCurves() const;
    // What a serie of the plot shows; null for a serie of another plot.
    const SCurveDescription* FindShown(const CPlot2DSerie* serie) const;
    // The saved curve that a serie of the plot shows; null if there is none.
    const Metier_Tarvel_Graphics::CTrv1DCurve* GetCurve(const CPlot2DSerie* serie) const;
    // Shows what `description` says of the same graph. Series that show the same field stay as they are, with
    // their data and their selection; the others come and go.
    virtual void Update(const SGraphDescription& description);
    // Calls for the data source of every serie, in drawing order, hidden ones included.
    void ForEachSource(const std::function<void(CTrv1DGraphDataSource&)>& visit) const;
    // The same with the serie, without the hidden ones.
    void ForEachVisible(const std::function<void(CPlot2DSerie&, CTrv1DGraphDataSource&)>& visit) const;
    // The text of a value of the graph, with its unit.
    virtual std::string FormatValue(double value) const = 0;

    // The displayed time. REQUIRES: start < end.
    void SetDisplay(CDateTimeSpan start, CDateTimeSpan end);
    // A dataset of one of the shown channels was replaced.
    virtual void OnDataChanged();
    // Takes texts and units from the adaptors again.
    virtual void Reformat() {}
    // What the plotting area says while there is nothing to draw; empty for nothing.
    void SetNotice(std::string notice) { m_notice = std::move(notice); }
    const std::string& GetNotice() const { return m_notice; }
    // Some curve that is not hidden has a point.
    bool HasPoints() const;

    // The strip, in the coordinates of the stack. `margin` pixels at least are left for the labels of the
    // vertical axis. Chooses the ticks again.
    void Layout(const SRect& rect, float margin);
    // The margin that the labels need in the present layout.
    float GetWantedMargin() const { return m_wantedMargin; }
    const SRect& GetRect() const { return m_rect; }
    // The plotting area in the coordinates of the stack.
    const SRect& GetPlottingRect() const { return m_plottingRect; }
    // Left out of the stack, because another graph is shown alone.
    bool IsCollapsed() const { return m_collapsed; }
    void SetCollapsed(bool collapsed) { m_collapsed = collapsed; }
    // The height that the user gave, or 0 to share what there is.
    float GetUserHeight() const { return m_userHeight; }
    void SetUserHeight(float height) { m_userHeight = height; }
    // The least height in which everything can be read.
    virtual float GetMinimumHeight() const { return kMinimumPortletHeight; }

    void Draw(CGraphics& graphics, bool selected);

  protected:
    // `settings` and `timeText` must outlive the portlet.
    CTrv1DGraphPortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                       const SGraphDescription& description);

    virtual std::unique_ptr<CTrv1DGraphDataSource> MakeSource(const SCurveDescription& curve) const = 0;
    // Appends a serie of the portlet's kind to the plot.
    virtual CPlot2DSerie& AddSerie(std::unique_ptr<CTrv1DGraphDataSource> source, std::string name) = 0;
    // Once the plotting area is known: the ticks of the vertical axis.
    virtual void ChooseVerticalTicks(const CGraphics& graphics) = 0;

  private:
    struct SEntry {
        CPlot2DSerie* serie;     // owned by the plot
        SCurveDescription shown; // its curve may be destroyed: compared only
    };

    void RemoveSeries(const std::vector<SCurveDescription>& wanted);
    void UpdateSerie(SEntry& entry, const SCurveDescription& wanted);

    void ApplyTheme(const Outils_Plot2D::STheme& theme);
    void LayoutPlot(const CGraphics& graphics);
    void ChooseTimeLabels(const CGraphics& graphics);
    void LabelAnyTick(float labelWidth);
    void DrawTitle(CGraphics& graphics, const SRect& title);
    void DrawNotice(CGraphics& graphics) const;

    CPlot2D m_plot;
    Metier_Tarvel_Graphics::CTrv1DGraph* m_graph; // not owned, may be destroyed
    std::string m_title;
    const SSimulationTimeText& m_timeText;
    CTrv1DGraphSimulationTimeScale* m_timeScale;    // owned by the plot's axis
    CTrv1DGraphTimeAdaptorFormater* m_timeFormater; // owned by the plot's axis
    std::vector<SEntry> m_entries;                  // in drawing order
    std::string m_notice;
    SRect m_rect;
    SRect m_plottingRect;
    float m_margin = 0;       // at least, as the layout said
    float m_wantedMargin = 0; // for the labels
    float m_userHeight = 0;
    bool m_collapsed = false;
    const Outils_Plot2D::STheme* m_theme = nullptr; // of the present pens
};

} // namespace Presentation_Tarvel_Graphics
