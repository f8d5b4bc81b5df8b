#include "graph/local_frame.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Presentation_Tarvel_Graphics {

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180;
// WGS-84 (NIMA TR8350.2).
constexpr double kSemiMajor = 6378137.0; // m
constexpr double kFlattening = 1 / 298.257223563;
constexpr double kEccentricity2 = kFlattening * (2 - kFlattening);

// The radius of curvature across the meridian.
double PrimeVertical(double sine) { return kSemiMajor / std::sqrt(1 - kEccentricity2 * sine * sine); }

} // namespace

CLocalFrame::CLocalFrame(double latitude, double longitude) : m_latitude(latitude), m_longitude(longitude) {
    m_sine = std::sin(latitude * kRadiansPerDegree);
    m_cosine = std::cos(latitude * kRadiansPerDegree);
    const double across = PrimeVertical(m_sine);
    const double along = across * (1 - kEccentricity2) / (1 - kEccentricity2 * m_sine * m_sine);
    m_x = across * m_cosine;
    m_z = across * (1 - kEccentricity2) * m_sine;
    m_perLatitude = along * kRadiansPerDegree;
    m_perLongitude = across * m_cosine * kRadiansPerDegree;
}

SPlace CLocalFrame::ToPlace(double latitude, double longitude) const {
    const double sine = std::sin(latitude * kRadiansPerDegree);
    const double across = PrimeVertical(sine);
    const double radius = across * std::cos(latitude * kRadiansPerDegree);
    const double turn = (longitude - m_longitude) * kRadiansPerDegree;
    // In the meridian plane of the origin; 1 - cos as a square keeps the digits of small distances.
    const double half = std::sin(turn / 2);
    const double x = radius - m_x - 2 * radius * half * half;
    const double z = across * (1 - kEccentricity2) * sine - m_z;
    return {radius * std::sin(turn), m_cosine * z - m_sine * x};
}

SUncertainty ToEllipse(double north, double east, double covariance) {
    const double n = north * north, e = east * east;
    const double limit = std::abs(north * east);
    const double c = std::clamp(covariance, -limit, limit);
    const double mean = (n + e) / 2, half = std::hypot((e - n) / 2, c);
    return {std::sqrt(mean + half), std::sqrt(std::max(0.0, mean - half)), std::atan2(2 * c, e - n) / 2};
}

} // namespace Presentation_Tarvel_Graphics
