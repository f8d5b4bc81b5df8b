#include "morvex/imu_clock.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kUsual = 0.3;       // share of the nominal span by which a good date may differ
constexpr double kDoubled = 0.5;     // share: a packet so soon after another, with its counter, repeats it
constexpr double kPull = 0.02;       // share of a late date's excess that the clock follows
constexpr double kJittering = 0.2;   // share of unusual dates from which they all are taken for late
constexpr double kJitterPull = 0.01; // share of one date in that
constexpr double kEarlyPull = 0.1;   // share of an early date's excess in the clock, then
constexpr double kLatePull = 0.001;  // the same of a late one: a recorder is late, never early
constexpr double kRatePull = 0.0025; // share of a pull in the nominal span
constexpr double kLatest = 0.25;     // s: beyond, a date is believed more than the counter
constexpr double kMatching = 0.1;    // share of a hole by which counter and dates may differ

} // namespace

std::optional<CImuClock::SSpan> CImuClock::Add(double date, std::uint16_t counter) {
    if (!m_started) {
        m_started = true;
        m_last = date;
        m_counter = counter;
        return SSpan{date, m_nominal, 0};
    }
    const double since = date - m_last;
    int steps = (counter - m_counter + kCounterCycle) % kCounterCycle;
    // A hole may be longer than the counter's cycle: the dates tell how often it went around.
    const double cycles = std::round((since / m_nominal - steps) / kCounterCycle);
    if (cycles > 0.0) steps += static_cast<int>(std::min(cycles, 1e5)) * kCounterCycle;

    if (steps == 0 && since < kDoubled * m_nominal) return std::nullopt;
    const auto take = [&](double time, int lost) {
        const SSpan span{time, time - m_last, lost};
        m_last = time;
        m_counter = counter;
        return span;
    };
    // Where dates jitter all the time the counter gives the time, and the dates its offset and its rate.
    const bool usual = std::abs(since - m_nominal) < kUsual * m_nominal;
    m_jitter += kJitterPull * ((usual ? 0.0 : 1.0) - m_jitter);
    const double excess = since - steps * m_nominal;
    if (m_jitter > kJittering && steps > 0 && std::abs(excess) < kLatest) {
        const double pull = (excess < 0.0 ? kEarlyPull : kLatePull) * excess;
        const double time = m_last + steps * m_nominal + std::max(pull, -0.5 * m_nominal);
        m_nominal += kRatePull * pull / steps;
        return take(time, steps - 1);
    }
    // A counter that was made of rounded dates repeats and skips: a date in its place needs no counter.
    if (usual) return take(date, 0);

    const double expected = steps * m_nominal;
    const double late = since - expected;
    const bool consistent = steps > 0 && std::abs(late) < kLatest + kMatching * expected;
    if (consistent) {
        // The dates in the long run are right: a late one pulls a little, and an early one that follows it
        // none.
        if (std::abs(late) < kUsual * m_nominal) return take(date, steps - 1);
        const double pull = std::clamp(kPull * late, -0.1 * m_nominal, 0.1 * m_nominal);
        return take(m_last + expected + pull, steps - 1);
    }
    // The counter says nothing that fits the dates.
    if (!(since > 0.0)) return std::nullopt;
    return take(date, since > 1.75 * m_nominal ? static_cast<int>(std::lround(since / m_nominal)) - 1 : 0);
}

} // namespace Morvex
