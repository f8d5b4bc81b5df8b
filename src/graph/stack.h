// The graphs of a project, one above the other on one time axis: what is displayed, the layout, the zooms.
// Knows no widget and asks for no data. UI thread; alone in its thread otherwise.
#pragma once

#include "graph/portlet.h"

#include <memory>
#include <span>

class QPainter;

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::SSize;

// How the heights are shared out.
enum class ELayout {
    scroll, // every graph keeps its least height or the user's; the stack may be higher than the view
    fit     // all graphs share the given height
};

struct SPeriod {
    CDateTimeSpan start;
    CDateTimeSpan end;

    bool IsEmpty() const { return !(start < end); }
    friend bool operator==(const SPeriod&, const SPeriod&) = default;
};

// How the cursor and the marks on the curves under it look.
struct SCursorLook {
    Colour colour = 0xFFFF0000;
    float width = 1;
    Colour echoColour = 0xFFFF0000;
    float echoWidth = 1;
    float echoSize = 5;
};

class CTrv1DGraphStack {
  public:
    using Portlets = std::vector<std::unique_ptr<CTrv1DGraphPortlet>>;

    // How times become text; portlets refer to it.
    const SSimulationTimeText& GetTimeText() const { return m_timeText; }
    void SetTimeText(const SSimulationTimeText& timeText);
    // Takes the units and decimals of the adaptors again.
    void Reformat();

    const Portlets& GetPortlets() const { return m_portlets; }
    // Appends; the portlet gets the present period. Layout is the caller's.
    CTrv1DGraphPortlet& Add(std::unique_ptr<CTrv1DGraphPortlet> portlet);
    void Clear();

    // The selected portlet, or null without portlets.
    CTrv1DGraphPortlet* GetSelected() const;
    int GetSelectedIndex() const;
    void Select(int index); // clamped
    void Select(const CTrv1DGraphPortlet* portlet);

    // The displayed time, in simulation time; there is none until it is set.
    bool HasPeriod() const { return !m_period.IsEmpty(); }
    const SPeriod& GetPeriod() const { return m_period; }
    // An empty period is ignored.
    void SetPeriod(const SPeriod& period);
    // From the first to the last data of all that is shown.
    const SPeriod& GetFullExtent() const { return m_fullExtent; }
    void SetFullExtent(const SPeriod& extent) { m_fullExtent = extent; }
    bool ShowsFullExtent() const { return HasPeriod() && m_period == m_fullExtent; }
    void ForgetPeriod();

    // Each answers whether the displayed time changed, so that new data is wanted. Zooming in keeps the
    // centre and ends at one second; scrolling keeps the length and may pass the ends of the data.
    bool ZoomIn(double factor);
    bool ZoomOut(double factor);
    bool Scroll(double factor); // positive to later times
    // Also lets every vertical range follow the data again.
    bool ViewAll();
    // The time between two positions of a portlet's plotting area, in pixels of the stack; not below one
    // second.
    bool ZoomToPixels(const CTrv1DGraphPortlet& portlet, float x0, float x1);
    // Drags the picture by this many pixels; positive to the right, that is to earlier times.
    bool Pan(float dx);

    // Act on the selected portlet, if that is a measure portlet; false otherwise.
    bool ZoomVertical(double factor);
    bool ScrollVertical(double factor);
    // Drags the values of a measure portlet by this many pixels, positive downwards.
    bool PanVertical(CTrv1DGraphPortlet& portlet, float dy);

    // A channel's data has arrived, or has gone (null): hands it to every curve of the channel.
    void SetDataset(const SChannelKey& channel, const std::shared_ptr<const CTrv1DGraphDataset>& dataset);
    void SetLegendsVisible(bool visible);
    bool AreLegendsVisible() const { return m_legendsVisible; }

    // Places all portlets within `size` pixels and levels their left margins. Must follow every change of
    // portlets, heights or legends; vertical operations and new data level by themselves.
    void Layout(SSize size, ELayout layout);
    // The height of all portlets together, which may exceed the size given.
    float GetHeight() const { return m_height; }
    // Pixels from the start to the end of the displayed time; 0 before the first layout.
    float GetPlotWidth() const;
    // The portlet under a point of the stack, or null.
    CTrv1DGraphPortlet* PortletAt(SPoint point) const;
    // The portlet whose lower border is less than 3 pixels from y, or null.
    CTrv1DGraphPortlet* BorderAt(float y) const;
    // The time at a horizontal position; false without a period or outside the plotting areas.
    bool TimeAt(float x, CDateTimeSpan& time) const;

    // Draws what lies in `visible` (coordinates of the stack).
    void Draw(CGraphics& graphics, const SRect& visible, bool markSelected = true);
    // The cursor at a time across all plotting areas, with the values under it marked if `echo`.
    void DrawCursor(CGraphics& graphics, CDateTimeSpan time, const SCursorLook& look, bool echo);

  private:
    bool Apply(double start, double end);
    bool ZoomTo(double span);
    void PlacePortlets(SSize size, ELayout layout);
    void LevelMargins();
    void ShareMargin();

    SSimulationTimeText m_timeText; // before the portlets, which refer to it
    Portlets m_portlets;
    int m_selected = 0;
    SPeriod m_period;
    SPeriod m_fullExtent;
    bool m_legendsVisible = true;
    SSize m_size;
    ELayout m_layout = ELayout::scroll;
    float m_height = 0;
};

// Lays the stack out for `size`, draws all of it from the painter's origin, without a mark of the selection,
// on a white ground. One unit is one pixel of a screen: scale the painter for paper or a dense picture.
void DrawStack(CTrv1DGraphStack& stack, QPainter& painter, SSize size);

} // namespace Presentation_Tarvel_Graphics
