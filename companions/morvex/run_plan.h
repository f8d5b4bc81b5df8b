// A run as the engine needs it: plain values in SI units and seconds on the recording's clock.
#pragma once

#include "foundation/date_time.h"
#include "morvex/heave_filter.h"
#include "morvex/measurements.h"
#include "morvex/rotation.h"

#include <array>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Morvex {

// From `begin`, included, to `end`, not included.
struct SPeriod {
    double begin = 0.0;
    double end = 0.0;
    bool Contains(double time) const { return time >= begin && time < end; }
};

template <class Value>
struct SInPeriod {
    SPeriod period;
    Value value;
};

// The value in force at a time: of the last instruction whose period holds it. Null for none.
template <class Value>
const Value* FindInForce(const std::vector<SInPeriod<Value>>& instructions, double time) {
    for (auto i = instructions.rbegin(); i != instructions.rend(); ++i)
        if (i->period.Contains(time)) return &i->value;
    return nullptr;
}

// One channel of one packet file.
struct SChannelPlan {
    std::filesystem::path path;
    std::string channel;
    double timeOffset = 0.0; // added to its dates, s
};

// Standard deviations of a fix, m.
struct SFixDeviation {
    double north = 0.0, east = 0.0, up = 0.0;
    double covariance = 0.0; // of north and east, m²
};

enum class ERejection : std::uint8_t { asPacketSays, always, never, automatic };

// A GPS or a USBL.
struct SGpsPlan {
    bool isUsbl = false;
    SChannelPlan source;
    Vector3d leverArm = Vector3d::Zero();
    std::vector<SInPeriod<ERejection>> rejections;        // of the horizontal position
    std::vector<SInPeriod<SFixDeviation>> userDeviations; // instead of the packet's
    SFixDeviation leastDeviation;                         // the covariance is not used
};

// The use of a packet: its own rejection byte, unless an instruction (null: none) says otherwise.
EUse CombineUse(std::uint8_t rejection, const ERejection* instruction);

// What the height comes from; `hydro` is a GPS that resolves the phase of its carrier.
enum class EHeightAid : std::uint8_t { asPacketSays, gps, depth, reference, hydro };

// In place of a deviation of the speed at rest: the engine finds the rest itself.
inline constexpr double kFindRest = -1.0;

// A gyro-stabilised mount between the vehicle and the unit. Its packets hold the attitude of the platform in
// the mount.
struct SMountPlan {
    SChannelPlan source;
    Vector3d unitArm = Vector3d::Zero();    // from the unit to the centre of the mount, the unit's axes, m
    Vector3d vehicleArm = Vector3d::Zero(); // from the vehicle's reference point to it, vehicle axes, m
    Matrix3d unitToPlatform = Matrix3d::Identity();
    Matrix3d mountToVehicle = Matrix3d::Identity();

    // A point of the vehicle, from its reference point in its axes, seen from the unit in the unit's axes, m.
    Vector3d ToUnit(const Vector3d& point, const Quaterniond& vehicleToUnit) const {
        return unitArm + vehicleToUnit * (point - vehicleArm);
    }
};

// The kinds of aiding sensors other than positions.
enum class EAiding : std::uint8_t {
    dvlBottom,
    dvlWater,
    emLog,
    depth,
    range,
    odometer,
    land, // not a sensor: a vehicle on wheels moves neither sideways nor upwards
    count
};

struct SAidingPlan {
    EAiding kind = EAiding::count;
    SChannelPlan source;
    Vector3d leverArm = Vector3d::Zero();
    Matrix3d sensorToVessel = Matrix3d::Identity();
    double scale = 0.0;               // by which the sensor reads too much, one part in one
    Vector3d bias = Vector3d::Zero(); // of a speed, sensor axes, m/s
    std::vector<SInPeriod<ERejection>> rejections;
    std::vector<SInPeriod<Vector3d>> userDeviations; // instead of the packet's
    bool isOptional = false;                         // a channel that may be missing
};

struct SRunPlan {
    SChannelPlan imu;
    std::optional<double> begin, end; // s; empty: from the first or to the last sample
    Matrix3d unitToVessel = Matrix3d::Identity();
    Matrix3d userToVessel = Matrix3d::Identity(); // axes whose attitude is written
    std::vector<SGpsPlan> gps;                    // at most three, then at most three USBL
    std::vector<SAidingPlan> aidings;
    std::optional<SMountPlan> mount;
    bool hasRelativeFixes = false;                    // some USBL knows its origin badly
    double gpsArmDeviation = 0.0;                     // of the first GPS's lever arm, m; 0: the usual
    double gpsLagDeviation = 0.0;                     // of its date lag, s; 0: it has none
    double currentDeviation = 0.0, currentTime = 0.0; // of the water, m/s and s; 0: the usual
    // Periods without speed: its standard deviation, m/s, or kFindRest.
    std::vector<SInPeriod<double>> atRest;
    std::vector<SInPeriod<EHeightAid>> heightAids;
    double referenceAltitude = 0.0; // for EHeightAid::reference, m
    // Altitudes of the fixes and of the result are above the geoid, not above the ellipsoid.
    bool aboveGeoid = true;

    std::filesystem::path output;
    double defaultRate = 1.0; // Hz
    std::vector<SInPeriod<double>> rates;
    std::array<Vector3d, 4> points{Vector3d::Zero(), Vector3d::Zero(), Vector3d::Zero(),
                                   Vector3d::Zero()}; // primary, secondary A, B, C; vessel axes, m
    std::vector<SChannelPlan> synchronized;           // whose dates the result is wanted at as well
    // UTC of Date zero; empty: to be taken from the recording.
    std::optional<Outils_Temps::CDateTime> utcOrigin;

    bool backwardAsked = false;
    EHeave heave = EHeave::none;
    double heavePeriod = 200.0; // s, of the causal filter
    bool ciphered = false;
    bool onLand = false;              // the unit is one for vehicles on wheels
    bool inAir = false;               // the unit is one for aircraft
    std::vector<std::string> ignored; // settings that mean nothing to this engine, in words
    std::string sensorsNotUsed; // labels of the kinds that are declared and that this engine does not use
};

// Reads the single object of a parameter file; null when it cannot be read or is something else.
std::unique_ptr<Metier_Tarvel::CTrvSimulationParameters> LoadParameters(const std::filesystem::path& path);

// Has a vehicle on wheels held not to slide, unless an odometer holds it already. False when it was not
// added.
bool AddLandModel(SRunPlan& plan);

SRunPlan MakeRunPlan(const Metier_Tarvel::CTrvSimulationParameters& parameters);

} // namespace Morvex
