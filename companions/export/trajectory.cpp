#include "export/trajectory.h"

#include "common/angles.h"
#include "common/wgs84.h"
#include "xpf/tarout_layouts.h"

#include <cmath>
#include <numbers>

namespace Exportation {

using namespace Persistance_Xpf;
using Compagnon::kRadiansPerDegree;

namespace {

constexpr double kSecondsPerTick = 1e-7;

// The short way round.
double TurnBetween(double from, double to) { return std::remainder(to - from, 2.0 * std::numbers::pi); }

bool Follows(const SNavigationSample* first, const SNavigationSample* second) {
    if (!first || !second || second->date <= first->date) return false;
    return static_cast<double>(second->date) - static_cast<double>(first->date) <
           kLongestStep / kSecondsPerTick;
}

// From one position to another not far away; north, east, down; m.
std::array<double, 3> MakeArm(double latitude, const SNavigationSample& from, const SNavigationSample& to) {
    const double sine = std::sin(latitude);
    const double w2 = 1.0 - Compagnon::kEccentricity2 * sine * sine;
    const double normal = Compagnon::kSemiMajorAxis / std::sqrt(w2);
    const double meridian = normal * (1.0 - Compagnon::kEccentricity2) / w2;
    return {(to.latitude - from.latitude) * (meridian + from.altitude),
            TurnBetween(from.longitude, to.longitude) * (normal + from.altitude) * std::cos(latitude),
            from.altitude - to.altitude};
}

// From north, east, down into the axes of the vessel.
std::array<double, 3> ToVessel(const SNavigationSample& at, const std::array<double, 3>& v) {
    const double sr = std::sin(at.roll), cr = std::cos(at.roll), sp = std::sin(at.pitch),
                 cp = std::cos(at.pitch), sh = std::sin(at.heading), ch = std::cos(at.heading);
    return {cp * ch * v[0] + cp * sh * v[1] - sp * v[2],
            (sr * sp * ch - cr * sh) * v[0] + (sr * sp * sh + cr * ch) * v[1] + sr * cp * v[2],
            (cr * sp * ch + sr * sh) * v[0] + (cr * sp * sh - sr * ch) * v[1] + cr * cp * v[2]};
}

} // namespace

CNavigationReader::CNavigationReader(int point)
    : m_fields(FindTrackFields(kMorvexStdLayout, point)),
      m_primary(FindTrackFields(kMorvexStdLayout, 0)),
      m_velocityDeviation{FindField(kMorvexStdLayout, "Std. dev. speed north"),
                          FindField(kMorvexStdLayout, "Std. dev. speed east"),
                          FindField(kMorvexStdLayout, "Std. dev. speed up")},
      m_attitudeDeviation{FindField(kMorvexStdLayout, "Std. dev. roll"),
                          FindField(kMorvexStdLayout, "Std. dev. pitch"),
                          FindField(kMorvexStdLayout, "Std. dev. heading")},
      m_isPrimary(point == 0) {}

SNavigationSample CNavigationReader::Read(const std::uint8_t* payload) const {
    const auto get = [payload](SFieldRef field) { return GetValue(payload, field); };
    const auto angle = [payload](SFieldRef field) { return GetValue(payload, field) * kRadiansPerDegree; };
    SNavigationSample sample;
    sample.date = Outils::Load<std::int64_t>(payload);
    sample.latitude = angle(m_fields.latitude);
    sample.longitude = angle(m_fields.longitude);
    sample.altitude = get(m_fields.altitude);
    sample.velocity = {get(m_fields.speedNorth), get(m_fields.speedEast), -get(m_fields.speedUp)};
    sample.roll = angle(m_fields.roll);
    sample.pitch = angle(m_fields.pitch);
    sample.heading = angle(m_fields.heading);
    sample.positionDeviation = {get(m_fields.deviationNorth), get(m_fields.deviationEast),
                                get(m_fields.deviationAltitude)};
    for (std::size_t i = 0; i < 3; ++i) {
        sample.velocityDeviation[i] = get(m_velocityDeviation[i]);
        sample.attitudeDeviation[i] = angle(m_attitudeDeviation[i]);
    }
    if (!m_isPrimary) {
        SNavigationSample primary;
        primary.latitude = angle(m_primary.latitude);
        primary.longitude = angle(m_primary.longitude);
        primary.altitude = get(m_primary.altitude);
        sample.arm = MakeArm(primary.latitude, primary, sample);
    }
    return sample;
}

SMotion GetMotion(const SNavigationSample* before, SNavigationSample& at, const SNavigationSample* after) {
    const SNavigationSample& first = Follows(before, &at) ? *before : at;
    const SNavigationSample& last = Follows(&at, after) ? *after : at;
    const double span = static_cast<double>(last.date - first.date) * kSecondsPerTick;
    if (!(span > 0.0)) return {};
    std::array<double, 3> acceleration{};
    for (std::size_t i = 0; i < 3; ++i) {
        acceleration[i] = (last.velocity[i] - first.velocity[i]) / span;
        at.velocity[i] += (last.arm[i] - first.arm[i]) / span;
    }
    const auto turn = [&](double SNavigationSample::*angle) {
        return (TurnBetween(first.*angle, at.*angle) + TurnBetween(at.*angle, last.*angle)) / span;
    };
    const double roll = turn(&SNavigationSample::roll), pitch = turn(&SNavigationSample::pitch),
                 heading = turn(&SNavigationSample::heading);
    const double sr = std::sin(at.roll), cr = std::cos(at.roll), sp = std::sin(at.pitch),
                 cp = std::cos(at.pitch);
    return {ToVessel(at, acceleration),
            {roll - heading * sp, pitch * cr + heading * sr * cp, heading * cr * cp - pitch * sr}};
}

} // namespace Exportation
