// The strip under the graphs: a bar for each file over the displayed time, broken at gaps, with a mark at
// each jump of the clock. Knows no widget. UI thread.
#pragma once

#include "graph/coverage.h"
#include "graph/stack.h"

#include <optional>
#include <string>

namespace Presentation_Tarvel_Graphics {

// Pixels; 0 without files.
float GetStripHeight(const CTrv1DCoverage& coverage);

// Draws the bars into `rect`, below the plotting areas of the stack.
void DrawStrip(const CTrv1DCoverage& coverage, const CTrv1DGraphStack& stack, CGraphics& graphics,
               const SRect& rect);

struct SStripHit {
    std::string text; // what lies there
    SPeriod period;   // what a click shows: the gap, the surroundings of a jump, or all data of the file
};
std::optional<SStripHit> HitStrip(const CTrv1DCoverage& coverage, const CTrv1DGraphStack& stack,
                                  const SRect& rect, SPoint point);

} // namespace Presentation_Tarvel_Graphics
