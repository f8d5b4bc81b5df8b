// A displayed time and the steps in which it moves. Pure arithmetic, any thread.
#pragma once

#include "foundation/date_time.h"

namespace Presentation_Tarvel_Graphics {

using Outils_Temps::CDateTimeSpan;

// In simulation time.
struct SPeriod {
    CDateTimeSpan start;
    CDateTimeSpan end;

    bool IsEmpty() const { return !(start < end); }
    friend bool operator==(const SPeriod&, const SPeriod&) = default;
};

// Each returns the period to show next, or an empty one when there is nothing to change. Periods stay within
// some four thousand years of zero.

// Keeps the centre. Ends at one second; a period below that is left alone.
SPeriod ZoomIn(const SPeriod& period, double factor);
SPeriod ZoomOut(const SPeriod& period, double factor);
// Keeps `at` at its place in the window; a factor below 1 zooms in and ends at one second.
SPeriod ZoomAt(const SPeriod& period, CDateTimeSpan at, double factor);
// Moves by this part of the length, positive to later times. May pass the ends of the data.
SPeriod Scroll(const SPeriod& period, double factor);
// Moves by whole ticks, the fraction left out.
SPeriod Move(const SPeriod& period, double ticks);

} // namespace Presentation_Tarvel_Graphics
