// What each grade of inertial unit errs by.
#pragma once

#include "simulator/mission_options.h"

namespace Simulation {

struct SGrade {
    std::string_view name;
    double gyroBias;      // degrees per hour, standard deviation of the constant part
    double gyroWander;    // degrees per hour, standard deviation of the wandering part
    double gyroWalk;      // degrees per square root of an hour
    double gyroScale;     // parts per million
    double accBias;       // micro-g
    double accWander;     // micro-g
    double accNoise;      // micro-g per square root of a hertz
    double accScale;      // parts per million
    double wanderTime;    // seconds in which the wandering parts change
    double positionError; // metres, of the real-time navigation
    double speedError;    // metres per second
    double headingError;  // degrees
    double attitudeError; // degrees
};

// In the order of EGrade.
inline constexpr SGrade kGrades[] = {
    {"perfect", 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0},
    {"marine", 0.001, 0.0005, 0.0005, 2, 20, 3, 3, 20, 3600, 3, 0.02, 0.01, 0.003},
    {"navigation", 0.01, 0.003, 0.002, 10, 60, 10, 10, 60, 1800, 5, 0.04, 0.03, 0.006},
    {"tactical", 1, 0.3, 0.1, 200, 800, 60, 60, 300, 600, 10, 0.1, 0.3, 0.05},
    {"mems", 20, 5, 0.3, 1000, 3000, 150, 120, 1000, 300, 20, 0.2, 1.5, 0.3},
};

inline const SGrade& GetGrade(EGrade grade) { return kGrades[static_cast<std::size_t>(grade)]; }

} // namespace Simulation
