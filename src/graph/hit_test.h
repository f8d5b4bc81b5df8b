// What lies under a point of a stack that is laid out. UI thread.
#pragma once

#include "graph/stack.h"

namespace Presentation_Tarvel_Graphics {

enum class EGraphPart {
    none,
    border, // the lower one, by which the height is dragged
    title,
    plot,
    valueAxis,
    timeAxis,
    legend,
    legendRow, // of a curve
    legendBox  // the coloured box of a curve
};

struct SGraphHit {
    CTrv1DGraphPortlet* portlet = nullptr;
    EGraphPart part = EGraphPart::none;
    CPlot2DSerie* serie = nullptr; // of a row or box of the legend
};

// `point` is in the coordinates of the stack. A border can be taken from less than 3 pixels away and comes
// before all else.
SGraphHit HitTest(const CTrv1DGraphStack& stack, SPoint point);
// The place of a portlet in the stack; -1 for one that is not there.
int IndexOf(const CTrv1DGraphStack& stack, const CTrv1DGraphPortlet* portlet);

} // namespace Presentation_Tarvel_Graphics
