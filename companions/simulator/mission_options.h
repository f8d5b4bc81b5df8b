// What a simulated mission is to be.
#pragma once

#include "foundation/date_time.h"

#include <Eigen/Core>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Simulation {

// Level axes are north, west, up; vessel axes forward, to port, up.
using Eigen::Matrix3d;
using Eigen::Vector3d;

enum class EVehicle : std::uint8_t { ship, auv, car, uav };

// Quality of the inertial sensors; `perfect` has no error but the rounding to raw units.
enum class EGrade : std::uint8_t { perfect, marine, navigation, tactical, mems };

// The sensors that sit away from the inertial unit.
enum class EMount : std::uint8_t { gps, dvl, emLog, depth, usbl, lbl, count };

// Mission time from `begin`, included, to `end`, not included, in seconds.
struct SPeriod {
    double begin = 0;
    double end = 0;
    bool Contains(double time) const { return time >= begin && time < end; }
};

// Overrides for one channel.
struct SChannelOptions {
    std::string channel;
    double rate = 0;  // packets per second; 0: the channel's usual rate
    double delay = 0; // seconds between the moment of the measurement and the date of its packet
    std::vector<SPeriod> outages;
    double hiddenDelay = 0;         // seconds by which packets are late without saying so
    std::vector<SPeriod> jams = {}; // in which the sensor repeats what it measured last
};

using LeverArms = std::array<Vector3d, static_cast<std::size_t>(EMount::count)>;
inline LeverArms MakeLeverArms() {
    LeverArms arms;
    arms.fill(Vector3d::Zero());
    return arms;
}

struct SMissionOptions {
    EVehicle vehicle = EVehicle::ship;
    double duration = 1800;         // seconds
    std::int64_t targetSize = 0;    // bytes; if not 0 the duration is chosen to give about this file size
    double alignmentDuration = 300; // seconds at rest at the start
    double alignmentMotion = 0;     // share of the sea's motion that is felt at rest, 0 to 1
    double seaState = 1;            // factor on the amplitudes of waves, terrain and vibration

    double latitude = 43.1;           // degrees, -85 to 85
    double longitude = 5.9;           // degrees
    double altitude = 0;              // metres above the ellipsoid
    double heading = 30;              // degrees, clockwise from true north
    Vector3d current{0.25, -0.15, 0}; // metres per second of the water north and east; cars have none
    double seabedDepth = 200;         // metres below the sea surface
    Outils_Temps::CDateTime utcOrigin =
        Outils_Temps::CDateTime::Invalid(); // UTC of Date zero; invalid: 2024-05-14 08:00

    int imuRate = 100; // packets per second, 1 to 2000
    EGrade grade = EGrade::navigation;
    int equipment = 9; // the "System type" of the IMU packets
    std::uint64_t seed = 1;
    double noise = -1;          // factor on the errors of the aiding sensors; below 0: 0 if perfect, else 1
    double outliers = 0;        // share of aiding packets that are wildly wrong, 0 to 1
    int gpsMode = 2;            // 1 SPS, 2 DGPS, 3 PPS, 4 RTK, 5 float RTK
    double geoidSeparation = 0; // metres from the ellipsoid up to the geoid
    double dvlScaleError = 0;   // fraction by which the Doppler log reads too much
    double dvlHeadingError = 0; // degrees by which the log is mounted turned to port
    LeverArms leverArms = MakeLeverArms(); // metres forward, to port, up

    // Faults of the recorder: shares of the inertial packets, 0 to 1.
    double imuLost = 0;
    double imuLate = 0, imuLateBy = 0.009; // and by how many seconds
    double imuDoubled = 0;
    double imuJitter = 0;  // seconds: every date is late by the size of a normal number of this deviation
    double clockDrift = 0; // parts per million by which the recorder's clock runs fast against UTC

    // Faults of the aiding sensors that no packet states.
    double gpsWander = 0;          // metres, of a position error that changes over two minutes
    double gpsJumps = 0;           // metres, of a jump of 10 to 30 s every five minutes or so
    double odometerScaleError = 0; // fraction by which the odometer reads too much
    double wheelSlip = 0;          // fraction by which a driven wheel turns too far, per m/s2 of its vehicle
    double statedDeviation = 1;    // factor on the standard deviations in the packets

    // The surroundings.
    double currentField = 0;       // metres per second, of a current that turns once an hour
    double gravityDisturbance = 0; // micro-g sideways, over 20 km of the way
    double stabilised = 0;         // 1: the unit sits on a mount that keeps it level, 0: on the vessel
    double lblBeacons = 4;         // that answer in turn, 1 to 4
    double usblOrigin = 0;         // metres that the origin of relative USBL is north of theirs; 0: absolute

    std::vector<std::string> channels; // empty: those usual for the vehicle; "IMU" is always written
    std::vector<SChannelOptions> channelOptions; // at most one for each channel
    double truthRate = 10;                       // lines per second of the truth file

    double GetNoise() const { return noise >= 0 ? noise : grade == EGrade::perfect ? 0 : 1; }
    Outils_Temps::CDateTime GetUtcOrigin() const;
    const SChannelOptions* FindChannelOptions(std::string_view channel) const;
    SChannelOptions& GetChannelOptions(std::string_view channel);
    bool IsOutage(std::string_view channel, double time) const {
        return IsWithinOwn(channel, &SChannelOptions::outages, time);
    }
    bool IsJammed(std::string_view channel, double time) const {
        return IsWithinOwn(channel, &SChannelOptions::jams, time);
    }
    // Those that are written, in the order of the channel table.
    std::vector<std::string_view> GetChannels() const;

    // What is wrong with the values; empty when a mission can be made of them.
    std::string Validate() const;

  private:
    bool IsWithinOwn(std::string_view channel, std::vector<SPeriod> SChannelOptions::*periods,
                     double time) const;
};

} // namespace Simulation
