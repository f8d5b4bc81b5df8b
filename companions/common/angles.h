// Factors between the units of files and those of the formulas; each name says what it converts.
#pragma once

#include <numbers>

namespace Compagnon {

inline constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
inline constexpr double kDegreesPerRadian = 180.0 / std::numbers::pi;
inline constexpr double kRadiansPerArcSecond = kRadiansPerDegree / 3600.0;

// One count of the inertial packets.
inline constexpr double kRadiansPerFogCount = 1e-3 * kRadiansPerArcSecond;
inline constexpr double kSpeedPerAccCount = 1e-7; // m/s

} // namespace Compagnon
