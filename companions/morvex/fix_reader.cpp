#include "morvex/fix_reader.h"

#include "morvex/earth.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Morvex {
namespace {

using namespace Persistance_Xpf;

// What a mode is good for when a packet states no deviation, m. Mode 0 is no fix, and 6 is a dead reckoning
// of the receiver: neither is taken.
struct SModeDeviation {
    bool taken;
    double horizontal, vertical;
};
constexpr std::array<SModeDeviation, 10> kModes{{{false, 0.0, 0.0},
                                                 {true, 5.0, 8.0},
                                                 {true, 1.5, 2.5},
                                                 {true, 3.0, 5.0},
                                                 {true, 0.03, 0.05},
                                                 {true, 0.4, 0.6},
                                                 {false, 0.0, 0.0},
                                                 {true, 20.0, 30.0},
                                                 {true, 5.0, 8.0},
                                                 {true, 0.4, 0.6}}};

// The low two bits of a rejection byte.
EUse UseOf(std::uint8_t rejection) {
    switch (rejection & 3u) {
    case 1: return EUse::always;
    case 2: return EUse::never;
    default: return EUse::tested;
    }
}

double Usable(double deviation, double otherwise) {
    return std::isfinite(deviation) && deviation > 0.0 ? deviation : otherwise;
}

void SetVariances(const SFixDeviation& stated, const SFixDeviation& least, const SModeDeviation& mode,
                  SPositionFix& fix) {
    const double north = std::max(Usable(stated.north, mode.horizontal), least.north);
    const double east = std::max(Usable(stated.east, mode.horizontal), least.east);
    const double up = std::max(Usable(stated.up, mode.vertical), least.up);
    // Zero would make a fix infallible; a millimetre is beyond any receiver.
    auto variance = [](double deviation) { return std::max(deviation * deviation, 1e-6); };
    fix.varianceNorth = variance(north);
    fix.varianceEast = variance(east);
    fix.varianceUp = variance(up);
    const double bound = 0.98 * std::sqrt(fix.varianceNorth * fix.varianceEast);
    fix.covarianceNorthEast =
        std::isfinite(stated.covariance) ? std::clamp(stated.covariance, -bound, bound) : 0.0;
}

} // namespace

std::vector<int> CFixReader::Open(const SRunPlan& plan) {
    std::vector<int> missing;
    m_plan = &plan;
    m_sources.clear();
    for (std::size_t i = 0; i < plan.gps.size(); ++i) {
        auto source = std::make_unique<SSource>();
        source->plan = &plan.gps[i];
        source->number = static_cast<std::uint8_t>(i);
        if (!source->stream.Open(plan.gps[i].source, kGpsLayout)) {
            missing.push_back(static_cast<int>(i));
            continue;
        }
        Advance(*source);
        m_sources.push_back(std::move(source));
    }
    FindFirst();
    return missing;
}

void CFixReader::Pop() {
    Advance(*m_sources[m_first]);
    FindFirst();
}

void CFixReader::FindFirst() {
    m_first = m_sources.size();
    for (std::size_t i = 0; i < m_sources.size(); ++i)
        if (m_sources[i]->hasNext &&
            (m_first == m_sources.size() || m_sources[i]->next.time < m_sources[m_first]->next.time))
            m_first = i;
}

void CFixReader::Advance(SSource& source) {
    const double last = source.hasNext ? source.next.time : -HUGE_VAL;
    CPayload payload;
    while (source.stream.Next(payload)) {
        SPositionFix fix;
        if (MakeFix(source, payload, fix) && fix.time > last) {
            source.next = fix;
            source.hasNext = true;
            return;
        }
    }
    source.hasNext = false;
}

bool CFixReader::MakeFix(const SSource& source, const CPayload& payload, SPositionFix& fix) const {
    constexpr auto at = [](const char* name) consteval { return kGpsLayout.OffsetOf(name); };
    const auto mode = payload.Get<std::uint8_t>(at("GPS mode"));
    if (mode >= kModes.size() || !kModes[mode].taken) return false;
    const double delay = payload.Get<float>(at("Delay"));
    const double latitude = payload.Get<double>(at("Latitude"));
    const double longitude = payload.Get<double>(at("Longitude"));
    const double altitude = payload.Get<float>(at("Altitude"));
    const double separation = payload.Get<float>(at("Geoidal sep"));
    if (!(std::abs(latitude) <= 90.0) || !(std::abs(longitude) <= 360.0) || !(std::abs(altitude) < 1e6))
        return false;

    // The delay is the age of the position at the packet's date.
    fix.time = payload.GetSeconds() + source.stream.GetTimeOffset() - (std::isfinite(delay) ? delay : 0.0);
    if (!(std::abs(fix.time) < 1e9)) return false;
    fix.geoidHeight = std::abs(separation) < 1e3 ? separation : 0.0;
    fix.position = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree,
                    altitude + (m_plan->aboveGeoid ? fix.geoidHeight : 0.0)};
    fix.leverArm = source.plan->leverArm;
    fix.source = source.number;

    SFixDeviation stated{payload.Get<float>(at("Std. dev. north")), payload.Get<float>(at("Std. dev. east")),
                         payload.Get<float>(at("Std. dev. altitude")),
                         payload.Get<float>(at("Covariance XY"))};
    if (const SFixDeviation* user = FindInForce(source.plan->userDeviations, fix.time)) stated = *user;
    SetVariances(stated, source.plan->leastDeviation, kModes[mode], fix);

    fix.horizontal = UseOf(payload.Get<std::uint8_t>(at("Horizontal rejection")));
    fix.vertical = UseOf(payload.Get<std::uint8_t>(at("Vertical rejection")));
    if (const ERejection* rejection = FindInForce(source.plan->rejections, fix.time)) {
        constexpr EUse uses[] = {EUse::tested, EUse::never, EUse::always, EUse::reacquired};
        if (*rejection != ERejection::asPacketSays) fix.horizontal = uses[static_cast<int>(*rejection)];
    }
    if (const EHeightAid* aid = FindInForce(m_plan->heightAids, fix.time)) {
        if (*aid == EHeightAid::other) fix.vertical = EUse::never;
        if (*aid == EHeightAid::gps && fix.vertical == EUse::never) fix.vertical = EUse::tested;
    }
    return fix.horizontal != EUse::never || fix.vertical != EUse::never;
}

} // namespace Morvex
