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

// Normal gravity in metres per second squared, along the normal of the ellipsoid, at an altitude in metres:
// Somigliana's formula with the constants of WGS 84 (NIMA TR8350.2, 2000, eq. 4-1) and the upward
// continuation of second order (the same, eq. 4-3). Within 1e-6 of the exact field from -10 km to 10 km,
// whose small north component aloft (8e-9 per second squared and metre) is left out.
double GetGravity(double sinLatitude, double altitude);

// Earth-centred, earth-fixed coordinates in metres; angles in radians.
Vector3 ToEarthFixed(double latitude, double longitude, double altitude);

} // namespace Simulation
