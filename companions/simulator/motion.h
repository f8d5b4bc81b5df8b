// The movement of a vehicle in closed form.
#pragma once

#include "simulator/mission_options.h"
#include "simulator/profile.h"

#include <vector>

namespace Simulation {

struct SAngle {
    double value = 0; // radians
    double rate = 0;  // radians per second
};

struct SKinematics {
    Vector3d velocity = Vector3d::Zero();     // over ground, level axes
    Vector3d acceleration = Vector3d::Zero(); // its derivative in level axes
    Vector3d water = Vector3d::Zero();        // velocity of the water, level axes
    double altitude = 0;                      // metres above the ellipsoid
    double heave = 0;                         // metres of it that are the waves', positive up
    double distance = 0;                      // metres run through the water or on the road
    SAngle heading, roll, pitch;
};

inline constexpr double kCurrentTime = 3600; // seconds

// sin(omega * time + wavenumber * distance + phase) times the amplitude.
struct SWave {
    double amplitude;
    double omega;      // radians per second
    double wavenumber; // radians per metre of distance run
    double phase;
};

// What the vehicle does, over the whole mission.
struct SMotionPlan {
    double altitude = 0;     // metres above the ellipsoid, at time 0
    CProfile speed{0};       // metres per second forward through the water or on the road
    CProfile course{0};      // radians: the heading without the yaw of the waves
    CProfile climb{0};       // metres
    CProfile release{0};     // 0 while the vehicle is made fast, 1 after
    double motionAtRest = 0; // share of the waves felt while made fast
    std::vector<SWave> heave, roll, pitch, yaw;
    double pitchPerClimb = 0;            // radians per metre per second
    double rollPerAcceleration = 0;      // radians per metre per second squared to starboard
    Vector3d current = Vector3d::Zero(); // of the water, level axes
    double currentField = 0;             // metres per second of it that turn once in kCurrentTime
};

// Where the profiles were asked last.
struct SMotionHint {
    CProfile::Hint speed = 0, course = 0, climb = 0, release = 0;
};

class CMotion {
  public:
    explicit CMotion(SMotionPlan plan);
    SKinematics At(double time, SMotionHint& hint) const;

  private:
    SMotionPlan m_plan;
    double m_altitude; // that makes the altitude at time 0 the plan's
};

// Legs, turns, stops and dives of the vehicle of these options, with its sea or its road. `duration` in
// seconds.
SMotionPlan MakeMotionPlan(const SMissionOptions& options, double duration);

} // namespace Simulation
