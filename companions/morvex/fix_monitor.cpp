#include "morvex/fix_monitor.h"

#include "morvex/earth.h"

#include <algorithm>

namespace Morvex {
namespace {

constexpr double kRecent = 3.0;        // s: a state of a GPS is shown for so long after its last fix
constexpr double kHeightRecent = 10.0; // s
constexpr double kAligning = 3.0 * kRadiansPerDegree;
constexpr double kFineAligning = 0.5 * kRadiansPerDegree;

// Bits of the status words.
constexpr std::uint32_t kFilterOn = 1u << 0, kAlignment = 1u << 1, kFineAlignment = 1u << 2,
                        kAltitudeGps = 1u << 4, kAltitudeDepth = 1u << 5, kAltitudeStabilized = 1u << 6,
                        kAltitudeHydro = 1u << 7;
// The state of a GPS as four bits: on, valid, waiting, rejected.
constexpr std::uint32_t kOn = 1, kValid = 2, kWaiting = 4, kRejected = 8;
constexpr int kGps2Shift = 4;

} // namespace

CFixMonitor::CFixMonitor(const SRunPlan& plan) : m_heightAids(&plan.heightAids) {
    std::size_t usbls = 0, gps = 0;
    const auto turnOn = [this](std::size_t source, std::string_view channel, bool isOn) {
        m_sources[source].isOn = isOn;
        m_sources[source].channel = channel;
    };
    for (const SGpsPlan& position : plan.gps)
        turnOn(position.isUsbl ? kFirstUsbl + usbls++ : gps++, position.source.channel, true);
    for (const SAidingPlan& aiding : plan.aidings)
        turnOn(kFirstAiding + static_cast<std::size_t>(aiding.kind), aiding.source.channel,
               !aiding.isOptional);
}

void CFixMonitor::Add(const SPositionFix& fix, const SFixOutcome& outcome) {
    SSource& source = m_sources[fix.source % m_sources.size()];
    source.lastSeen = fix.time;
    auto taken = [](EFixResult result) {
        return result == EFixResult::accepted || result == EFixResult::forced;
    };
    const bool used = taken(outcome.horizontal) || taken(outcome.vertical);
    const bool rejected =
        outcome.horizontal == EFixResult::rejected || outcome.vertical == EFixResult::rejected;
    Count(source, used, outcome);
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

void CFixMonitor::Count(SSource& source, bool used, const SFixOutcome& outcome) {
    ++(used ? source.use.used : source.use.rejected);
    source.use.distance += std::min(outcome.distance, kLargestDistance);
    source.use.components += outcome.dimension;
}

double CFixMonitor::GetLastHeightAid() const {
    return std::max(
        {m_lastHeight, GetLast(EAiding::depth), GetLast(EAiding::dvlBottom), GetLast(EAiding::range)});
}

void CFixMonitor::Add(const SAiding& aiding, EFixResult result, const SFixOutcome& outcome) {
    SSource& source = m_sources[kFirstAiding + static_cast<std::size_t>(aiding.kind)];
    source.lastSeen = aiding.time;
    Count(source, result != EFixResult::rejected, outcome);
    if (result == EFixResult::accepted || result == EFixResult::forced) source.lastUsed = aiding.time;
    if (result != EFixResult::rejected) return;
    source.lastRejected = aiding.time;
    ++m_rejected;
}

std::uint32_t CFixMonitor::StateBits(const SSource& source, double time) {
    if (!source.isOn) return 0;
    std::uint32_t bits = kOn;
    if (time - source.lastUsed < kRecent) bits |= kValid;
    if (time - source.lastSeen >= kRecent) bits |= kWaiting;
    if (time - source.lastRejected < kRecent && source.lastRejected > source.lastUsed) bits |= kRejected;
    return bits;
}

std::uint32_t CFixMonitor::GetStatus1(double time, const NavigationCovariance& covariance) const {
    std::uint32_t word = kFilterOn;
    const double heading = covariance(stateAttitude + 2, stateAttitude + 2);
    if (heading > kAligning * kAligning)
        word |= kAlignment;
    else if (heading > kFineAligning * kFineAligning)
        word |= kFineAlignment;
    const EHeightAid* aid = FindInForce(*m_heightAids, time);
    const bool isHydro = aid && *aid == EHeightAid::hydro;
    word |= time - GetLast(EAiding::depth) < kHeightRecent ? kAltitudeDepth
            : time - m_lastHeight < kHeightRecent          ? (isHydro ? kAltitudeHydro : kAltitudeGps)
                                                           : kAltitudeStabilized;
    return word | GetWord(1, time);
}

std::uint32_t CFixMonitor::GetStatus2(double time) const { return GetWord(2, time); }

std::uint32_t CFixMonitor::GetWord(int word, double time) const {
    // Where each source has its four bits; the three USBL share theirs.
    struct SPlace {
        std::size_t source;
        int word, shift;
    };
    constexpr auto at = [](EAiding kind) { return kFirstAiding + static_cast<std::size_t>(kind); };
    constexpr SPlace kPlaces[] = {{at(EAiding::dvlBottom), 1, 8},
                                  {0, 1, 12},
                                  {kFirstUsbl, 1, 16},
                                  {kFirstUsbl + 1, 1, 16},
                                  {kFirstUsbl + 2, 1, 16},
                                  {at(EAiding::depth), 1, 20},
                                  {at(EAiding::range), 1, 24},
                                  {at(EAiding::dvlWater), 2, 0},
                                  {1, 2, kGps2Shift},
                                  {at(EAiding::emLog), 2, 24},
                                  {2, 2, 28}};
    std::uint32_t bits = 0;
    for (const SPlace& place : kPlaces) {
        if (place.word != word) continue;
        std::uint32_t state = StateBits(m_sources[place.source], time);
        if (place.source == 1) {
            // On and valid of the second GPS share a bit in the words' layout, and the bit after it is
            // unused.
            if (state & kValid) state |= kOn;
            state &= ~kValid;
        }
        bits |= state << place.shift;
    }
    return bits;
}

} // namespace Morvex
