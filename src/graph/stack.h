// The graphs of a project, one above the other on one time axis: which there are, what they display, where
// they lie. Knows no widget and asks for no data. UI thread; without one, one thread at a time.
#pragma once

#include "graph/measure_portlet.h"
#include "graph/period.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::SSize;

// How the heights are shared out.
enum class ELayout {
    scroll, // every graph keeps its least height or the user's; the stack may be higher than the view
    fit     // all graphs share the given height
};

// The least height of a graph, in pixels, whatever the user drags.
inline constexpr float kLeastHeight = 60;

class CTrv1DGraphStack {
  public:
    using Portlets = std::vector<std::unique_ptr<CTrv1DGraphPortlet>>;

    // How times become text; portlets refer to it.
    const SSimulationTimeText& GetTimeText() const { return m_timeText; }
    void SetTimeText(const SSimulationTimeText& timeText);
    // Portlets take the units and decimals of their adaptors again.
    void Reformat();

    const Portlets& GetPortlets() const { return m_portlets; }
    // Shows these graphs in this order. A graph that is shown already keeps its portlet, with height, range,
    // data and selection; default graphs are known by their title. Layout must follow. `settings` must
    // outlive the portlets.
    void SetGraphs(const std::vector<SGraphDescription>& graphs, Outils_Plot2D::CPlot2DSettings& settings);
    // Also forgets period and selection.
    void Clear();

    // The selected portlet, or null without portlets.
    CTrv1DGraphPortlet* GetSelected() const;
    int GetSelectedIndex() const;
    void Select(int index); // clamped; while a graph is shown alone, the selected one is
    void Select(const CTrv1DGraphPortlet* portlet);

    // Shows the selected graph alone, or all again. Layout must follow.
    void ShowAlone(bool alone);
    bool IsAlone() const { return m_alone; }
    // The heights that the user gave to graphs, by their titles, those of graphs that have gone included.
    std::map<std::string, float> GetHeights() const;
    // Graphs that come take theirs from here; heights out of all measure are ignored.
    void SetHeights(std::map<std::string, float> heights);
    // Those that are not left out, in order.
    std::vector<CTrv1DGraphPortlet*> GetShown() const;

    // The displayed time, in simulation time; there is none until it is set.
    bool HasPeriod() const { return !m_period.IsEmpty(); }
    const SPeriod& GetPeriod() const { return m_period; }
    // Shows the period, unless it is empty, and the ranges: a measure graph without one follows its data.
    void Show(const SView& view);
    // From the first to the last data of all that is shown.
    const SPeriod& GetFullExtent() const { return m_fullExtent; }
    void SetFullExtent(const SPeriod& extent) { m_fullExtent = extent; }
    bool ShowsFullExtent() const { return HasPeriod() && m_period == m_fullExtent; }
    // The selected graph, if it is one of measures; null otherwise.
    CTrv1DGraphMeasurePortlet* GetSelectedMeasure() const;

    // A channel's data has arrived, or is lost (null): hands it to every curve of the channel. `preview` is
    // shown where the dataset does not reach.
    void SetDataset(const SChannelKey& channel, const std::shared_ptr<const CTrv1DGraphDataset>& dataset,
                    const std::shared_ptr<const CTrv1DGraphDataset>& preview = nullptr);
    void SetLegendsVisible(bool visible);
    bool AreLegendsVisible() const { return m_legendsVisible; }

    // Places all portlets within `size` pixels and levels their left margins. Must follow every change of
    // portlets, heights or legends; vertical operations and new data level by themselves.
    void Layout(SSize size, ELayout layout);
    // The height of all portlets together, which may exceed the size given.
    float GetHeight() const { return m_height; }
    // Pixels from the start to the end of the displayed time; 0 before the first layout.
    float GetPlotWidth() const;

  private:
    std::unique_ptr<CTrv1DGraphPortlet> TakePortlet(const SGraphDescription& graph,
                                                    Outils_Plot2D::CPlot2DSettings& settings);
    void Collapse();
    void PlacePortlets(SSize size, ELayout layout);
    void SetPeriod(const SPeriod& period);
    void LevelMargins();
    void ShareMargin();

    SSimulationTimeText m_timeText; // before the portlets, which refer to it
    Portlets m_portlets;
    int m_selected = 0;
    bool m_alone = false;
    std::map<std::string, float> m_heights; // of graphs that are to come
    SPeriod m_period;
    SPeriod m_fullExtent;
    bool m_legendsVisible = true;
    SSize m_size;
    ELayout m_layout = ELayout::scroll;
    float m_height = 0;
};

} // namespace Presentation_Tarvel_Graphics
