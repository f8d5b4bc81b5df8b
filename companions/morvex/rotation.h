// Rotations between the unit, the vessel and the local level.
//
// Axes: local level north, west, up; vessel 1 forward, 2 to port, 3 up, so that a vessel heading north on
// even keel has the axes of the local level. Heading is clockwise from true north, roll positive with
// starboard down, pitch positive with the bow up.
#pragma once

#include <Eigen/Core>
#include <Eigen/Geometry>

namespace Morvex {

using Eigen::Matrix3d;
using Eigen::Quaterniond;
using Eigen::Vector3d;

struct SAttitude {
    double heading = 0.0; // radians, 0 to 2 pi
    double roll = 0.0;    // radians, ±pi
    double pitch = 0.0;   // radians, ±pi/2
};

// Vessel to local level: heading about the vertical, then pitch, then roll.
Matrix3d MatrixOf(const SAttitude& attitude);
// The inverse. At a pitch of ±90 degrees roll is 0 and heading holds both.
SAttitude AttitudeOf(const Matrix3d& bodyToLevel);

// [v×], so that SkewOf(v) * w is the cross product.
Matrix3d SkewOf(const Vector3d& v);
// The rotation by |v| about v; exact to rounding for any length.
Quaterniond RotationOf(const Vector3d& v);

// The unit's axes in the vessel for a mounting code 0 to 23: an axis-aligned rotation, unit to vessel. Code
// 0, and any code outside the range, is aligned with the vessel.
Matrix3d RoughMounting(int code);

} // namespace Morvex
