#include "morvex/strapdown.h"

namespace Morvex {

// Savage, Strapdown Inertial Navigation Integration Algorithm Design, J. Guidance 21 (1998), two papers: the
// first for the attitude, the second for velocity and position, with rates taken as linear over this sample
// and the one before.
void CStrapdown::Advance(const SImuSample& sample) {
    const double dt = sample.span;
    if (!(dt > 0.0)) return;
    Vector3d coning = Vector3d::Zero();
    Vector3d sculling = Vector3d::Zero();
    if (m_lastSpan > 0.0) {
        // 1/12 for equal spans, in the form that also holds for a sample that was cut in two.
        const double k = dt * dt / (6.0 * (dt + m_lastSpan));
        coning = k * m_rate.cross(sample.angle);
        sculling = k * (m_rate.cross(sample.velocity) + m_force.cross(sample.angle));
    }
    const Vector3d rotation = sample.angle + coning;
    const Vector3d velocityChange = sample.velocity + 0.5 * sample.angle.cross(sample.velocity) + sculling;

    const SEarth earth(m_navigation.position[0], m_navigation.position[2], m_navigation.velocity,
                       m_direction);
    const Vector3d levelRotation = (earth.earthRate + earth.transportRate) * dt;
    Vector3d change = m_navigation.attitude * velocityChange;
    change -= 0.5 * levelRotation.cross(change); // the level axes turn while the force acts
    change -= (2.0 * earth.earthRate + earth.transportRate).cross(m_navigation.velocity) * dt;
    change.z() -= earth.gravity * dt;

    MovePosition(m_navigation.position, (m_navigation.velocity + 0.5 * change) * dt, earth);
    m_navigation.velocity += change;
    m_freeHeight += (m_freeSpeed + 0.5 * change.z()) * dt;
    m_freeSpeed += change.z();
    m_navigation.attitude =
        (RotationOf(-levelRotation) * m_navigation.attitude * RotationOf(rotation)).normalized();
    m_navigation.time = sample.time;
    m_rate = sample.angle / dt;
    m_force = sample.velocity / dt;
    m_lastSpan = dt;
}

void CStrapdown::Correct(const Vector3d& position, const Vector3d& velocity, const Vector3d& rotation) {
    const SEarth earth(m_navigation.position[0], m_navigation.position[2], m_navigation.velocity,
                       m_direction);
    MovePosition(m_navigation.position, position, earth);
    m_navigation.velocity += velocity;
    m_navigation.attitude = (RotationOf(rotation) * m_navigation.attitude).normalized();
}

} // namespace Morvex
