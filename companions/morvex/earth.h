// The earth as the navigation sees it: the WGS-84 ellipsoid, its gravity and its rotation, in local-level
// axes north, west, up.
//
// All angles are radians, lengths metres, times seconds. Pure functions, usable from any thread.
#pragma once

#include "common/angles.h"
#include "common/wgs84.h"

#include <Eigen/Core>

namespace Morvex {

using Eigen::Matrix3d;
using Eigen::Vector3d;

using Compagnon::kEarthRate;
using Compagnon::kEccentricity2;
using Compagnon::kFlattening;
using Compagnon::kRadiansPerDegree;
using Compagnon::kSemiMajorAxis;

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
