// The distances between the ticks of a graph. Pure arithmetic, any thread.
#pragma once

#include "foundation/date_time.h"

namespace Presentation_Tarvel_Graphics {

using Outils_Temps::CDateTimeSpan;

// value in the unit shown = value * b / a + offset
struct SDisplayUnit {
    double a = 1.0;
    double b = 1.0;
    double offset = 0.0;
};

// The step of a vertical scale from `minimum` to `maximum` (internal unit), for an axis of `length` pixels
// whose labels are `fontHeight` pixels high: 1, 2 or 5 times a power of ten in the unit shown, given back in
// the internal unit. 0 when the range is empty or not finite: such a scale has no ticks.
double ChooseVerticalStep(double minimum, double maximum, double length, double fontHeight,
                          const SDisplayUnit& unit);

// The tick span of the time scale for a displayed time: half of a readable tenth of it. Zero for an empty
// display.
CDateTimeSpan ChooseTickSpan(CDateTimeSpan displayed);

// The first tick at or after the start of the display, as a time since `origin`; `offset` is the time from
// the origin to the start of the display.
CDateTimeSpan AlignFirstTick(CDateTimeSpan offset, CDateTimeSpan tickSpan);

} // namespace Presentation_Tarvel_Graphics
