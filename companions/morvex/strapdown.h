// Strapdown mechanisation in the local level on the WGS-84 ellipsoid.
#pragma once

#include "morvex/earth.h"
#include "morvex/measurements.h"
#include "morvex/rotation.h"

namespace Morvex {

struct SNavigation {
    double time = 0.0;                              // s
    Vector3d position = Vector3d::Zero();           // latitude and longitude in rad, height in m
    Vector3d velocity = Vector3d::Zero();           // against the earth: north, west, up, m/s
    Quaterniond attitude = Quaterniond::Identity(); // vessel to local level
};

// Integrates the increments of the unit. One object per trajectory and thread.
class CStrapdown {
  public:
    // `direction` -1 runs time backwards: the caller reverses the order of the samples and the sign of their
    // angles, and gives the velocity with its sign changed. The equations are then the same with an earth
    // that turns the other way.
    explicit CStrapdown(const SNavigation& start = {}, double direction = 1.0)
        : m_navigation(start), m_direction(direction) {}

    // Moves on by one sample whose biases have been taken out. Samples may have any span: half a sample
    // up to a measurement and the rest after it are two calls.
    void Advance(const SImuSample& sample);

    const SNavigation& Get() const { return m_navigation; }
    double GetDirection() const { return m_direction; }
    // Rates and specific force of the last sample, vessel axes, rad/s and m/s².
    const Vector3d& GetRate() const { return m_rate; }
    const Vector3d& GetForce() const { return m_force; }
    // The height that the samples alone give, from 0 at the start: no correction of the filter is in it, m.
    double GetFreeHeight() const { return m_freeHeight; }

    // Corrections by a filter: metres north, west, up; m/s; and the rotation of the level axes, rad.
    void Correct(const Vector3d& position, const Vector3d& velocity, const Vector3d& rotation);

  private:
    SNavigation m_navigation;
    double m_direction;
    double m_lastSpan = 0.0;
    double m_freeHeight = 0.0, m_freeSpeed = 0.0; // m, m/s
    Vector3d m_rate = Vector3d::Zero();
    Vector3d m_force = Vector3d::Zero();
};

} // namespace Morvex
