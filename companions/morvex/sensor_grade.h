// How good an inertial unit is: what the filter assumes of its errors.
#pragma once

#include <array>
#include <numbers>
#include <string_view>

namespace Morvex {

struct SSensorGrade {
    std::string_view name;
    double gyroBias;   // standard deviation at switch-on, rad/s
    double gyroNoise;  // least angle random walk, rad/√s
    double noiseLimit; // largest angle random walk that a unit of this grade has, rad/√s
    double gyroDrift;  // random walk of the bias, rad/s/√s
    double scale;      // error in proportion to the rate and to the force, one part in one
    double rectified;  // share of that which a swing to and fro does not take back: it differs by the sign
    double accelBias;  // m/s²
    double accelNoise; // velocity random walk, m/s/√s
    double accelDrift; // m/s²/√s
    double trust;      // how long the unit is believed against the fixes, s: see CInsFilter::Update
};

namespace Units {
inline constexpr double kDegreePerHour = std::numbers::pi / 180.0 / 3600.0;
inline constexpr double kDegreePerRootHour = std::numbers::pi / 180.0 / 60.0;
inline constexpr double kMilliG = 9.80665e-3;

// A grade with angles in degrees and hours, accelerations in thousandths of g; drifts are per root of an
// hour.
constexpr SSensorGrade MakeGrade(std::string_view name, double gyroBias, double gyroNoise, double noiseLimit,
                                 double gyroDrift, double scale, double rectified, double accelBias,
                                 double accelNoise, double accelDrift, double trust) {
    return {name,
            gyroBias * kDegreePerHour,
            gyroNoise * kDegreePerRootHour,
            noiseLimit * kDegreePerRootHour,
            gyroDrift * kDegreePerHour / 60.0,
            scale,
            rectified,
            accelBias * kMilliG,
            accelNoise,
            accelDrift * kMilliG / 60.0,
            trust};
}
} // namespace Units

// From the finest to the coarsest. Which of them a recording has is found by the alignment: the finest that
// the noise of the increments allows, and under which the fixes agree with the filter as well as under the
// coarser ones.
inline constexpr std::array<SSensorGrade, 4> kSensorGrades{{
    Units::MakeGrade("navigation", 0.05, 0.004, 0.035, 0.01, 2e-5, 0.1, 0.3, 3e-4, 0.02, 20.0),
    Units::MakeGrade("tactical", 2.0, 0.05, 0.14, 1.0, 3e-4, 0.3, 2.0, 1e-3, 0.2, 5.0),
    Units::MakeGrade("industrial", 30.0, 0.2, 0.6, 20.0, 1e-3, 1.0, 6.0, 3e-3, 1.0, 1.5),
    Units::MakeGrade("MEMS", 600.0, 6.0, 1e3, 30.0, 3e-3, 1.0, 15.0, 1e-2, 1.0, 0.5),
}};

} // namespace Morvex
