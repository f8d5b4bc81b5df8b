#include "simulator/motion.h"

#include "simulator/earth.h"

#include <cmath>
#include <utility>

namespace Simulation {

namespace {

// Value, first and second derivative by time of a sum of waves, with the distance moving at `speed` (value
// and first derivative).
SProfileValue Sum(const std::vector<SWave>& waves, double time, double distance, const SProfileValue& speed) {
    SProfileValue sum;
    for (const SWave& wave : waves) {
        const double phase = wave.omega * time + wave.wavenumber * distance + wave.phase;
        const double rate = wave.omega + wave.wavenumber * speed.value;
        const double s = wave.amplitude * std::sin(phase), c = wave.amplitude * std::cos(phase);
        sum.value += s;
        sum.first += c * rate;
        sum.second += c * wave.wavenumber * speed.first - s * rate * rate;
    }
    return sum;
}

SProfileValue operator*(const SProfileValue& a, const SProfileValue& b) {
    return {a.value * b.value, a.first * b.value + a.value * b.first,
            a.second * b.value + 2 * a.first * b.first + a.value * b.second};
}

} // namespace

CMotion::CMotion(SMotionPlan plan) : m_plan(std::move(plan)), m_altitude(0) {
    SMotionHint hint;
    m_altitude = m_plan.altitude - At(0, hint).altitude;
}

SKinematics CMotion::At(double time, SMotionHint& hint) const {
    const SProfileValue speed = m_plan.speed.At(time, hint.speed);
    const SProfileValue course = m_plan.course.At(time, hint.course);
    const SProfileValue climb = m_plan.climb.At(time, hint.climb);
    const SProfileValue release = m_plan.release.At(time, hint.release);
    const double free = 1 - m_plan.motionAtRest;
    const SProfileValue share{m_plan.motionAtRest + free * release.value, free * release.first,
                              free * release.second};

    SKinematics result;
    result.distance = m_plan.speed.IntegralAt(time, hint.speed);
    const auto waves = [&](const std::vector<SWave>& list) {
        return share * Sum(list, time, result.distance, speed);
    };

    const SProfileValue heave = waves(m_plan.heave), roll = waves(m_plan.roll);
    const SProfileValue pitch = waves(m_plan.pitch), yaw = waves(m_plan.yaw);
    result.heading = {course.value + yaw.value, course.first + yaw.first};
    result.pitch = {pitch.value + m_plan.pitchPerClimb * climb.first,
                    pitch.first + m_plan.pitchPerClimb * climb.second};
    result.roll = {roll.value + m_plan.rollPerAcceleration * speed.value * course.first,
                   roll.first + m_plan.rollPerAcceleration *
                                    (speed.first * course.first + speed.value * course.second)};

    const double c = std::cos(course.value), s = std::sin(course.value);
    const double tide = 2 * kPi / kCurrentTime;
    const double ct = m_plan.currentField * std::cos(tide * time),
                 st = m_plan.currentField * std::sin(tide * time);
    const Vector3d current = m_plan.current + Vector3d{st, ct, 0};
    result.water = release.value * current;
    result.velocity = Vector3d{speed.value * c, -speed.value * s, climb.first + heave.first} + result.water;
    result.acceleration =
        Vector3d{speed.first * c - speed.value * course.first * s,
                 -speed.first * s - speed.value * course.first * c, climb.second + heave.second} +
        release.first * current + release.value * tide * Vector3d{ct, -st, 0};
    result.heave = heave.value;
    result.altitude = m_altitude + climb.value + heave.value;
    return result;
}

} // namespace Simulation
