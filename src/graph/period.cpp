#include "graph/period.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

namespace {

constexpr double kShortestSpan = Outils_Temps::kTicksPerSecond;
// Well within what ticks hold, whatever the user zooms out.
constexpr double kGreatestTime = 1.2e18;

double ToDouble(CDateTimeSpan time) { return static_cast<double>(time.GetTicks()); }

SPeriod MakePeriod(double start, double end) {
    if (!(std::abs(start) < kGreatestTime) || !(std::abs(end) < kGreatestTime)) return {};
    return {CDateTimeSpan(static_cast<std::int64_t>(start)), CDateTimeSpan(static_cast<std::int64_t>(end))};
}

SPeriod ZoomTo(const SPeriod& period, double span) {
    const double centre = std::trunc((ToDouble(period.start) + ToDouble(period.end)) * 0.5 + 0.5);
    const double half = std::trunc(span / 2);
    return MakePeriod(centre - half, centre + half);
}

} // namespace

SPeriod ZoomIn(const SPeriod& period, double factor) {
    const CDateTimeSpan displayed = period.end - period.start;
    if (period.IsEmpty() || displayed.GetTotalSeconds() < 1.0) return {};
    return ZoomTo(period, std::max(std::trunc(factor * ToDouble(displayed)), kShortestSpan));
}

SPeriod ZoomOut(const SPeriod& period, double factor) {
    if (period.IsEmpty()) return {};
    return ZoomTo(period, std::trunc(factor * ToDouble(period.end - period.start)));
}

SPeriod ZoomAt(const SPeriod& period, CDateTimeSpan at, double factor) {
    const double span = ToDouble(period.end - period.start);
    if (period.IsEmpty() || (factor < 1 && span < kShortestSpan)) return {};
    const double wanted = factor < 1 ? std::max(std::trunc(factor * span), kShortestSpan) : factor * span;
    const double start = ToDouble(at) - std::trunc(ToDouble(at - period.start) / span * wanted);
    return MakePeriod(start, start + std::trunc(wanted));
}

SPeriod Scroll(const SPeriod& period, double factor) {
    if (period.IsEmpty()) return {};
    const double shift = factor * ToDouble(period.end - period.start);
    return MakePeriod(std::trunc(ToDouble(period.start) + shift), std::trunc(ToDouble(period.end) + shift));
}

SPeriod Move(const SPeriod& period, double ticks) {
    if (period.IsEmpty()) return {};
    const double shift = std::trunc(ticks);
    return MakePeriod(ToDouble(period.start) + shift, ToDouble(period.end) + shift);
}

} // namespace Presentation_Tarvel_Graphics
