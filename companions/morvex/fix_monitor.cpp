#include "morvex/fix_monitor.h"

#include "morvex/earth.h"

namespace Morvex {
namespace {

constexpr double kRecent = 3.0;        // s: a state of a GPS is shown for so long after its last fix
constexpr double kHeightRecent = 10.0; // s
constexpr double kAligning = 3.0 * kRadiansPerDegree;
constexpr double kFineAligning = 0.5 * kRadiansPerDegree;

// Bits of the status words.
constexpr std::uint32_t kFilterOn = 1u << 0, kAlignment = 1u << 1, kFineAlignment = 1u << 2,
                        kAltitudeGps = 1u << 4, kAltitudeStabilized = 1u << 6;
// The state of a GPS as four bits: on, valid, waiting, rejected; and where each GPS has them.
constexpr std::uint32_t kOn = 1, kValid = 2, kWaiting = 4, kRejected = 8;
constexpr int kGps1Shift = 12, kGps2Shift = 4, kGps3Shift = 28;

} // namespace

void CFixMonitor::Add(const SPositionFix& fix, const SFixOutcome& outcome) {
    SSource& source = m_sources[fix.source % m_sources.size()];
    source.lastSeen = fix.time;
    auto taken = [](EFixResult result) {
        return result == EFixResult::accepted || result == EFixResult::forced;
    };
    const bool used = taken(outcome.horizontal) || taken(outcome.vertical);
    const bool rejected =
        outcome.horizontal == EFixResult::rejected || outcome.vertical == EFixResult::rejected;
    if (used) {
        source.lastUsed = m_lastUsed = fix.time;
        ++m_used;
    }
    if (rejected) {
        source.lastRejected = fix.time;
        ++m_rejected;
    }
    if (taken(outcome.vertical)) {
        m_lastHeight = fix.time;
        m_geoidHeight = fix.geoidHeight;
    }
}

std::uint32_t CFixMonitor::StateBits(std::size_t index, double time) const {
    if (index >= m_count) return 0;
    const SSource& source = m_sources[index];
    std::uint32_t bits = kOn;
    if (time - source.lastUsed < kRecent) bits |= kValid;
    if (time - source.lastSeen >= kRecent) bits |= kWaiting;
    if (time - source.lastRejected < kRecent && source.lastRejected > source.lastUsed) bits |= kRejected;
    return bits;
}

std::uint32_t CFixMonitor::GetStatus1(double time, const StateMatrix& covariance) const {
    std::uint32_t word = kFilterOn;
    const double heading = covariance(stateAttitude + 2, stateAttitude + 2);
    if (heading > kAligning * kAligning)
        word |= kAlignment;
    else if (heading > kFineAligning * kFineAligning)
        word |= kFineAlignment;
    word |= time - m_lastHeight < kHeightRecent ? kAltitudeGps : kAltitudeStabilized;
    return word | StateBits(0, time) << kGps1Shift;
}

std::uint32_t CFixMonitor::GetStatus2(double time) const {
    // On and valid of the second GPS share a bit in the words' layout, and the bit after it is unused.
    std::uint32_t second = StateBits(1, time);
    if (second & kValid) second |= kOn;
    second &= ~kValid;
    return second << kGps2Shift | StateBits(2, time) << kGps3Shift;
}

} // namespace Morvex
