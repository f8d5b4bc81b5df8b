// How good an inertial unit is: what the filter assumes of its errors.
#pragma once

#include <array>
#include <string_view>

namespace Morvex {

struct SSensorGrade {
    std::string_view name;
    double gyroBias;   // standard deviation at switch-on, rad/s
    double gyroNoise;  // angle random walk, rad/√s
    double gyroDrift;  // random walk of the bias, rad/s/√s
    double gyroScale;  // error in proportion to the rate, one part in one
    double accelBias;  // m/s²
    double accelNoise; // velocity random walk, m/s/√s
    double accelDrift; // m/s²/√s
    double trust;      // how long the unit is believed against the fixes, s: see CInsFilter::Update
};

namespace Units {
inline constexpr double kDegreePerHour = 3.14159265358979323846 / 180.0 / 3600.0;
inline constexpr double kDegreePerRootHour = 3.14159265358979323846 / 180.0 / 60.0;
inline constexpr double kMilliG = 9.80665e-3;
} // namespace Units

// From the finest to the coarsest. Which of them a recording has is found by the alignment: the finest under
// which the measurements agree with the filter as well as under the coarser ones.
inline constexpr std::array<SSensorGrade, 4> kSensorGrades{{
    {"navigation", 0.05 * Units::kDegreePerHour, 0.004 * Units::kDegreePerRootHour,
     0.01 * Units::kDegreePerHour / 60.0, 2e-5, 0.3 * Units::kMilliG, 3e-4, 0.02 * Units::kMilliG / 60.0,
     20.0},
    {"tactical", 2.0 * Units::kDegreePerHour, 0.05 * Units::kDegreePerRootHour,
     0.5 * Units::kDegreePerHour / 60.0, 2e-4, 2.0 * Units::kMilliG, 1e-3, 0.2 * Units::kMilliG / 60.0, 5.0},
    {"industrial", 30.0 * Units::kDegreePerHour, 0.2 * Units::kDegreePerRootHour,
     5.0 * Units::kDegreePerHour / 60.0, 1e-3, 6.0 * Units::kMilliG, 3e-3, 1.0 * Units::kMilliG / 60.0, 1.5},
    {"MEMS", 600.0 * Units::kDegreePerHour, 0.6 * Units::kDegreePerRootHour,
     30.0 * Units::kDegreePerHour / 60.0, 3e-3, 15.0 * Units::kMilliG, 1e-2, 3.0 * Units::kMilliG / 60.0,
     0.5},
}};

} // namespace Morvex
