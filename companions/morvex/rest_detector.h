// Detects from the increments of the inertial unit alone that a vehicle stands still.
#pragma once

#include "morvex/measurements.h"

namespace Morvex {

// Compares the variances of rate and force over a second with the unit's noise (Skog, Händel, Nilsson and
// Rantakokko, Zero-velocity detection: an algorithm evaluation, IEEE Trans. Biomedical Eng. 57, 2010), with
// an allowance for an engine that idles. A vehicle that glides without any vibration looks the same: whoever
// asks must know that the speed may be none.
class CRestDetector {
  public:
    // White noise of the unit, rad/√s and m/s/√s.
    CRestDetector(double gyroNoise, double accelNoise) : m_gyroNoise(gyroNoise), m_accelNoise(accelNoise) {}

    // Adds the rate and the force of a sample whose biases are taken out, rad/s and m/s².
    void Add(double span, const Vector3d& rate, const Vector3d& force);
    // Still for the last seconds.
    bool IsAtRest() const { return m_quietWindows >= kWindows; }

  private:
    static constexpr int kWindows = 2;
    void Judge();

    double m_gyroNoise, m_accelNoise;
    double m_duration = 0.0; // of the present window, s
    int m_count = 0;
    Vector3d m_rate = Vector3d::Zero(), m_rateSquares = Vector3d::Zero();
    Vector3d m_force = Vector3d::Zero(), m_forceSquares = Vector3d::Zero();
    int m_quietWindows = 0; // in a row
};

} // namespace Morvex
