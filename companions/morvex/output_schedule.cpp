#include "morvex/output_schedule.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kSlowest = 1.0 / 3600.0; // Hz
constexpr double kFastest = 1000.0;
constexpr double kTick = 1e-7; // s: dates closer than a tick are one

double NextMultiple(double time, double rate) { return (std::floor(time * rate + 1e-6) + 1.0) / rate; }
double FirstMultipleFrom(double time, double rate) { return std::ceil(time * rate - 1e-6) / rate; }

} // namespace

double COutputSchedule::GetRate(double time) const {
    const double* value = FindInForce(m_plan.rates, time);
    const double rate = value ? *value : m_plan.defaultRate;
    return std::isfinite(rate) ? std::clamp(rate, kSlowest, kFastest) : 1.0;
}

double COutputSchedule::GetNextAfter(double time) const {
    double from = time;
    double next = NextMultiple(time, GetRate(time + kTick));
    for (;;) {
        // The first change of the rate on the way there.
        double change = next + kTick;
        for (const auto& instruction : m_plan.rates)
            for (const double edge : {instruction.period.begin, instruction.period.end})
                if (edge > from && edge < change) change = edge;
        if (change > next) return next;
        next = std::max(FirstMultipleFrom(change, GetRate(change + kTick)), time + kTick);
        from = change;
    }
}

} // namespace Morvex
