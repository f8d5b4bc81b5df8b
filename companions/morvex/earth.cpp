#include "morvex/earth.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

// The longitude and the azimuth reference are undefined at the poles: the cosine is kept away from zero
// there.
constexpr double kSmallestCosine = 1e-4;

struct SRadii {
    double meridian, normal;
};

SRadii RadiiOfCurvature(double sine) {
    const double k = 1.0 - kEccentricity2 * sine * sine;
    const double normal = kSemiMajorAxis / std::sqrt(k);
    return {normal * (1.0 - kEccentricity2) / k, normal};
}

double WrapPi(double angle) { return std::remainder(angle, 2.0 * std::numbers::pi); }

} // namespace

double NormalGravity(double sine, double height) {
    constexpr double equator = 9.7803253359;
    constexpr double k = 0.00193185265241;
    constexpr double m = 0.00344978650684; // centrifugal to gravity at the equator
    const double s2 = sine * sine;
    const double surface = equator * (1.0 + k * s2) / std::sqrt(1.0 - kEccentricity2 * s2);
    const double h = height / kSemiMajorAxis;
    return surface * (1.0 - 2.0 * (1.0 + kFlattening + m - 2.0 * kFlattening * s2) * h + 3.0 * h * h);
}

SEarth::SEarth(double latitude, double height, const Vector3d& velocity, double direction) {
    sine = std::sin(latitude);
    cosine = std::max(std::cos(latitude), kSmallestCosine);
    tangent = sine / cosine;
    const SRadii radii = RadiiOfCurvature(sine);
    meridian = radii.meridian + height;
    normal = radii.normal + height;
    gravity = NormalGravity(sine, height);
    earthRate = direction * kEarthRate * Vector3d(cosine, 0.0, sine);
    // Groves, Principles of GNSS, Inertial, and Multisensor Integrated Navigation Systems, 2nd ed., (5.44),
    // with the axes turned to north, west, up.
    transportRate =
        Vector3d(-velocity.y() / normal, velocity.x() / meridian, -velocity.y() * tangent / normal);
}

void MovePosition(Vector3d& position, const Vector3d& metres, const SEarth& earth) {
    constexpr double pole = 0.5 * std::numbers::pi;
    position[0] = std::clamp(position[0] + metres.x() / earth.meridian, -pole, pole);
    position[1] = WrapPi(position[1] - metres.y() / (earth.normal * earth.cosine));
    position[2] += metres.z();
}

Vector3d MetresBetween(const Vector3d& from, const Vector3d& to) {
    const double middle = 0.5 * (from[0] + to[0]);
    const SRadii radii = RadiiOfCurvature(std::sin(middle));
    const double cosine = std::max(std::cos(middle), kSmallestCosine);
    const double height = 0.5 * (from[2] + to[2]);
    return {(to[0] - from[0]) * (radii.meridian + height),
            -WrapPi(to[1] - from[1]) * (radii.normal + height) * cosine, to[2] - from[2]};
}

} // namespace Morvex
