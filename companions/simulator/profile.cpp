#include "simulator/profile.h"

#include <algorithm>

namespace Simulation {

void CProfile::ChangeTo(double value, double begin, double duration) {
    const double from = GetLast();
    m_ramps.push_back({begin, duration, from, value - from, Integrate(m_ramps.back(), begin)});
}

const CProfile::SRamp& CProfile::Find(double time, Hint& hint) const {
    const auto holds = [&](std::size_t i) {
        return i < m_ramps.size() && m_ramps[i].begin <= time &&
               (i + 1 == m_ramps.size() || time < m_ramps[i + 1].begin);
    };
    if (!holds(hint)) {
        const auto after = std::ranges::upper_bound(m_ramps, time, {}, &SRamp::begin);
        hint = static_cast<std::size_t>(std::max<std::ptrdiff_t>(0, after - m_ramps.begin() - 1));
    }
    return m_ramps[hint];
}

SProfileValue CProfile::At(double time, Hint& hint) const {
    const SRamp& ramp = Find(time, hint);
    const double x = (time - ramp.begin) / ramp.duration;
    if (x >= 1 || ramp.delta == 0) return {ramp.from + ramp.delta, 0, 0};
    const double y = 1 - x, xy = x * y;
    return {ramp.from + ramp.delta * x * x * x * x * (35 - x * (84 - x * (70 - x * 20))),
            ramp.delta / ramp.duration * 140 * xy * xy * xy,
            ramp.delta / (ramp.duration * ramp.duration) * 420 * xy * xy * (y - x)};
}

double CProfile::Integrate(const SRamp& ramp, double time) {
    const double elapsed = time - ramp.begin;
    const double x = std::min(1.0, elapsed / ramp.duration);
    const double inRamp = x * x * x * x * x * (7 - x * (14 - x * (10 - x * 2.5)));
    return ramp.integral + ramp.from * elapsed +
           ramp.delta * (ramp.duration * inRamp + std::max(0.0, elapsed - ramp.duration));
}

double CProfile::IntegralAt(double time, Hint& hint) const { return Integrate(Find(time, hint), time); }

} // namespace Simulation
