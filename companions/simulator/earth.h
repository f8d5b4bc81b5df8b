// The WGS-84 earth.
#pragma once

#include "simulator/vector3.h"

namespace Simulation {

inline constexpr double kSemiMajorAxis = 6378137.0; // metres
inline constexpr double kFlattening = 1 / 298.257223563;
inline constexpr double kEccentricitySquared = kFlattening * (2 - kFlattening);
inline constexpr double kEarthRate = 7.292115e-5; // radians per second

inline constexpr double kRadian = 57.29577951308232; // degrees
inline constexpr double kPi = 3.14159265358979323846;

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
Vector3 GetGravity(double sinLatitude, double altitude);

// Earth-centred, earth-fixed coordinates in metres; angles in radians.
Vector3 ToEarthFixed(double latitude, double longitude, double altitude);

} // namespace Simulation
