#include "plot/clipping.h"

#include <algorithm>

namespace Outils_Plot2D {

namespace {

// Columns stay ahead of a scan line fill for any polygon; this only bounds their memory, at some twenty
// megabytes.
constexpr std::size_t kMaximumCrossings = 2'000'000;

struct SCrossing {
    std::uint32_t column;
    float y;
};

// Where the edge crosses the centres of columns; false: they are too many by now.
bool AddCrossings(QPointF a, QPointF b, const QRect& bounds, std::vector<SCrossing>& crossings) {
    const int low = bounds.left(), high = bounds.left() + bounds.width();
    const int first = FirstPixel(std::min(a.x(), b.x()), low, high);
    const int end = FirstPixel(std::max(a.x(), b.x()), low, high);
    if (first >= end) return true;
    if (crossings.size() + static_cast<std::size_t>(end - first) > kMaximumCrossings) return false;
    const double slope = (b.y() - a.y()) / (b.x() - a.x());
    for (int column = first; column < end; ++column)
        crossings.push_back({static_cast<std::uint32_t>(column - low),
                             static_cast<float>(a.y() + (column + 0.5 - a.x()) * slope)});
    return true;
}

} // namespace

QRect PixelsWithin(const QRectF& rect) {
    constexpr int kFar = 1 << 24;
    const int left = FirstPixel(rect.left(), -kFar, kFar), top = FirstPixel(rect.top(), -kFar, kFar);
    return {left, top, FirstPixel(rect.right(), -kFar, kFar) - left,
            FirstPixel(rect.bottom(), -kFar, kFar) - top};
}

SRect Expand(const SRect& rect, float margin) {
    return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

SPoint ClampInto(SPoint point, const SRect& bounds) {
    return {std::max(bounds.x, std::min(point.x, bounds.Right())),
            std::max(bounds.y, std::min(point.y, bounds.Bottom()))};
}

SRect ClampInto(const SRect& rect, const SRect& bounds) {
    const SPoint topLeft = ClampInto(SPoint{rect.x, rect.y}, bounds);
    const SPoint bottomRight = ClampInto(SPoint{rect.Right(), rect.Bottom()}, bounds);
    return {topLeft.x, topLeft.y, bottomRight.x - topLeft.x, bottomRight.y - topLeft.y};
}

bool ClipSegment(SPoint& from, SPoint& to, const SRect& bounds) {
    const double dx = double(to.x) - from.x, dy = double(to.y) - from.y;
    const double directions[] = {-dx, dx, -dy, dy};
    const double distances[] = {double(from.x) - bounds.x, double(bounds.Right()) - from.x,
                                double(from.y) - bounds.y, double(bounds.Bottom()) - from.y};
    double enter = 0, leave = 1;
    for (int side = 0; side < 4; ++side) {
        if (directions[side] == 0) {
            if (distances[side] < 0) return false;
            continue;
        }
        const double t = distances[side] / directions[side];
        if (directions[side] < 0)
            enter = std::max(enter, t);
        else
            leave = std::min(leave, t);
    }
    if (enter > leave) return false;
    const SPoint start = from;
    if (enter > 0)
        from = {static_cast<float>(start.x + enter * dx), static_cast<float>(start.y + enter * dy)};
    if (leave < 1) to = {static_cast<float>(start.x + leave * dx), static_cast<float>(start.y + leave * dy)};
    return true;
}

bool PolygonToColumns(std::span<const QPointF> polygon, const QRect& bounds, std::vector<QRect>& rects) {
    rects.clear();
    if (polygon.size() < 3 || bounds.isEmpty()) return true;
    const std::size_t columns = static_cast<std::size_t>(bounds.width());
    std::vector<SCrossing> crossings;
    crossings.reserve(4 * columns);
    for (std::size_t i = 0; i < polygon.size(); ++i)
        if (!AddCrossings(polygon[i], polygon[i + 1 < polygon.size() ? i + 1 : 0], bounds, crossings))
            return false;

    // Counted, then sorted into one array by column.
    std::vector<std::uint32_t> starts(columns + 2, 0);
    for (const SCrossing& crossing : crossings) ++starts[crossing.column + 2];
    for (std::size_t c = 2; c < starts.size(); ++c) starts[c] += starts[c - 1];
    std::vector<float> sorted(crossings.size());
    for (const SCrossing& crossing : crossings) sorted[starts[crossing.column + 1]++] = crossing.y;

    const int top = bounds.top(), bottom = bounds.top() + bounds.height();
    for (std::size_t c = 0; c < columns; ++c) {
        const auto first = sorted.begin() + starts[c], end = sorted.begin() + starts[c + 1];
        std::sort(first, end);
        const int x = bounds.left() + static_cast<int>(c);
        for (auto y = first; y + 1 < end; y += 2) {
            const int from = FirstPixel(*y, top, bottom), to = FirstPixel(*(y + 1), top, bottom);
            if (from >= to) continue;
            if (!rects.empty() && rects.back().right() + 1 == x && rects.back().top() == from &&
                rects.back().bottom() + 1 == to)
                rects.back().setRight(x);
            else
                rects.emplace_back(x, from, 1, to - from);
        }
    }
    return true;
}

} // namespace Outils_Plot2D
