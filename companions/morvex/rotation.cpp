#include "morvex/rotation.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace Morvex {
namespace {

enum EDirection : unsigned char { up, down, starboard, port, bow, stern };

Vector3d VesselAxis(EDirection direction) {
    static const Vector3d axes[] = {Vector3d::UnitZ(), -Vector3d::UnitZ(), -Vector3d::UnitY(),
                                    Vector3d::UnitY(), Vector3d::UnitX(),  -Vector3d::UnitX()};
    return axes[direction];
}

// Where the side with the logo and the side with the connectors look. Aligned, the logo looks up and the
// connectors astern: the logo is the unit's axis 3 and the connectors are against its axis 1. The units that
// are built the other way up have another pair of sides for each code, and the same rotation.
struct SMounting {
    EDirection logo, connector;
};
constexpr std::array<SMounting, 24> kMountings{{
    {up, stern},     {port, stern},    {down, stern}, {starboard, stern}, {up, bow},          {port, bow},
    {down, bow},     {starboard, bow}, {up, port},    {port, down},       {down, starboard},  {starboard, up},
    {up, starboard}, {port, up},       {down, port},  {starboard, down},  {bow, starboard},   {bow, up},
    {bow, port},     {bow, down},      {stern, port}, {stern, down},      {stern, starboard}, {stern, up},
}};

} // namespace

Matrix3d MatrixOf(const SAttitude& attitude) {
    using Eigen::AngleAxisd;
    return (AngleAxisd(-attitude.heading, Vector3d::UnitZ()) *
            AngleAxisd(-attitude.pitch, Vector3d::UnitY()) * AngleAxisd(attitude.roll, Vector3d::UnitX()))
        .toRotationMatrix();
}

SAttitude AttitudeOf(const Matrix3d& c) {
    SAttitude attitude;
    const double level = std::hypot(c(0, 0), c(1, 0));
    attitude.pitch = std::atan2(c(2, 0), level);
    if (level > 1e-9) {
        attitude.heading = std::atan2(-c(1, 0), c(0, 0));
        attitude.roll = std::atan2(c(2, 1), c(2, 2));
    } else {
        attitude.heading = std::atan2(c(0, 1), c(1, 1));
    }
    if (attitude.heading < 0.0) attitude.heading += 2.0 * std::numbers::pi;
    return attitude;
}

Matrix3d SkewOf(const Vector3d& v) {
    Matrix3d skew;
    skew << 0.0, -v.z(), v.y(), v.z(), 0.0, -v.x(), -v.y(), v.x(), 0.0;
    return skew;
}

Quaterniond RotationOf(const Vector3d& v) {
    const double angle2 = v.squaredNorm();
    // The series keeps full precision where the closed form divides by a vanishing angle.
    if (angle2 < 1e-4) {
        const double s = 0.5 - angle2 / 48.0 + angle2 * angle2 / 3840.0;
        return {1.0 - angle2 / 8.0 + angle2 * angle2 / 384.0, s * v.x(), s * v.y(), s * v.z()};
    }
    const double angle = std::sqrt(angle2);
    const double s = std::sin(0.5 * angle) / angle;
    return {std::cos(0.5 * angle), s * v.x(), s * v.y(), s * v.z()};
}

Matrix3d RoughMounting(int code) {
    if (code < 0 || code >= static_cast<int>(kMountings.size())) return Matrix3d::Identity();
    const SMounting& mounting = kMountings[static_cast<std::size_t>(code)];
    Matrix3d unitToVessel;
    unitToVessel.col(2) = VesselAxis(mounting.logo);
    unitToVessel.col(0) = -VesselAxis(mounting.connector);
    unitToVessel.col(1) = unitToVessel.col(2).cross(unitToVessel.col(0));
    return unitToVessel;
}

} // namespace Morvex
