// The WGS-84 earth.
#pragma once

#include "common/angles.h"
#include "common/wgs84.h"

#include <Eigen/Core>

#include <numbers>

namespace Simulation {

using Compagnon::kDegreesPerRadian;
using Compagnon::kEarthRate;
using Compagnon::kEccentricity2;
using Compagnon::kFlattening;
using Compagnon::kRadiansPerDegree;
using Compagnon::kSemiMajorAxis;
using Eigen::Vector3d;

inline constexpr double kPi = std::numbers::pi;

// Radii of curvature in the meridian and in the prime vertical, metres, on the ellipsoid.
struct SRadii {
    double meridian, normal;
};
SRadii GetRadii(double sinLatitude);

// Normal gravity in level axes, metres per second squared, at an altitude in metres: Somigliana's formula
// with the constants of WGS 84 and its upward continuation of second order (NIMA TR8350.2, 2000, eq. 4-1 and
// 4-3), and the small north component off the ellipsoid that the bend of the plumb line gives (P. Groves,
// Principles of GNSS, Inertial, and Multisensor Integrated Navigation Systems, 2013, eq. 2.140).
// Within 1.5e-6 of the exact field from -5 km to 8 km.
Vector3d GetGravity(double sinLatitude, double altitude);

// Earth-centred, earth-fixed coordinates in metres; angles in radians.
Vector3d ToEarthFixed(double latitude, double longitude, double altitude);

} // namespace Simulation
