// What lies where in a stack that is laid out, and how it is drawn. Points are in the coordinates of the
// stack. UI thread.
#pragma once

#include "graph/stack.h"

class QPainter;

namespace Presentation_Tarvel_Graphics {

// How the cursor and the marks on the curves under it look.
struct SCursorLook {
    Colour colour = 0xFFFF0000;
    float width = 1;
    Colour echoColour = 0xFFFF0000;
    float echoWidth = 1;
    float echoSize = 5;
};

// The portlet under a point, or null.
CTrv1DGraphPortlet* PortletAt(const CTrv1DGraphStack& stack, SPoint point);
// The portlet whose lower border is less than 3 pixels from y, or null.
CTrv1DGraphPortlet* BorderAt(const CTrv1DGraphStack& stack, float y);
// The time at a horizontal position; false without a period or outside the plotting areas.
bool TimeAt(const CTrv1DGraphStack& stack, float x, CDateTimeSpan& time);
// The time between two positions of the plotting areas, which may lie outside; empty when it is below one
// second.
SPeriod PeriodBetween(const CTrv1DGraphStack& stack, float x0, float x1);
// What is shown after the picture was dragged by pixels: `dx` positive to earlier times, and, in a graph of
// measures, `dy` positive to greater values. `portlet` may be null. `view` is what the stack shows now.
SView DragView(const CTrv1DGraphStack& stack, const SView& view, const CTrv1DGraphPortlet* portlet, float dx,
               float dy);

// Draws what lies in `visible`.
void DrawStack(const CTrv1DGraphStack& stack, CGraphics& graphics, const SRect& visible, bool markSelected);
// Lays the stack out for `size`, draws all of it from the painter's origin, without a mark of the selection,
// on a white ground. One unit is one pixel of a screen: scale the painter for paper or a dense picture.
void DrawStack(CTrv1DGraphStack& stack, QPainter& painter, SSize size);
// Over the picture: the cursors across all plotting areas, the interval between them tinted and its length on
// the time axis, and the values at the first cursor in the legends. With `echo` these are marked on the
// curves.
void DrawCursors(const CTrv1DGraphStack& stack, CGraphics& graphics, const CViewState& viewState,
                 const SCursorLook& look, bool echo);

// The values of the visible curves of a graph at a time, as the data at hand has them, in drawing order.
struct SValueAt {
    const CPlot2DSerie* serie = nullptr;
    std::string text;   // empty without a point near the time
    double percent = 0; // where the point lies, of the displayed time
    double value = 0;
};
std::vector<SValueAt> GetValuesAt(const CTrv1DGraphPortlet& portlet, CDateTimeSpan time);

} // namespace Presentation_Tarvel_Graphics
