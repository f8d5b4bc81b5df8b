#include "simulator/sensor_rows.h"

#include "simulator/earth.h"
#include "simulator/grades.h"
#include "xpf/tarin_layouts.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>

namespace Simulation {

using namespace Persistance_Xpf;

namespace {

constexpr double kAuto = 3; // rejection: the processing decides

double GetNumber(const CSensor& sensor) { return sensor.GetChannel().back() - '0'; }
double GetSeabed(const SMissionOptions& options) { return options.geoidSeparation - options.seabedDepth; }

double GetDelay(const CSensor& sensor) {
    const SChannelOptions* own = sensor.GetOptions().FindChannelOptions(sensor.GetChannel());
    return own ? own->delay : 0;
}

// Where a point seems to be, its errors given in metres north, east and up.
CSensor::SPoint Shift(const CSensor& sensor, CSensor::SPoint point, double north, double east, double up) {
    const SVehicleState& state = sensor.GetState();
    return {point.latitude + north / state.meridianRadius,
            point.longitude + east / (state.normalRadius * std::cos(state.latitude)), point.altitude + up};
}

struct SPositionError {
    double horizontal, vertical; // metres, standard deviations
};

// By "GPS mode", 0 to 5.
constexpr SPositionError kGpsErrors[] = {{1.5, 2.5}, {1.5, 2.5},    {0.5, 0.8},
                                         {1, 1.6},   {0.012, 0.02}, {0.2, 0.3}};
constexpr double kGpsCorrelation = 0.2; // of the errors north and east

void FillGps(CSensor& sensor, CPayload& payload) {
    const SMissionOptions& options = sensor.GetOptions();
    const SPositionError& error = kGpsErrors[options.gpsMode];
    const double north = sensor.MakeError(1), other = sensor.MakeError(1);
    const double east = kGpsCorrelation * north + std::sqrt(1 - kGpsCorrelation * kGpsCorrelation) * other;
    const double up = sensor.MakeError(error.vertical);
    const Vector3d hidden = sensor.StepHiddenError();
    const CSensor::SPoint fix =
        Shift(sensor, sensor.GetPointAt(EMount::gps), north * error.horizontal + hidden.x(),
              east * error.horizontal + hidden.y(), up);
    payload.Put(PlaceOf(kGpsLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kGpsLayout, "Horizontal rejection"), kAuto);
    payload.Put(PlaceOf(kGpsLayout, "Vertical rejection"), kAuto);
    payload.Put(PlaceOf(kGpsLayout, "GPS mode"), options.gpsMode);
    payload.Put(PlaceOf(kGpsLayout, "Latitude"), fix.latitude * kDegreesPerRadian);
    payload.Put(PlaceOf(kGpsLayout, "Longitude"), std::remainder(fix.longitude * kDegreesPerRadian, 360));
    payload.Put(PlaceOf(kGpsLayout, "Altitude"), fix.altitude - options.geoidSeparation);
    payload.Put(PlaceOf(kGpsLayout, "Std. dev. north"), sensor.State(error.horizontal));
    payload.Put(PlaceOf(kGpsLayout, "Std. dev. east"), sensor.State(error.horizontal));
    payload.Put(PlaceOf(kGpsLayout, "Std. dev. altitude"), sensor.State(error.vertical));
    payload.Put(PlaceOf(kGpsLayout, "Covariance XY"),
                kGpsCorrelation * sensor.State(error.horizontal) * sensor.State(error.horizontal));
    payload.Put(PlaceOf(kGpsLayout, "Geoidal sep"), options.geoidSeparation);
}

// A log whose axes are the vessel's, apart from its mounting error.
void FillDvl(CSensor& sensor, CPayload& payload) {
    const SMissionOptions& options = sensor.GetOptions();
    const bool bottom = sensor.GetChannel() == "DVL_BT";
    const double deviation = bottom ? 0.01 : 0.03, vertical = deviation / 2;
    Vector3d velocity = sensor.GetVelocityAt(EMount::dvl);
    if (!bottom) velocity -= sensor.GetState().attitude.transpose() * sensor.GetState().motion.water;
    const double c = std::cos(options.dvlHeadingError * kRadiansPerDegree),
                 s = std::sin(options.dvlHeadingError * kRadiansPerDegree);
    velocity = (1 + options.dvlScaleError) * Vector3d{c * velocity.x() + s * velocity.y(),
                                                      c * velocity.y() - s * velocity.x(), velocity.z()};
    payload.Put(PlaceOf(kDvlLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kDvlLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kDvlLayout, "Speed X"), velocity.x() + sensor.MakeError(deviation));
    payload.Put(PlaceOf(kDvlLayout, "Speed Y"), velocity.y() + sensor.MakeError(deviation));
    payload.Put(PlaceOf(kDvlLayout, "Speed Z"), velocity.z() + sensor.MakeError(vertical));
    payload.Put(PlaceOf(kDvlLayout, "Sound velocity (sensor)"), 1500);
    payload.Put(PlaceOf(kDvlLayout, "Sound velocity (external)"), 1500);
    payload.Put(PlaceOf(kDvlLayout, "Altitude"),
                std::max(0.0, sensor.GetPointAt(EMount::dvl).altitude - GetSeabed(options)));
    payload.Put(PlaceOf(kDvlLayout, "Std. dev. speed X"), sensor.State(deviation));
    payload.Put(PlaceOf(kDvlLayout, "Std. dev. speed Y"), sensor.State(deviation));
    payload.Put(PlaceOf(kDvlLayout, "Std. dev. speed Z"), sensor.State(vertical));
}

void FillEMLog(CSensor& sensor, CPayload& payload) {
    constexpr double kDeviation = 0.05;
    const SVehicleState& state = sensor.GetState();
    const double speed =
        sensor.GetVelocityAt(EMount::emLog).x() - state.attitude.col(0).dot(state.motion.water);
    payload.Put(PlaceOf(kEMLogLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kEMLogLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kEMLogLayout, "Speed"), speed + sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kEMLogLayout, "Std. dev. speed"), sensor.State(kDeviation));
}

void FillDepth(CSensor& sensor, CPayload& payload) {
    constexpr double kDeviation = 0.1, kTide = 0.5, kTideTime = 44700; // metres and seconds
    // The sea is where the tide has it, and the air presses on it.
    const double phase = sensor.GetCount() == 0 ? sensor.GetRandom().Uniform(0, 2 * kPi) : sensor.Exchange(0);
    sensor.Exchange(phase);
    const double tide =
        sensor.GetOptions().GetNoise() * kTide * std::sin(phase + 2 * kPi * sensor.GetTime() / kTideTime);
    const double depth =
        sensor.GetOptions().geoidSeparation + tide - sensor.GetPointAt(EMount::depth).altitude;
    payload.Put(PlaceOf(kDepthLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kDepthLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kDepthLayout, "Depth"), depth + sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kDepthLayout, "Std. dev. depth"), sensor.State(kDeviation));
}

void FillUsbl(CSensor& sensor, CPayload& payload) {
    constexpr SPositionError kError{1.2, 0.6};
    constexpr double kAbsolute = 1, kRelative = 2;
    const double origin = sensor.GetOptions().usblOrigin;
    const Vector3d bias = sensor.GetOptions().GetNoise() * sensor.StepWander(0.15, 1800);
    const double north = bias.x() + sensor.MakeError(kError.horizontal) - origin;
    const double east = bias.y() + sensor.MakeError(kError.horizontal);
    const double up = bias.z() + sensor.MakeError(kError.vertical);
    const CSensor::SPoint fix = Shift(sensor, sensor.GetPointAt(EMount::usbl), north, east, up);
    payload.Put(PlaceOf(kUsblLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kUsblLayout, "Horizontal rejection"), kAuto);
    payload.Put(PlaceOf(kUsblLayout, "Vertical rejection"), kAuto);
    payload.Put(PlaceOf(kUsblLayout, "Beacon"), GetNumber(sensor));
    payload.Put(PlaceOf(kUsblLayout, "Mode"), origin != 0 ? kRelative : kAbsolute);
    payload.Put(PlaceOf(kUsblLayout, "Latitude"), fix.latitude * kDegreesPerRadian);
    payload.Put(PlaceOf(kUsblLayout, "Longitude"), std::remainder(fix.longitude * kDegreesPerRadian, 360));
    payload.Put(PlaceOf(kUsblLayout, "Altitude"), fix.altitude - sensor.GetOptions().geoidSeparation);
    payload.Put(PlaceOf(kUsblLayout, "Std. dev. north"), sensor.State(kError.horizontal));
    payload.Put(PlaceOf(kUsblLayout, "Std. dev. east"), sensor.State(kError.horizontal));
    payload.Put(PlaceOf(kUsblLayout, "Std. dev. altitude"), sensor.State(kError.vertical));
}

// Four beacons on the seabed around the start answer in turn.
void FillLbl(CSensor& sensor, CPayload& payload) {
    constexpr double kDeviation = 0.5;
    constexpr double kPlaces[][2] = {{900, 700}, {800, -900}, {-1000, -600}, {-700, 1000}}; // north, east
    const SMissionOptions& options = sensor.GetOptions();
    const std::uint32_t beacon = sensor.GetCount() % static_cast<std::uint32_t>(options.lblBeacons);
    const double latitude = options.latitude * kRadiansPerDegree + kPlaces[beacon][0] / kSemiMajorAxis;
    const double longitude =
        options.longitude * kRadiansPerDegree +
        kPlaces[beacon][1] / (kSemiMajorAxis * std::cos(options.latitude * kRadiansPerDegree));
    const CSensor::SPoint point = sensor.GetPointAt(EMount::lbl);
    const double range = (ToEarthFixed(latitude, longitude, GetSeabed(options)) -
                          ToEarthFixed(point.latitude, point.longitude, point.altitude))
                             .norm();
    payload.Put(PlaceOf(kLblLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kLblLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kLblLayout, "Beacon"), beacon + 1);
    payload.Put(PlaceOf(kLblLayout, "Latitude"), latitude * kDegreesPerRadian);
    payload.Put(PlaceOf(kLblLayout, "Longitude"), std::remainder(longitude * kDegreesPerRadian, 360));
    payload.Put(PlaceOf(kLblLayout, "Altitude"), -options.seabedDepth);
    payload.Put(PlaceOf(kLblLayout, "Range"), range + sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kLblLayout, "Std. dev. range"), sensor.State(kDeviation));
}

void FillUtc(CSensor& sensor, CPayload& payload) {
    Outils_Temps::CalendarFields fields;
    const auto now = sensor.GetOptions().GetUtcOrigin() + Outils_Temps::CDateTimeSpan(sensor.GetDate());
    if (!now.GetCalendar(fields)) return;
    payload.Put(PlaceOf(kUtcLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kUtcLayout, "UTC Year"), fields.year);
    payload.Put(PlaceOf(kUtcLayout, "UTC Month"), fields.month);
    payload.Put(PlaceOf(kUtcLayout, "UTC day"), fields.day);
    payload.Put(PlaceOf(kUtcLayout, "UTC Hour"), fields.hour);
    payload.Put(PlaceOf(kUtcLayout, "UTC Minute"), fields.minute);
    payload.Put(PlaceOf(kUtcLayout, "UTC Second"), fields.second + fields.ticks * 1e-7);
}

// The distance run since the packet before.
void FillOdometer(CSensor& sensor, CPayload& payload) {
    constexpr double kDeviation = 0.01;
    const double distance = sensor.GetState().motion.distance;
    payload.Put(PlaceOf(kOdometerLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kOdometerLayout, "Rejection"), kAuto);
    const SMissionOptions& options = sensor.GetOptions();
    const double slip = options.wheelSlip * sensor.GetState().motion.acceleration.norm();
    payload.Put(PlaceOf(kOdometerLayout, "Measure"),
                (distance - sensor.Exchange(distance)) * (1 + options.odometerScaleError + slip) +
                    sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kOdometerLayout, "Std. dev. measure"), sensor.State(kDeviation));
}

void FillSynchro(CSensor& sensor, CPayload& payload) {
    payload.Put(PlaceOf(kSynchroLayout, "Delay"), GetDelay(sensor));
    payload.Put(PlaceOf(kSynchroLayout, "Rejection"), kAuto);
    payload.Put(PlaceOf(kSynchroLayout, "Counter"), sensor.GetCount() + 1);
}

// Bits of an aiding sensor in the status words: four from `first` on: in use, valid, awaited, rejected.
std::uint32_t GetAidingBits(const CSensor& sensor, std::string_view channel, unsigned first) {
    if (!sensor.GetMission().HasChannel(channel)) return 0;
    const bool silent = sensor.GetOptions().IsOutage(channel, sensor.GetTime()) ||
                        (sensor.IsUnderWater() && !FindSensorRow(channel)->underWater);
    return (silent ? 0b101u : 0b011u) << first;
}

void FillNelixNav(CSensor& sensor, CPayload& payload) {
    const SMissionOptions& options = sensor.GetOptions();
    const SGrade& grade = GetGrade(options.grade);
    const SVehicleState& state = sensor.GetState();
    const double deviations[] = {grade.positionError, grade.positionError, grade.positionError / 2,
                                 grade.headingError,  grade.attitudeError, grade.attitudeError,
                                 grade.speedError,    grade.speedError,    grade.speedError};
    std::array<double, 9> errors;
    for (std::size_t i = 0; i < errors.size(); ++i) {
        constexpr double kTime = 600;
        CWander& wander = sensor.GetWander(i);
        if (sensor.GetCount() == 0) {
            wander = CWander(deviations[i], kTime);
            wander.Start(sensor.GetRandom());
        }
        errors[i] = wander.Step(sensor.GetInterval(), sensor.GetRandom());
    }

    const double time = sensor.GetTime();
    const bool atDepth = options.vehicle == EVehicle::auv;
    std::uint32_t word1 = 1u << (atDepth ? 5 : 4); // where the altitude comes from
    if (time < 0.5 * options.alignmentDuration)
        word1 |= 1u << 1;
    else
        word1 |= 1u << 0 | (time < options.alignmentDuration ? 1u << 2 : 0u);
    word1 |= GetAidingBits(sensor, "DVL_BT", 8) | GetAidingBits(sensor, "GPS_1", 12) |
             GetAidingBits(sensor, "USBL_1", 16) | GetAidingBits(sensor, "DEPTH", 20) |
             GetAidingBits(sensor, "LBL", 24);
    const std::uint32_t word2 = GetAidingBits(sensor, "DVL_WT", 0) | GetAidingBits(sensor, "GPS_2", 4) |
                                GetAidingBits(sensor, "EM_LOG_1", 24) | GetAidingBits(sensor, "GPS_3", 28);

    const CSensor::SPoint point = Shift(sensor, {state.latitude, state.longitude, state.motion.altitude},
                                        errors[0], errors[1], errors[2]);
    double heading = std::remainder(state.motion.heading.value * kDegreesPerRadian + errors[3], 360);
    if (heading < 0) heading += 360;
    payload.Put(PlaceOf(kNelixNavLayout, "Algorithm status 1"), word1);
    payload.Put(PlaceOf(kNelixNavLayout, "Algorithm status 2"), word2);
    payload.Put(PlaceOf(kNelixNavLayout, "Latitude"), point.latitude * kDegreesPerRadian);
    payload.Put(PlaceOf(kNelixNavLayout, "Longitude"),
                std::remainder(point.longitude * kDegreesPerRadian, 360));
    payload.Put(PlaceOf(kNelixNavLayout, "Altitude"), point.altitude);
    payload.Put(PlaceOf(kNelixNavLayout, "Heading"), heading);
    payload.Put(PlaceOf(kNelixNavLayout, "Roll"), state.motion.roll.value * kDegreesPerRadian + errors[4]);
    payload.Put(PlaceOf(kNelixNavLayout, "Pitch"), state.motion.pitch.value * kDegreesPerRadian + errors[5]);
    payload.Put(PlaceOf(kNelixNavLayout, "Speed north"), state.motion.velocity.x() + errors[6]);
    payload.Put(PlaceOf(kNelixNavLayout, "Speed east"), -state.motion.velocity.y() + errors[7]);
    payload.Put(PlaceOf(kNelixNavLayout, "Speed up"), state.motion.velocity.z() + errors[8]);
}

// A unit that warms up after its start, each part to a temperature of its own.
void FillTemperature(CSensor& sensor, CPayload& payload) {
    constexpr SPlace kPlaces[] = {PlaceOf(kTemperatureLayout, "FOG 1 temperature"),
                                  PlaceOf(kTemperatureLayout, "FOG 2 temperature"),
                                  PlaceOf(kTemperatureLayout, "FOG 3 temperature"),
                                  PlaceOf(kTemperatureLayout, "ACC 1 temperature"),
                                  PlaceOf(kTemperatureLayout, "ACC 2 temperature"),
                                  PlaceOf(kTemperatureLayout, "ACC 3 temperature"),
                                  PlaceOf(kTemperatureLayout, "Analog card temperature"),
                                  PlaceOf(kTemperatureLayout, "Source temperature")};
    constexpr double kCold = 18, kRise = 14, kWarmUp = 1800, kDeviation = 0.02;
    const double warm = 1 - std::exp(-sensor.GetTime() / kWarmUp);
    for (std::size_t i = 0; i < std::size(kPlaces); ++i)
        payload.Put(kPlaces[i],
                    kCold + (kRise + static_cast<double>(i)) * warm + sensor.MakeError(kDeviation));
}

// A mount that takes out the roll and the pitch of its vehicle: the platform's attitude in the vehicle.
void FillPlatform(CSensor& sensor, CPayload& payload) {
    const SVehicleState& state = sensor.GetState();
    const Matrix3d mount =
        state.attitude.transpose() *
        Eigen::AngleAxisd(-state.motion.heading.value, Vector3d::UnitZ()).toRotationMatrix();
    const double drift = std::atan2(-mount(1, 0), mount(0, 0)), pitch = std::asin(mount(2, 0));
    const double roll = std::atan2(mount(2, 1), mount(2, 2));
    constexpr double kDeviation = 0.01;
    payload.Put(PlaceOf(kPlatformOrientationLayout, "Drift (heading)"),
                drift * kDegreesPerRadian + sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kPlatformOrientationLayout, "Roll"),
                roll * kDegreesPerRadian + sensor.MakeError(kDeviation));
    payload.Put(PlaceOf(kPlatformOrientationLayout, "Pitch"),
                pitch * kDegreesPerRadian + sensor.MakeError(kDeviation));
}

constexpr SSensorRow kRows[] = {
    {"DVL_", &kDvlLayout, 2, 0.26, FillDvl},
    {"EM_LOG_", &kEMLogLayout, 1, 0.37, FillEMLog},
    {"GPS_", &kGpsLayout, 1, 0, FillGps, false},
    {"DEPTH", &kDepthLayout, 2, 0.58, FillDepth},
    {"USBL_", &kUsblLayout, 0.5, 0.31, FillUsbl},
    {"LBL", &kLblLayout, 0.5, 0.67, FillLbl},
    {"UTC", &kUtcLayout, 1, 0, FillUtc},
    {"ODOMETER", &kOdometerLayout, 5, 0.2, FillOdometer},
    {"SYNCHRO_", &kSynchroLayout, 0.1, 0.4321, FillSynchro},
    {"NELIX_NAV", &kNelixNavLayout, 10, 0, FillNelixNav},
    {"TEMPERATURE", &kTemperatureLayout, 0.2, 0.1, FillTemperature},
    {"PLATFORM_ORIENT", &kPlatformOrientationLayout, 10, 0.05, FillPlatform},
};

} // namespace

const SSensorRow* FindSensorRow(std::string_view channel) {
    const auto* found =
        std::ranges::find_if(kRows, [&](const SSensorRow& row) { return channel.starts_with(row.prefix); });
    return found == std::end(kRows) || !FindChannelLayout(channel) ? nullptr : found;
}

} // namespace Simulation
