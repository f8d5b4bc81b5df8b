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

void SetVariances(const SFixDeviation& stated, const SFixDeviation& least, const SModeDeviation& mode,
                  SPositionFix& fix) {
    const double north = std::max(GetUsableDeviation(stated.north, mode.horizontal), least.north);
    const double east = std::max(GetUsableDeviation(stated.east, mode.horizontal), least.east);
    const double up = std::max(GetUsableDeviation(stated.up, mode.vertical), least.up);
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
    if (plan.mount) m_mount.Open(*plan.mount);
    int usbls = 0;
    for (std::size_t i = 0; i < plan.gps.size(); ++i) {
        auto source = std::make_unique<SSource>();
        source->plan = &plan.gps[i];
        const bool isUsbl = plan.gps[i].isUsbl;
        source->number =
            isUsbl ? static_cast<std::uint8_t>(kFirstUsbl + usbls++) : static_cast<std::uint8_t>(i);
        if (!source->stream.Open(plan.gps[i].source, isUsbl ? kUsblLayout : kGpsLayout)) {
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

namespace {

// Where a packet of positions has its fields.
struct SPositionFields {
    std::uint32_t delay, horizontal, vertical, mode, latitude, longitude, altitude, north, east, up,
        covariance;
};
consteval SPositionFields FieldsOf(const SPacketLayout& layout, std::string_view mode) {
    const auto at = [&](std::string_view name) { return layout.OffsetOf(name); };
    return {at("Delay"),
            at("Horizontal rejection"),
            at("Vertical rejection"),
            at(mode),
            at("Latitude"),
            at("Longitude"),
            at("Altitude"),
            at("Std. dev. north"),
            at("Std. dev. east"),
            at("Std. dev. altitude"),
            at("Covariance XY")};
}
constexpr SPositionFields kGpsFields = FieldsOf(kGpsLayout, "GPS mode");
constexpr SPositionFields kUsblFields = FieldsOf(kUsblLayout, "Mode");
constexpr std::uint8_t kRelative = 2; // mode of a USBL position that is none of the earth
// Modes of a GPS that resolve the phase of the carrier: accurate heights.
bool IsAccurate(std::uint8_t mode) { return mode == 4 || mode == 5 || mode == 9; }
constexpr SModeDeviation kUsblDeviation{true, 3.0, 3.0};

} // namespace

bool CFixReader::MakeFix(SSource& source, const CPayload& payload, SPositionFix& fix) {
    const bool isUsbl = source.plan->isUsbl;
    const SPositionFields& at = isUsbl ? kUsblFields : kGpsFields;
    const auto mode = payload.Get<std::uint8_t>(at.mode);
    if (!isUsbl && (mode >= kModes.size() || !kModes[mode].taken)) return false;
    fix.isRelative = isUsbl && mode == kRelative;
    const double delay = payload.Get<float>(at.delay);
    const double latitude = payload.Get<double>(at.latitude);
    const double longitude = payload.Get<double>(at.longitude);
    const double altitude = payload.Get<float>(at.altitude);
    if (!(std::abs(latitude) <= 90.0) || !(std::abs(longitude) <= 360.0) || !(std::abs(altitude) < 1e6))
        return false;

    // The delay is the age of the position at the packet's date.
    fix.time = payload.GetSeconds() + source.stream.GetTimeOffset() - (std::isfinite(delay) ? delay : 0.0);
    if (!(std::abs(fix.time) < 1e9)) return false;
    if (!isUsbl) {
        const double separation = payload.Get<float>(kGpsLayout.OffsetOf("Geoidal sep"));
        m_geoidHeight = std::abs(separation) < 1e3 ? separation : 0.0;
    }
    fix.geoidHeight = m_geoidHeight;
    fix.position = {latitude * kRadiansPerDegree, longitude * kRadiansPerDegree,
                    altitude + (m_plan->aboveGeoid ? fix.geoidHeight : 0.0)};
    fix.leverArm = m_mount.ToUnit(source.plan->leverArm, fix.time);
    fix.source = source.number;

    SFixDeviation stated{payload.Get<float>(at.north), payload.Get<float>(at.east), payload.Get<float>(at.up),
                         payload.Get<float>(at.covariance)};
    if (const SFixDeviation* user = FindInForce(source.plan->userDeviations, fix.time)) stated = *user;
    SetVariances(stated, source.plan->leastDeviation, isUsbl ? kUsblDeviation : kModes[mode], fix);

    fix.horizontal =
        CombineUse(payload.Get<std::uint8_t>(at.horizontal), FindInForce(source.plan->rejections, fix.time));
    fix.vertical = CombineUse(payload.Get<std::uint8_t>(at.vertical), nullptr);
    if (const EHeightAid* aid = FindInForce(m_plan->heightAids, fix.time)) {
        const bool isCoarse = *aid == EHeightAid::hydro && (isUsbl || !IsAccurate(mode));
        if (*aid == EHeightAid::depth || *aid == EHeightAid::reference || isCoarse)
            fix.vertical = EUse::never;
        if (*aid == EHeightAid::gps && !isUsbl && fix.vertical == EUse::never) fix.vertical = EUse::tested;
    }
    return fix.horizontal != EUse::never || fix.vertical != EUse::never;
}

} // namespace Morvex
