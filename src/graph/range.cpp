#include "graph/range.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

namespace {

// Below this part of its greatest value a range's ticks are lost in the rounding of a double.
constexpr double kLeastRelativeWidth = 1e-12;

} // namespace

bool IsUsable(const SRange& range) {
    const double width = range.GetWidth();
    return std::isfinite(width) && width > 0 &&
           width > std::max(std::abs(range.low), std::abs(range.high)) * kLeastRelativeWidth;
}

SRange Zoom(const SRange& range, double factor) {
    const double centre = (range.low + range.high) * 0.5, half = range.GetWidth() * factor * 0.5;
    return {centre - half, centre + half};
}

SRange ZoomAt(const SRange& range, double value, double factor) {
    return {value - (value - range.low) * factor, value + (range.high - value) * factor};
}

SRange Scroll(const SRange& range, double factor) {
    const double shift = range.GetWidth() * factor;
    return {range.low + shift, range.high + shift};
}

} // namespace Presentation_Tarvel_Graphics
