#include "morvex/rest_detector.h"

#include <algorithm>

namespace Morvex {
namespace {

constexpr double kWindow = 1.0;         // s
constexpr double kIdlingRate = 0.003;   // rad/s
constexpr double kIdlingForce = 0.05;   // m/s²
constexpr double kLargestMean = 0.0035; // rad/s: 0.2 degrees/s; the earth turns fifty times slower
constexpr double kAbove = 4.0;          // times the variance of the noise
constexpr int kFewestSamples = 5;

} // namespace

void CRestDetector::Add(double span, const Vector3d& rate, const Vector3d& force) {
    m_duration += span;
    ++m_count;
    m_rate += rate;
    m_force += force;
    m_rateSquares += rate.cwiseAbs2();
    m_forceSquares += force.cwiseAbs2();
    if (m_duration >= kWindow) Judge();
}

void CRestDetector::Judge() {
    const double count = m_count, span = m_duration / count;
    const Vector3d rate = m_rate / count, force = m_force / count;
    const double rateVariance = (m_rateSquares / count - rate.cwiseAbs2()).maxCoeff();
    const double forceVariance = (m_forceSquares / count - force.cwiseAbs2()).maxCoeff();
    const auto limit = [span](double noise, double idling) {
        return kAbove * noise * noise / span + idling * idling;
    };
    const bool isQuiet = m_count >= kFewestSamples && rate.norm() < kLargestMean &&
                         rateVariance < limit(m_gyroNoise, kIdlingRate) &&
                         forceVariance < limit(m_accelNoise, kIdlingForce);
    m_quietWindows = isQuiet ? std::min(m_quietWindows + 1, kWindows) : 0;
    m_duration = 0.0;
    m_count = 0;
    m_rate.setZero();
    m_force.setZero();
    m_rateSquares.setZero();
    m_forceSquares.setZero();
}

} // namespace Morvex
