#include "simulator/earth.h"

#include <GeographicLib/Geocentric.hpp>

#include <cmath>

namespace Simulation {

SRadii GetRadii(double sinLatitude) {
    const double w2 = 1 - kEccentricity2 * sinLatitude * sinLatitude;
    const double normal = kSemiMajorAxis / std::sqrt(w2);
    return {normal * (1 - kEccentricity2) / w2, normal};
}

Vector3d GetGravity(double sinLatitude, double altitude) {
    constexpr double equator = 9.7803253359, k = 0.00193185265241;
    constexpr double m = 0.00344978650684; // centrifugal over gravitational acceleration at the equator
    const double s2 = sinLatitude * sinLatitude;
    const double surface = equator * (1 + k * s2) / std::sqrt(1 - kEccentricity2 * s2);
    const double ratio = altitude / kSemiMajorAxis;
    const double down =
        surface * (1 - 2 * (1 + kFlattening + m - 2 * kFlattening * s2) * ratio + 3 * ratio * ratio);
    constexpr double bend = 8.08e-9; // per second squared
    return {-bend * altitude * 2 * sinLatitude * std::sqrt(1 - s2), 0, -down};
}

Vector3d ToEarthFixed(double latitude, double longitude, double altitude) {
    Vector3d point;
    GeographicLib::Geocentric::WGS84().Forward(latitude * kDegreesPerRadian, longitude * kDegreesPerRadian,
                                               altitude, point.x(), point.y(), point.z());
    return point;
}

} // namespace Simulation
