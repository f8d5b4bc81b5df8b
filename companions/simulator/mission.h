// A mission as a formula: attitude, speed and altitude of a vehicle are closed functions of time, smooth to
// the third derivative, so that what the sensors should read follows from them without any approximation of
// motion.
//
// Position is the integral of the speed over the curved earth (WGS-84), by the fourth-order Runge-Kutta rule
// in steps of 50 ms: exact to better than 0.01 mm over a day. A mission is constant once made: any number of
// threads may ask it, each with a cursor of its own.
#pragma once

#include "simulator/mission_options.h"
#include "simulator/motion.h"

#include <cstdint>
#include <vector>

namespace Simulation {

// The true navigation at the centre of the inertial unit.
struct STruth {
    double time = 0;                                   // seconds, the Date of packets
    double latitude = 0;                               // degrees
    double longitude = 0;                              // degrees, -180 to 180
    double altitude = 0;                               // metres above the ellipsoid
    double speedNorth = 0, speedEast = 0, speedUp = 0; // metres per second
    double heading = 0;                                // degrees, 0 to 360, clockwise from true north
    double roll = 0;                                   // degrees, positive starboard down
    double pitch = 0;                                  // degrees, positive bow up
    double heave = 0;                                  // metres, positive up
};

// Everything at one instant, in radians and metres.
struct SVehicleState {
    SKinematics motion;
    double latitude = 0, longitude = 0;
    double meridianRadius = 0, normalRadius = 0;   // of curvature, at the altitude
    Matrix3d attitude = Matrix3d::Identity();      // vessel to level
    Vector3d earthRelativeRate = Vector3d::Zero(); // rotation against the earth, vessel axes
    Vector3d inertialRate = Vector3d::Zero();      // what gyroscopes feel, vessel axes
    Vector3d force = Vector3d::Zero();             // specific force: what accelerometers feel, vessel axes
};

class CMission;

// A place on a mission's track from which the neighbourhood is cheap to reach. Moving forward costs little,
// moving backward up to 10 s of integration.
class CTrackCursor {
  private:
    friend class CMission;
    struct SPoint {
        double latitude = 0, longitude = 0;
    };
    std::int64_t step = -1; // whose interval the cursor holds; -1: none
    SPoint begin, end;      // positions at both ends of the interval
    SPoint rate[3];         // at its begin, middle and end
    SMotionHint hint;
};

class CMission {
  public:
    // REQUIRES: options.Validate() is empty.
    explicit CMission(const SMissionOptions& options);

    const SMissionOptions& GetOptions() const { return m_options; }
    // The channels of a recording, in the order of the channel table.
    const std::vector<std::string_view>& GetChannels() const { return m_channels; }
    bool HasChannel(std::string_view channel) const;
    // Seconds; the duration that was asked for or that gives the size that was asked for.
    double GetDuration() const { return m_duration; }

    // `time` is clipped to 0 to the duration.
    STruth GetTruth(double time) const;
    STruth GetTruth(double time, CTrackCursor& cursor) const;
    SVehicleState GetState(double time, CTrackCursor& cursor) const;
    // The same of the inertial unit, which a stabilised mount keeps level.
    SVehicleState GetUnitState(double time, CTrackCursor& cursor) const;

  private:
    SVehicleState MakeState(double time, CTrackCursor& cursor, bool isLevelled) const;
    void MoveTo(std::int64_t step, CTrackCursor& cursor) const;
    void Integrate(CTrackCursor& cursor) const;

    SMissionOptions m_options;
    std::vector<std::string_view> m_channels; // literals of the channel table
    double m_duration;
    CMotion m_motion;
    std::vector<CTrackCursor::SPoint> m_checkpoints;
};

} // namespace Simulation
