#include "morvex/gap_bridge.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kMemory = 20.0;     // s of motion that are remembered
constexpr double kShort = 0.2;       // s: bridged from the neighbours
constexpr double kCorrelation = 2.0; // s for which the motion keeps its direction
constexpr double kSwing = 1.5;       // s in which a swing goes from its middle to its end

} // namespace

void CGapBridge::Learn(SMotion& motion, const Vector3d& rate, double span, int count) {
    const double share = count < 2 ? 1.0 : std::max(span / kMemory, 1.0 / count);
    const Vector3d off = rate - motion.mean;
    motion.mean += share * off;
    motion.variance += share * (off.cwiseAbs2() - motion.variance);
    if (count >= 3) {
        const Vector3d bend = rate - 2.0 * motion.last[1] + motion.last[0];
        motion.curvature += share * (bend.cwiseAbs2() - motion.curvature);
    }
    motion.last[0] = motion.last[1];
    motion.last[1] = rate;
}

Vector3d CGapBridge::GetDeviation(const SMotion& motion, double gap, double samples) {
    const Vector3d usual = motion.variance.cwiseSqrt() * std::sqrt(gap * std::min(gap, kCorrelation));
    // Between two neighbours the middle errs by half of a second difference, which grows with the square of
    // their distance.
    const Vector3d bent = 0.5 * motion.curvature.cwiseSqrt() * gap * std::max(samples * samples, 1.0);
    return gap <= kShort ? Vector3d(bent.cwiseMin(usual)) : usual;
}

void CGapBridge::Fill(SImuSample& sample, double nominal) {
    const double own = sample.span - sample.gap;
    const Vector3d turn = sample.angle / own, force = sample.velocity / own;
    if (sample.gap > 0.0) {
        const bool isShort = sample.gap <= kShort;
        const auto fill = [&](const SMotion& motion, const Vector3d& rate) -> Vector3d {
            if (m_count == 0) return rate * sample.span;
            const Vector3d bridge = isShort ? Vector3d(0.5 * (motion.last[1] + rate)) : motion.mean;
            return rate * own + bridge * sample.gap;
        };
        sample.angle = fill(m_turn, turn);
        sample.velocity = fill(m_force, force);
        const double samples = sample.gap / nominal;
        sample.gapTurn = GetDeviation(m_turn, sample.gap, samples);
        sample.gapSpeed = GetDeviation(m_force, sample.gap, samples);
        // The attitude at the begin of a long gap is held through it, and gravity with it.
        if (!isShort) {
            const double swing = m_turn.variance.cwiseSqrt().norm() * std::min(sample.gap, kSwing);
            sample.gapSpeed.array() += m_force.mean.norm() * swing * sample.gap;
        }
        m_turn.last[1] = turn;
        m_force.last[1] = force;
        m_turn.last[0] = turn;
        m_force.last[0] = force;
        return;
    }
    ++m_count;
    Learn(m_turn, turn, sample.span, m_count);
    Learn(m_force, force, sample.span, m_count);
}

} // namespace Morvex
