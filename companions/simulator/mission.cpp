#include "simulator/mission.h"

#include "simulator/earth.h"
#include "simulator/sensors.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>

namespace Simulation {

namespace {

constexpr double kStep = 0.05; // seconds
constexpr std::int64_t kCheckpointSteps = 200;

Matrix3d MakeAttitude(double heading, double roll, double pitch) {
    const double ch = std::cos(heading), sh = std::sin(heading);
    const double cr = std::cos(roll), sr = std::sin(roll);
    const double cp = std::cos(pitch), sp = std::sin(pitch);
    // Turned by -heading about up, then by -pitch about port, then by roll about forward.
    Matrix3d attitude;
    attitude.col(0) = Vector3d(cp * ch, -cp * sh, sp);
    attitude.col(1) = Vector3d(sh * cr - ch * sp * sr, ch * cr + sh * sp * sr, cp * sr);
    attitude.col(2) = Vector3d(-sh * sr - ch * sp * cr, -ch * sr + sh * sp * cr, cp * cr);
    return attitude;
}

// The rotation against the level axes, in vessel axes.
Vector3d GetBodyRate(const SKinematics& motion) {
    const double cr = std::cos(motion.roll.value), sr = std::sin(motion.roll.value);
    const double cp = std::cos(motion.pitch.value), sp = std::sin(motion.pitch.value);
    const double h = motion.heading.rate, p = motion.pitch.rate;
    return {motion.roll.rate - h * sp, -p * cr - h * cp * sr, p * sr - h * cp * cr};
}

double WrapDegrees(double radians, double from) {
    const double turns = (radians * kDegreesPerRadian - from) / 360;
    const double wrapped = (turns - std::floor(turns)) * 360 + from;
    return wrapped < from + 360 ? wrapped : from;
}

double ChooseDuration(const SMissionOptions& options) {
    return options.targetSize > 0 ? static_cast<double>(options.targetSize) / GetBytesPerSecond(options)
                                  : options.duration;
}

} // namespace

CMission::CMission(const SMissionOptions& options)
    : m_options(options),
      m_channels(options.GetChannels()),
      m_duration(ChooseDuration(options)),
      m_motion(MakeMotionPlan(options, m_duration)) {
    CTrackCursor cursor;
    cursor.step = 0;
    cursor.begin = {options.latitude * kRadiansPerDegree, options.longitude * kRadiansPerDegree};
    const auto steps = static_cast<std::int64_t>(std::ceil(m_duration / kStep)) + 1;
    for (; cursor.step < steps; ++cursor.step) {
        if (cursor.step % kCheckpointSteps == 0) m_checkpoints.push_back(cursor.begin);
        Integrate(cursor);
        cursor.begin = cursor.end;
    }
}

bool CMission::HasChannel(std::string_view channel) const {
    return std::ranges::find(m_channels, channel) != m_channels.end();
}

// Fills the interval from its begin on.
void CMission::Integrate(CTrackCursor& cursor) const {
    const double start = static_cast<double>(cursor.step) * kStep;
    const auto rateAt = [](const SKinematics& motion,
                           const CTrackCursor::SPoint& point) -> CTrackCursor::SPoint {
        const double s = std::sin(point.latitude);
        const SRadii radii = GetRadii(s);
        return {motion.velocity.x() / (radii.meridian + motion.altitude),
                -motion.velocity.y() / ((radii.normal + motion.altitude) * std::sqrt(1 - s * s))};
    };
    const auto move = [&](const CTrackCursor::SPoint& rate, double time) -> CTrackCursor::SPoint {
        return {cursor.begin.latitude + rate.latitude * time, cursor.begin.longitude + rate.longitude * time};
    };
    const SKinematics middle = m_motion.At(start + kStep / 2, cursor.hint);
    const SKinematics last = m_motion.At(start + kStep, cursor.hint);
    const auto k1 = rateAt(m_motion.At(start, cursor.hint), cursor.begin);
    const auto k2 = rateAt(middle, move(k1, kStep / 2));
    const auto k3 = rateAt(middle, move(k2, kStep / 2));
    const auto k4 = rateAt(last, move(k3, kStep));
    const auto mean = [](double a, double b, double c, double d) { return (a + 2 * b + 2 * c + d) / 6; };
    cursor.end = move({mean(k1.latitude, k2.latitude, k3.latitude, k4.latitude),
                       mean(k1.longitude, k2.longitude, k3.longitude, k4.longitude)},
                      kStep);
    cursor.rate[0] = k1;
    cursor.rate[1] = {(k2.latitude + k3.latitude) / 2, (k2.longitude + k3.longitude) / 2};
    cursor.rate[2] = k4;
}

void CMission::MoveTo(std::int64_t step, CTrackCursor& cursor) const {
    if (step == cursor.step) return;
    const std::int64_t checkpoint =
        std::min(step / kCheckpointSteps, static_cast<std::int64_t>(m_checkpoints.size()) - 1);
    if (cursor.step < 0 || step < cursor.step || cursor.step < checkpoint * kCheckpointSteps) {
        cursor.step = checkpoint * kCheckpointSteps;
        cursor.begin = m_checkpoints[static_cast<std::size_t>(checkpoint)];
        Integrate(cursor);
    }
    while (cursor.step < step) {
        cursor.begin = cursor.end;
        ++cursor.step;
        Integrate(cursor);
    }
}

SVehicleState CMission::GetState(double time, CTrackCursor& cursor) const {
    return MakeState(time, cursor, false);
}

SVehicleState CMission::GetUnitState(double time, CTrackCursor& cursor) const {
    return MakeState(time, cursor, m_options.stabilised > 0);
}

SVehicleState CMission::MakeState(double time, CTrackCursor& cursor, bool isLevelled) const {
    time = std::clamp(time, 0.0, m_duration);
    MoveTo(static_cast<std::int64_t>(time / kStep), cursor);
    SVehicleState state;
    state.motion = m_motion.At(time, cursor.hint);
    if (isLevelled) state.motion.roll = state.motion.pitch = {};

    // The integral of the parabola through the three rates.
    const double x = (time - static_cast<double>(cursor.step) * kStep) / kStep;
    const double w1 = x * x * (2 - x * 4 / 3), w2 = x * x * (x * 2 / 3 - 0.5), w0 = x - w1 - w2;
    state.latitude =
        cursor.begin.latitude +
        kStep * (w0 * cursor.rate[0].latitude + w1 * cursor.rate[1].latitude + w2 * cursor.rate[2].latitude);
    state.longitude =
        cursor.begin.longitude + kStep * (w0 * cursor.rate[0].longitude + w1 * cursor.rate[1].longitude +
                                          w2 * cursor.rate[2].longitude);

    const double s = std::sin(state.latitude), c = std::sqrt(1 - s * s);
    const SRadii radii = GetRadii(s);
    state.meridianRadius = radii.meridian + state.motion.altitude;
    state.normalRadius = radii.normal + state.motion.altitude;

    const SKinematics& motion = state.motion;
    state.attitude = MakeAttitude(motion.heading.value, motion.roll.value, motion.pitch.value);
    const Vector3d earth{kEarthRate * c, 0, kEarthRate * s};
    const double east = -motion.velocity.y() / state.normalRadius;
    const Vector3d transport{east, motion.velocity.x() / state.meridianRadius, east * s / c};
    state.earthRelativeRate = GetBodyRate(motion) + state.attitude.transpose() * transport;
    state.inertialRate = state.earthRelativeRate + state.attitude.transpose() * earth;
    // Navigation equation in level axes, solved for what accelerometers feel.
    Vector3d gravity = GetGravity(s, motion.altitude);
    if (m_options.gravityDisturbance > 0) {
        constexpr double kMicroG = 9.80665e-6, kLength = 20000; // metres
        const double phase = 2 * kPi / kLength * motion.distance;
        gravity += kMicroG * m_options.gravityDisturbance * Vector3d{std::sin(phase), std::cos(phase), 0};
    }
    state.force = state.attitude.transpose() *
                  (motion.acceleration + (2 * earth + transport).cross(motion.velocity) - gravity);
    return state;
}

STruth CMission::GetTruth(double time, CTrackCursor& cursor) const {
    const SVehicleState state = GetState(time, cursor);
    const SKinematics& motion = state.motion;
    STruth truth;
    truth.time = std::clamp(time, 0.0, m_duration);
    truth.latitude = state.latitude * kDegreesPerRadian;
    truth.longitude = WrapDegrees(state.longitude, -180);
    truth.altitude = motion.altitude;
    truth.speedNorth = motion.velocity.x();
    truth.speedEast = 0 - motion.velocity.y(); // no negative zero
    truth.speedUp = motion.velocity.z();
    truth.heading = WrapDegrees(motion.heading.value, 0);
    truth.roll = motion.roll.value * kDegreesPerRadian;
    truth.pitch = motion.pitch.value * kDegreesPerRadian;
    truth.heave = motion.heave;
    return truth;
}

STruth CMission::GetTruth(double time) const {
    CTrackCursor cursor;
    return GetTruth(time, cursor);
}

} // namespace Simulation
