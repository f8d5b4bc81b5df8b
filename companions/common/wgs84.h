// Constants of the WGS-84 ellipsoid and of its rotation (NIMA TR8350.2).
#pragma once

namespace Compagnon {

inline constexpr double kSemiMajorAxis = 6378137.0; // m
inline constexpr double kFlattening = 1.0 / 298.257223563;
inline constexpr double kEccentricity2 = kFlattening * (2.0 - kFlattening);
inline constexpr double kEarthRate = 7.292115e-5; // rad/s

} // namespace Compagnon
