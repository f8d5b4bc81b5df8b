// A range of values on a vertical axis and the steps in which it moves. Pure arithmetic, any thread.
#pragma once

namespace Presentation_Tarvel_Graphics {

// In the internal units of a graph.
struct SRange {
    double low = 0;
    double high = 0;

    double GetWidth() const { return high - low; }
    friend bool operator==(const SRange&, const SRange&) = default;
};

// The range is finite and wide enough to separate its values.
bool IsUsable(const SRange& range);
// Keeps the middle; `factor` times as wide.
SRange Zoom(const SRange& range, double factor);
// Keeps `value` at its place on the axis.
SRange ZoomAt(const SRange& range, double value, double factor);
// Moves by this part of the width, positive to greater values.
SRange Scroll(const SRange& range, double factor);

} // namespace Presentation_Tarvel_Graphics
