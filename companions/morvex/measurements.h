// What the navigation is fed with, already in vessel axes, in SI units, and dated on the recording's clock.
#pragma once

#include <Eigen/Core>

#include <cmath>
#include <cstdint>

namespace Morvex {

using Eigen::Vector3d;

// What the inertial unit summed up between two dates.
struct SImuSample {
    double time = 0.0;                    // end of the span, s
    double span = 0.0;                    // its length, s, above 0
    Vector3d angle = Vector3d::Zero();    // rotation, rad
    Vector3d velocity = Vector3d::Zero(); // integral of the specific force, m/s
    // The share of the span for which data is missing and was bridged, s.
    double gap = 0.0;
    double lost = 0.0; // length of the hole that begins with this span, s
    // How far the bridge may be off, by axis: standard deviations of its angle, rad, and its speed, m/s.
    Vector3d gapTurn = Vector3d::Zero();
    Vector3d gapSpeed = Vector3d::Zero();
};

// Whether a measurement is taken.
enum class EUse : std::uint8_t {
    never,      // not taken at all
    always,     // taken as it comes
    tested,     // taken unless it contradicts the filter; given in to after a long contradiction
    reacquired, // the same, given in to sooner
};

// The deviation that a packet or the user states; `otherwise` when it is none.
inline double GetUsableDeviation(double stated, double otherwise) {
    return std::isfinite(stated) && stated > 0.0 ? stated : otherwise;
}

// How far one measurement counts in a mean of normalised squared innovations: outliers are no fault of what
// is judged by the mean.
inline constexpr double kLargestDistance = 30.0;

// Number of the first USBL among the sources of positions.
inline constexpr std::uint8_t kFirstUsbl = 3;

// A position of a GPS antenna or of a transponder.
struct SPositionFix {
    double time = 0.0;                    // instant of validity, s
    Vector3d position = Vector3d::Zero(); // latitude and longitude in rad, height above the ellipsoid in m
    Vector3d leverArm = Vector3d::Zero(); // from the inertial unit to the antenna, vessel axes, m
    double varianceNorth = 0.0;           // m²
    double varianceEast = 0.0;
    double varianceUp = 0.0;
    double covarianceNorthEast = 0.0;
    double geoidHeight = 0.0; // of the geoid above the ellipsoid, m
    EUse horizontal = EUse::tested;
    EUse vertical = EUse::tested;
    bool isRelative = false; // to an origin that nobody knows well
    std::uint8_t source = 0; // GPS 0 to 2, or USBL from kFirstUsbl on
};

} // namespace Morvex
