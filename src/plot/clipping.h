// The geometry that keeps bad and far coordinates away from the painter. Values only; any thread.
#pragma once

#include "plot/graphics.h"

#include <QPoint>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace Outils_Plot2D {

// Stands for everything that can be seen where no clip is set; a painter still computes exactly there.
inline constexpr SRect kEverything = {-1e6f, -1e6f, 2e6f, 2e6f};

inline bool IsFinite(SPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }
inline bool IsFinite(const SRect& rect) {
    return IsFinite(SPoint{rect.x, rect.y}) && IsFinite(SPoint{rect.width, rect.height});
}

// The first pixel whose middle is not before `value`, held between the two. By truncation: a call of ceil for
// every edge would be half the work.
inline int FirstPixel(double value, int low, int high) {
    const double held = std::min(std::max(value - 0.5, double(low)), double(high));
    const int whole = static_cast<int>(held);
    return whole < held ? whole + 1 : whole;
}
// The same for a value known to be within the range of the type.
inline int FirstPixel(double value) {
    const int whole = static_cast<int>(value - 0.5);
    return whole < value - 0.5 ? whole + 1 : whole;
}
// The pixels whose middles lie in the rectangle.
QRect PixelsWithin(const QRectF& rect);

SRect Expand(const SRect& rect, float margin);
SPoint ClampInto(SPoint point, const SRect& bounds);
// The part of `rect` within `bounds`, as edges moved to the bounds: a rectangle wholly outside becomes flat.
SRect ClampInto(const SRect& rect, const SRect& bounds);

// Cuts the segment at `bounds`; false: no part of it lies within. Liang and Barsky, "A New Concept and Method
// for Line Clipping", ACM Transactions on Graphics 3(1), 1984.
bool ClipSegment(SPoint& from, SPoint& to, const SRect& bounds);

// The polygon (alternate fill) as rectangles of whole pixels within `bounds`: the pixels whose centres are
// inside. Made column by column, which suits the bands of curves: about as many edges as columns, two
// crossings in each. Adjoining columns of equal extent become one rectangle. False: there are too many
// crossings to hold (millions), and `rects` is of no use.
bool PolygonToColumns(std::span<const QPointF> polygon, const QRect& bounds, std::vector<QRect>& rects);

} // namespace Outils_Plot2D
