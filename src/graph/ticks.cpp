#include "graph/ticks.h"

#include <cmath>

namespace Presentation_Tarvel_Graphics {

using namespace Outils_Temps;

namespace {

// The most steps of a vertical axis.
constexpr int kMaximumSteps = 10;

// `count` raised to the next multiple of `step`, also from a multiple.
std::int64_t RaiseToNext(std::int64_t count, std::int64_t step) { return (count / step + 1) * step; }

std::int64_t RoundTenth(std::int64_t tenth) {
    constexpr std::int64_t millisecond = kTicksPerSecond / 1000;
    constexpr std::int64_t microsecond = kTicksPerSecond / 1'000'000;
    // Whole units, one more when the rest is at least half of one.
    const auto rounded = [tenth](std::int64_t unit) {
        return tenth / unit + (tenth % unit * 2 >= unit ? 1 : 0);
    };
    if (tenth >= kTicksPerDay) return rounded(kTicksPerDay) * kTicksPerDay;
    if (tenth >= kTicksPerHour) return rounded(kTicksPerHour) * kTicksPerHour;
    if (tenth >= kTicksPerMinute) {
        std::int64_t minutes = rounded(kTicksPerMinute);
        if (minutes > 5) minutes = RaiseToNext(minutes, 5);
        return minutes >= 60 ? kTicksPerHour : minutes * kTicksPerMinute;
    }
    if (tenth >= kTicksPerSecond) {
        std::int64_t seconds = rounded(kTicksPerSecond);
        if (seconds >= 6) seconds = RaiseToNext(seconds, 5);
        return seconds >= 60 ? kTicksPerMinute : seconds * kTicksPerSecond;
    }
    if (tenth >= millisecond) {
        std::int64_t milliseconds = rounded(millisecond);
        if (milliseconds >= 11) milliseconds = RaiseToNext(milliseconds, 10);
        return milliseconds >= 1000 ? kTicksPerSecond : milliseconds * millisecond;
    }
    return 500 * microsecond;
}

} // namespace

double ChooseVerticalStep(double minimum, double maximum, double length, double fontHeight,
                          const SDisplayUnit& unit) {
    const auto shown = [&unit](double value) { return value * unit.b / unit.a + unit.offset; };
    const double range = shown(maximum) - shown(minimum);
    double wanted = range / (length / (2 * fontHeight));
    if (!(range > 0) || !(wanted > 0) || !std::isfinite(range) || !std::isfinite(wanted)) return 0;
    double step = 0;
    double previous = -1;
    for (;;) {
        const double power = std::floor(std::log10(wanted));
        const double mantissa = std::pow(10.0, -power) * wanted;
        const double multiplier = mantissa <= 1 ? 1 : mantissa <= 2 ? 2 : 5;
        step = std::pow(10.0, power) * multiplier;
        const double count = range / step;
        if (count > kMaximumSteps) wanted *= 2;
        if (step == previous || !(count > kMaximumSteps)) break;
        previous = step;
    }
    // The offset takes part here as in the conversion of a position; every unit of today has none.
    return (step - unit.offset) * unit.a / unit.b;
}

CDateTimeSpan ChooseTickSpan(CDateTimeSpan displayed) {
    if (!displayed.IsValid() || displayed.GetTicks() <= 0) return CDateTimeSpan();
    return CDateTimeSpan(RoundTenth(displayed.GetTicks() / 10) / 2);
}

CDateTimeSpan AlignFirstTick(CDateTimeSpan offset, CDateTimeSpan tickSpan) {
    const std::int64_t tick = tickSpan.GetTicks();
    if (tick <= 0) return CDateTimeSpan();
    const std::int64_t count = offset.GetTicks() / tick;
    const bool behind = offset.GetTicks() > 0;
    return CDateTimeSpan((behind ? count + 1 : count) * tick);
}

} // namespace Presentation_Tarvel_Graphics
