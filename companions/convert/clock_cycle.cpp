#include "convert/clock_cycle.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Conversion {
namespace {

constexpr double kFewestPairs = 10;
constexpr double kClockUnit = 1e-4;       // s: what the clock itself can tell apart
constexpr double kLargestDifference = 10; // s: a pair that errs more is damaged

double ToSeconds(Ticks ticks) { return static_cast<double>(ticks) / kTicksPerSecond; }

} // namespace

Ticks CClockCycle::Unwrap(Ticks time) {
    if (m_last == kNone) return m_last = time;
    const Ticks far = m_cycle / 8, least = m_last - far - time;
    const Ticks cycles = least <= 0 ? -(-least / m_cycle) : (least + m_cycle - 1) / m_cycle;
    time += cycles * m_cycle;
    const bool isFar = std::abs(time - m_last) > far;
    if (isFar && (m_doubtful == kNone || std::abs(time - m_doubtful) > far)) return m_doubtful = time;
    m_doubtful = kNone;
    return m_last = time;
}

void CDriftFit::Add(Ticks date, Ticks utc) {
    if (m_n == 0) m_firstDate = date, m_firstDifference = utc - date;
    const double t = ToSeconds(date - m_firstDate), d = ToSeconds(utc - date - m_firstDifference);
    if (std::abs(d) > kLargestDifference) return;
    m_n += 1;
    m_t += t;
    m_d += d;
    m_tt += t * t;
    m_td += t * d;
    m_dd += d * d;
    m_span = std::max(m_span, t);
}

double CDriftFit::GetRate() const {
    const double spread = m_tt - m_t * m_t / std::max(m_n, 1.0);
    return m_n < kFewestPairs || spread <= 0 ? 1 : 1 + (m_td - m_t * m_d / m_n) / spread;
}

bool CDriftFit::IsSignificant() const {
    if (m_n < kFewestPairs) return false;
    const double spread = m_tt - m_t * m_t / m_n, slope = GetRate() - 1;
    const double rest = std::max(0.0, m_dd - m_d * m_d / m_n - slope * slope * spread);
    const double jitter = std::max(kClockUnit, std::sqrt(rest / (m_n - 2)));
    constexpr double kCertain = 5; // standard deviations
    return std::abs(slope) * m_span > jitter &&
           slope * slope * spread > kCertain * kCertain * jitter * jitter;
}

} // namespace Conversion
