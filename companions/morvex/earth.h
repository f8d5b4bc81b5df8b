// The earth as the navigation sees it: the WGS-84 ellipsoid, its gravity and its rotation, in local-level
// axes north, west, up.
//
// All angles are radians, lengths metres, times seconds. Pure functions, usable from any thread.
#pragma once

#include <Eigen/Core>

#include <numbers>

namespace Morvex {

using Eigen::Matrix3d;
using Eigen::Vector3d;

inline constexpr double kRadians = std::numbers::pi / 180.0;
inline constexpr double kSemiMajorAxis = 6378137.0;        // NIMA TR8350.2, WGS-84
inline constexpr double kFlattening = 1.0 / 298.257223563; // the same
inline constexpr double kEccentricity2 = kFlattening * (2.0 - kFlattening);
inline constexpr double kEarthRate = 7.292115e-5; // rad/s, the same

// Normal gravity, m/s², positive downward, at a height above the ellipsoid: Somigliana's formula at the
// surface, continued upward to second order (NIMA TR8350.2, equations 4-1 and 4-3).
double NormalGravity(double sineOfLatitude, double height);

// What a position and a velocity give for the mechanisation and for its errors.
struct SEarth {
    double sine, cosine, tangent; // of the latitude; the tangent is bounded near the poles
    double meridian, normal;      // radii of curvature plus height
    double gravity;               // downward, m/s²
    Vector3d earthRate;           // of the earth against inertial space
    Vector3d transportRate;       // of the local level against the earth

    // `direction` -1 is for time running backwards, in which the earth turns the other way.
    SEarth(double latitude, double height, const Vector3d& velocity, double direction = 1.0);
};

// Latitude, longitude and height, in this order, moved by metres north, west, up; the longitude stays within
// ±pi.
void MovePosition(Vector3d& position, const Vector3d& metres, const SEarth& earth);

// The metres north, west, up from one position to another nearby: exact to first order, and within 1e-4 of
// the length over 10 km.
Vector3d MetresBetween(const Vector3d& from, const Vector3d& to);

} // namespace Morvex
