#include "morvex/ins_filter.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Morvex {
namespace {

constexpr double kCovarianceStep = 0.05; // s: attitude moves little within it
constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

// 99.9 % of the chi-square distribution, by degrees of freedom.
constexpr double kGate[] = {0.0, 10.83, 13.82, 16.27};
// An outlier costs a hypothesis this much and no more: one bad fix must not decide between them.
constexpr double kLargestCost = 40.0;
// Beyond so many times the gate a fix is not used at all.
constexpr double kFarOut = 4.0;
// A filter that has contradicted every fix for so many times its trust in the unit is the one that is wrong.
constexpr double kGiveInAfter = 5.0;
constexpr double kQuickReacquisition = 0.2; // the share of that when automatic reacquisition is asked for

} // namespace

SFilterState SFilterState::Reversed() const {
    SFilterState reversed = *this;
    reversed.direction = -direction;
    reversed.navigation.time = -navigation.time;
    reversed.navigation.velocity = -navigation.velocity;
    reversed.gyroBias = -gyroBias;
    StateVector signs = StateVector::Ones();
    signs.segment<3>(stateVelocity).setConstant(-1.0);
    signs.segment<3>(stateGyroBias).setConstant(-1.0);
    reversed.covariance = signs.asDiagonal() * covariance * signs.asDiagonal();
    return reversed;
}

StateMatrix ErrorDynamics(const SNavigation& navigation, const Vector3d& levelForce, const Matrix3d& attitude,
                          double direction) {
    const Vector3d& v = navigation.velocity;
    const SEarth earth(navigation.position[0], navigation.position[2], v, direction);
    const double rm = earth.meridian, rn = earth.normal, t = earth.tangent;

    // Derivatives of the earth's and the transport rate by position and by velocity.
    Matrix3d earthByPosition = Matrix3d::Zero();
    earthByPosition.col(0) = direction * kEarthRate / rm * Vector3d(-earth.sine, 0.0, earth.cosine);
    Matrix3d transportByPosition = Matrix3d::Zero();
    transportByPosition(2, 0) = -v.y() * (1.0 + t * t) / (rn * rm);
    transportByPosition.col(2) = Vector3d(v.y() / (rn * rn), -v.x() / (rm * rm), v.y() * t / (rn * rn));
    Matrix3d transportByVelocity = Matrix3d::Zero();
    transportByVelocity(0, 1) = -1.0 / rn;
    transportByVelocity(1, 0) = 1.0 / rm;
    transportByVelocity(2, 1) = -t / rn;

    StateMatrix f = StateMatrix::Zero();
    f.block<3, 3>(statePosition, stateVelocity).setIdentity();
    f(0, 0) = v.z() / rm;
    f(0, 2) = -v.x() / rm;
    f(1, 0) = v.y() * t / rm;
    f(1, 1) = v.z() / rn - v.x() * t / rm;
    f(1, 2) = -v.y() / rn;

    const Matrix3d skewVelocity = SkewOf(v);
    f.block<3, 3>(stateVelocity, statePosition) =
        skewVelocity * (2.0 * earthByPosition + transportByPosition);
    f(stateVelocity + 2, statePosition + 2) += 2.0 * earth.gravity / std::sqrt(rm * rn);
    f.block<3, 3>(stateVelocity, stateVelocity) =
        -SkewOf(2.0 * earth.earthRate + earth.transportRate) + skewVelocity * transportByVelocity;
    f.block<3, 3>(stateVelocity, stateAttitude) = -SkewOf(levelForce);
    f.block<3, 3>(stateVelocity, stateAccelBias) = -attitude;

    f.block<3, 3>(stateAttitude, statePosition) = -(earthByPosition + transportByPosition);
    f.block<3, 3>(stateAttitude, stateVelocity) = -transportByVelocity;
    f.block<3, 3>(stateAttitude, stateAttitude) = -SkewOf(earth.earthRate + earth.transportRate);
    f.block<3, 3>(stateAttitude, stateGyroBias) = -attitude;
    return f;
}

CInsFilter::CInsFilter(const SFilterState& start, const SSensorGrade& grade, EMode mode)
    : m_state(start),
      m_strapdown(start.navigation, start.direction),
      m_grade(grade),
      m_mode(mode),
      m_contradictedSince{kNone, kNone},
      m_lastFix(kNone) {}

void CInsFilter::Advance(const SImuSample& sample) {
    SImuSample corrected = sample;
    corrected.angle -= m_state.gyroBias * sample.span;
    corrected.velocity -= m_state.accelBias * sample.span;
    const Matrix3d before = m_strapdown.Get().attitude.toRotationMatrix();
    m_strapdown.Advance(corrected);
    // The sums take the attitude in the middle of the sample, as the mechanisation does.
    const Matrix3d attitude = 0.5 * (before + m_strapdown.Get().attitude.toRotationMatrix());
    m_pendingForce += attitude * corrected.velocity;
    m_pendingAttitude += attitude * sample.span;
    m_pendingRotation += corrected.angle;
    m_pending += sample.span;
    if (m_pending >= kCovarianceStep * 0.999) PropagateCovariance();
}

void CInsFilter::PropagateCovariance() {
    const double dt = m_pending;
    if (dt <= 0.0) return;
    const StateMatrix a =
        dt * ErrorDynamics(m_strapdown.Get(), m_pendingForce / dt, m_pendingAttitude / dt, m_state.direction);
    StateMatrix transition = a + 0.5 * a * a;
    transition.diagonal().array() += 1.0;

    StateMatrix& p = m_state.covariance;
    const StateMatrix half = transition * p;
    p.noalias() = half * transition.transpose();

    // The noise is the same along all axes of the unit, so it needs no turning into the level.
    auto addNoise = [&p](int group, double variance) { p.diagonal().segment<3>(group).array() += variance; };
    // An error in proportion to a rate is constant while the rate lasts, about a second on a moving vehicle.
    const double scale = m_grade.gyroScale * m_pendingRotation.norm();
    addNoise(stateAttitude, m_grade.gyroNoise * m_grade.gyroNoise * dt + scale * scale / dt);
    addNoise(stateVelocity, m_grade.accelNoise * m_grade.accelNoise * dt);
    addNoise(stateGyroBias, m_grade.gyroDrift * m_grade.gyroDrift * dt);
    addNoise(stateAccelBias, m_grade.accelDrift * m_grade.accelDrift * dt);
    p = (0.5 * (p + p.transpose())).eval();

    m_pending = 0.0;
    m_pendingForce.setZero();
    m_pendingAttitude.setZero();
    m_pendingRotation.setZero();
}

template <int N>
EFixResult CInsFilter::UpdatePart(const Eigen::Matrix<double, N, kStates>& h,
                                  const Eigen::Matrix<double, N, 1>& innovation,
                                  const Eigen::Matrix<double, N, N>& noise, EUse use,
                                  double& contradictedSince, SFixOutcome& outcome, StateVector& correction) {
    using Square = Eigen::Matrix<double, N, N>;
    if (use == EUse::never) return EFixResult::notTaken;
    StateMatrix& p = m_state.covariance;
    // What an earlier part of the same fix has corrected is taken off.
    const Eigen::Matrix<double, N, 1> z = innovation - h * correction;
    Square r = noise;
    Eigen::Matrix<double, kStates, N> ph = p * h.transpose();
    Square s = h * ph + r;
    Eigen::LLT<Square> llt(s);
    if (llt.info() != Eigen::Success) return EFixResult::rejected;
    double distance = z.dot(llt.solve(z));
    if (!std::isfinite(distance)) return EFixResult::rejected;
    const double logDeterminant = 2.0 * llt.matrixLLT().diagonal().array().log().sum();
    outcome.logLikelihood -= 0.5 * (std::min(distance, kLargestCost) + logDeterminant);
    outcome.distance += distance;
    outcome.dimension += N;

    EFixResult result = EFixResult::accepted;
    const double time = m_strapdown.Get().time;
    const bool contradicts = distance > kGate[N] && use != EUse::always;
    if (contradicts && m_mode == EMode::navigation) {
        if (std::isnan(contradictedSince)) contradictedSince = time;
        const double patience = GetPatience(use);
        if (time - contradictedSince > kGiveInAfter * patience) {
            // As much uncertainty of position, and of a velocity that may have caused it, as makes the fix
            // plausible.
            for (int i = 0; i < N; ++i) {
                Eigen::Index state = 0;
                h.row(i).template head<3>().cwiseAbs().maxCoeff(&state);
                const double miss = z[i] * z[i];
                p(state, state) += miss;
                p(stateVelocity + state, stateVelocity + state) += miss / (patience * patience);
            }
            ph = p * h.transpose();
            result = EFixResult::forced;
        } else if (distance > kFarOut * kGate[N]) {
            return EFixResult::rejected;
        }
    }
    if (contradicts) {
        // Between the gate and far out a fix pulls as much as one on the gate would (Huber, Robust
        // Statistics).
        if (result == EFixResult::accepted) r *= distance / kGate[N];
        s = h * ph + r;
        llt.compute(s);
        if (llt.info() != Eigen::Success) return EFixResult::rejected;
    }
    if (!contradicts || result == EFixResult::forced) contradictedSince = kNone;

    const Eigen::Matrix<double, kStates, N> gain = llt.solve(ph.transpose()).transpose();
    correction += gain * z;
    // Joseph's form keeps the covariance positive over millions of updates.
    StateMatrix keep = -gain * h;
    keep.diagonal().array() += 1.0;
    const StateMatrix half = keep * p;
    p.noalias() = half * keep.transpose();
    p.noalias() += gain * r * gain.transpose();
    return result;
}

SFixOutcome CInsFilter::Update(const SPositionFix& fix) {
    PropagateCovariance();
    SFixOutcome outcome;
    const SNavigation& navigation = m_strapdown.Get();
    const Vector3d arm = navigation.attitude * fix.leverArm;
    outcome.innovation = MetresBetween(navigation.position, fix.position) - arm;

    Eigen::Matrix<double, 3, kStates> h = Eigen::Matrix<double, 3, kStates>::Zero();
    h.block<3, 3>(0, statePosition).setIdentity();
    h.block<3, 3>(0, stateAttitude) = -SkewOf(arm);
    Eigen::Matrix2d noise;
    noise << fix.varianceNorth, -fix.covarianceNorthEast, -fix.covarianceNorthEast, fix.varianceEast;

    StateVector correction = StateVector::Zero();
    outcome.horizontal = UpdatePart<2>(h.topRows<2>(), outcome.innovation.head<2>(), noise, fix.horizontal,
                                       m_contradictedSince[0], outcome, correction);
    outcome.vertical = UpdatePart<1>(h.bottomRows<1>(), outcome.innovation.tail<1>(),
                                     Eigen::Matrix<double, 1, 1>(fix.varianceUp), fix.vertical,
                                     m_contradictedSince[1], outcome, correction);
    ApplyCorrection(correction);
    Doubt(fix);
    return outcome;
}

double CInsFilter::GetPatience(EUse use) const {
    return std::max(m_grade.trust * (use == EUse::reacquired ? kQuickReacquisition : 1.0), 0.2);
}

// One contradiction may be the fix's fault, a row of them is more and more likely the filter's: a shock that
// the unit did not measure, a bias beyond its grade. While they last, the uncertainty of what the fixes speak
// of grows by a factor of e in each time of trust, until filter and fixes agree.
void CInsFilter::Doubt(const SPositionFix& fix) {
    const double since = std::isnan(m_lastFix) ? 0.0 : std::min(fix.time - m_lastFix, 2.0);
    m_lastFix = fix.time;
    if (m_mode != EMode::navigation || since <= 0.0) return;
    StateVector factor = StateVector::Ones();
    if (!std::isnan(m_contradictedSince[0]))
        factor.head<9>().setConstant(std::exp(0.5 * since / GetPatience(fix.horizontal)));
    if (!std::isnan(m_contradictedSince[1]))
        factor[statePosition + 2] = factor[stateVelocity + 2] =
            std::exp(0.5 * since / GetPatience(fix.vertical));
    if (factor.maxCoeff() == 1.0) return;
    m_state.covariance = factor.asDiagonal() * m_state.covariance * factor.asDiagonal();
}

void CInsFilter::HoldHeight(double height, double deviation) {
    PropagateCovariance();
    Eigen::Matrix<double, 1, kStates> h = Eigen::Matrix<double, 1, kStates>::Zero();
    h(0, statePosition + 2) = 1.0;
    SFixOutcome outcome;
    StateVector correction = StateVector::Zero();
    double ignored = kNone;
    UpdatePart<1>(h, Eigen::Matrix<double, 1, 1>(height - m_strapdown.Get().position[2]),
                  Eigen::Matrix<double, 1, 1>(deviation * deviation), EUse::always, ignored, outcome,
                  correction);
    ApplyCorrection(correction);
}

void CInsFilter::ApplyCorrection(const StateVector& correction) {
    m_strapdown.Correct(correction.segment<3>(statePosition), correction.segment<3>(stateVelocity),
                        correction.segment<3>(stateAttitude));
    m_state.gyroBias += correction.segment<3>(stateGyroBias);
    m_state.accelBias += correction.segment<3>(stateAccelBias);
}

void CInsFilter::AdmitGap(double seconds) {
    PropagateCovariance();
    // Turns and accelerations of an ordinary vehicle that nobody saw.
    const double turn = std::min(0.1 * seconds, 1.0);
    const double speed = std::min(1.0 * seconds, 20.0);
    auto diagonal = m_state.covariance.diagonal();
    diagonal.segment<3>(stateAttitude).array() += turn * turn;
    diagonal.segment<3>(stateVelocity).array() += speed * speed;
    diagonal.segment<3>(statePosition).array() += 0.25 * speed * speed * seconds * seconds;
}

const SFilterState& CInsFilter::Get() {
    PropagateCovariance();
    m_state.navigation = m_strapdown.Get();
    return m_state;
}

} // namespace Morvex
