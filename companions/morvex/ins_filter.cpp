#include "morvex/ins_filter.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Morvex {
namespace {

constexpr double kManoeuvre = 20.0;      // s: longer than a wave, shorter than the leg after a turn
constexpr double kSwing = 4.0;           // s that a rate or a force lasts which swings
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

SFilterState SFilterState::Reversed(const CStateLayout& layout) const {
    SFilterState reversed = *this;
    reversed.direction = -direction;
    reversed.navigation.time = -navigation.time;
    reversed.navigation.velocity = -navigation.velocity;
    reversed.gyroBias = -gyroBias;
    StateVector signs = StateVector::Ones(covariance.rows());
    signs.segment<3>(stateVelocity).setConstant(-1.0);
    signs.segment<3>(stateGyroBias).setConstant(-1.0);
    if (const int lag = layout.Find(EGroup::gpsLag); lag >= 0) {
        signs[lag] = -1.0;
        reversed.sensors[lag - kStates] *= -1.0;
    }
    reversed.covariance = signs.asDiagonal() * covariance * signs.asDiagonal();
    return reversed;
}

CoreMatrix ErrorDynamics(const SNavigation& navigation, const Vector3d& levelForce, const Matrix3d& attitude,
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

    CoreMatrix f = CoreMatrix::Zero();
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

CInsFilter::CInsFilter(const SFilterState& start, const SSensorGrade& grade, EMode mode,
                       const CStateLayout& layout)
    : m_state(start),
      m_strapdown(start.navigation, start.direction),
      m_grade(grade),
      m_mode(mode),
      m_layout(layout),
      m_contradictedSince{kNone, kNone},
      m_lastFix(kNone) {
    const int size = layout.GetSize();
    const auto had = static_cast<int>(m_state.covariance.rows());
    if (had < size) {
        m_state.covariance.conservativeResizeLike(StateMatrix::Zero(size, size));
        m_state.sensors = StateVector::Zero(size - kStates);
        layout.SetDeviations(m_state.covariance);
    }
    m_transition = StateMatrix::Identity(size, size);
    m_corrected = StateVector::Zero(size);
}

StateMatrix CInsFilter::TakeTransition() {
    PropagateCovariance();
    StateMatrix transition = m_transition;
    m_transition.setIdentity();
    return transition;
}

StateVector CInsFilter::TakeCorrection() {
    StateVector correction = m_corrected;
    m_corrected.setZero();
    return correction;
}

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
    // The biases only walk: the transition moves the errors of the navigation, the first nine states, and
    // leaves the biases as they are. That halves the work on all products.
    constexpr int kMoved = stateGyroBias, kBiases = kStates - kMoved;
    using Rows = Eigen::Matrix<double, kMoved, kStates>;
    using Square = Eigen::Matrix<double, kMoved, kMoved>;
    const Rows a =
        dt * ErrorDynamics(m_strapdown.Get(), m_pendingForce / dt, m_pendingAttitude / dt, m_state.direction)
                 .topRows<kMoved>();
    Rows rows = a;
    rows.noalias() += 0.5 * (a.leftCols<kMoved>() * a);
    rows.leftCols<kMoved>().diagonal().array() += 1.0;
    const Square own = rows.leftCols<kMoved>();
    const Eigen::Matrix<double, kMoved, kBiases> byBias = rows.rightCols<kBiases>();

    // The sensors' states drive nothing of the navigation: their part of the transition is a diagonal.
    StateMatrix& p = m_state.covariance;
    const Rows half =
        own * p.topLeftCorner<kMoved, kStates>() + byBias * p.block<kBiases, kStates>(kMoved, 0);
    Square corner = half.leftCols<kMoved>() * own.transpose();
    corner.noalias() += half.rightCols<kBiases>() * byBias.transpose();
    p.topLeftCorner<kMoved, kMoved>() = 0.5 * (corner + corner.transpose());
    p.block<kMoved, kBiases>(0, kMoved) = half.rightCols<kBiases>();
    p.block<kBiases, kMoved>(kMoved, 0) = half.rightCols<kBiases>().transpose();
    const auto sensors = p.rows() - kStates;
    if (sensors > 0) {
        StateVector keep = StateVector::Ones(sensors);
        StateVector noise = StateVector::Zero(sensors);
        for (const SGroupRow& any : kGroupRows) {
            const int first = m_layout.Find(any.group) - kStates;
            if (first < 0) continue;
            const SGroupRow& row = m_layout.GetRow(any.group);
            const double fade = row.time > 0.0 ? std::exp(-dt / row.time) : 1.0;
            const double walk =
                row.drift * row.drift * dt + row.deviation * row.deviation * (1.0 - fade * fade);
            keep.segment(first, row.size).setConstant(fade);
            noise.segment(first, row.size).setConstant(walk);
        }
        m_state.sensors.array() *= keep.array();
        p.topRightCorner(kMoved, sensors) =
            (own * p.topRightCorner(kMoved, sensors) + byBias * p.block(kMoved, kStates, kBiases, sensors))
                .eval();
        p.topRightCorner(kStates, sensors) *= keep.asDiagonal();
        p.bottomLeftCorner(sensors, kStates) = p.topRightCorner(kStates, sensors).transpose();
        p.bottomRightCorner(sensors, sensors) =
            (keep.asDiagonal() * p.bottomRightCorner(sensors, sensors) * keep.asDiagonal()).eval();
        p.bottomRightCorner(sensors, sensors).diagonal() += noise;
        if (m_keepsTransition)
            m_transition.bottomRows(sensors) = (keep.asDiagonal() * m_transition.bottomRows(sensors)).eval();
    }
    if (m_keepsTransition)
        m_transition.topLeftCorner<kMoved, kStates>() =
            (own * m_transition.topLeftCorner<kMoved, kStates>() +
             byBias * m_transition.block<kBiases, kStates>(kMoved, 0))
                .eval();

    // The noise is the same along all axes of the unit, so it needs no turning into the level.
    auto addNoise = [&p](int group, double variance) { p.diagonal().segment<3>(group).array() += variance; };
    // A scale that is off errs by its share of the angle that a turn goes through, and of the change of
    // speed. What swings to and fro with waves takes its error back, so the noise follows the mean rate and
    // the mean force of the last seconds: the square of a first-order mean of time constant T, integrated
    // over a turn through an angle and taken 2 T times, is the square of the angle. What differs by the sign
    // of the motion, or varies within it, is not taken back and follows the motion itself.
    const double gravity = NormalGravity(std::sin(m_strapdown.Get().position[0]), 0.0);
    const Vector3d turn = m_pendingRotation / dt;
    const Vector3d push = m_pendingForce / dt - Vector3d(0.0, 0.0, gravity);
    const double share = dt / (kManoeuvre + dt);
    m_turn += share * (turn - m_turn);
    m_push += share * (push - m_push);
    const double swinging = m_grade.rectified * m_grade.rectified;
    const auto byScale = [&](const Vector3d& mean, const Vector3d& now) {
        return m_grade.scale * m_grade.scale *
               ((1.0 - swinging) * 2.0 * kManoeuvre * mean.squaredNorm() +
                swinging * kSwing * now.squaredNorm());
    };
    const auto white = [](double deviation) { return deviation * deviation; };
    addNoise(stateAttitude, (white(m_grade.gyroNoise) + byScale(m_turn, turn)) * dt);
    addNoise(stateVelocity, (white(m_grade.accelNoise) + byScale(m_push, push)) * dt);
    addNoise(stateGyroBias, m_grade.gyroDrift * m_grade.gyroDrift * dt);
    addNoise(stateAccelBias, m_grade.accelDrift * m_grade.accelDrift * dt);

    m_pending = 0.0;
    m_pendingForce.setZero();
    m_pendingAttitude.setZero();
    m_pendingRotation.setZero();
}

EFixResult CInsFilter::UpdatePart(const SObservation& observation, double& contradictedSince, bool givesIn,
                                  SFixOutcome& outcome, StateVector& correction) {
    using Small = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, 3, 3>;
    using Column = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, 3, 1>;
    using Wide = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, 3, kMostStates>;
    using Tall = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostStates, 3>;
    if (observation.use == EUse::never) return EFixResult::notTaken;
    StateMatrix& p = m_state.covariance;
    const int n = observation.size;
    const Wide h = observation.h.topLeftCorner(n, p.cols());
    // What an earlier part of the same fix has corrected is taken off.
    const Column z = observation.innovation.head(n) - h * correction;
    Small r = observation.noise.topLeftCorner(n, n);
    Tall ph = p * h.transpose();
    Small s = h * ph + r;
    Eigen::LLT<Small> llt(s);
    if (llt.info() != Eigen::Success) return EFixResult::rejected;
    const double distance = z.dot(llt.solve(z));
    if (!std::isfinite(distance)) return EFixResult::rejected;
    const double logDeterminant = 2.0 * llt.matrixLLT().diagonal().array().log().sum();
    outcome.logLikelihood -= 0.5 * (std::min(distance, kLargestCost) + logDeterminant);
    outcome.distance += distance;
    outcome.dimension += n;

    EFixResult result = EFixResult::accepted;
    const double time = m_strapdown.Get().time;
    const bool contradicts = distance > kGate[n] && observation.use != EUse::always;
    if (contradicts && m_mode == EMode::navigation) {
        if (std::isnan(contradictedSince)) contradictedSince = time;
        const double patience = GetPatience(observation.use);
        if (givesIn && time - contradictedSince > kGiveInAfter * patience) {
            // As much uncertainty of position, and of a velocity that may have caused it, as makes the fix
            // plausible.
            for (int i = 0; i < n; ++i) {
                Eigen::Index state = 0;
                h.row(i).head(3).cwiseAbs().maxCoeff(&state);
                const double miss = z[i] * z[i];
                p(state, state) += miss;
                p(stateVelocity + state, stateVelocity + state) += miss / (patience * patience);
            }
            ph = p * h.transpose();
            result = EFixResult::forced;
        } else if (distance > kFarOut * kGate[n]) {
            return EFixResult::rejected;
        }
    }
    if (contradicts) {
        // Between the gate and far out a fix pulls as much as one on the gate would (Huber, Robust
        // Statistics).
        if (result == EFixResult::accepted) r *= distance / kGate[n];
        s = h * ph + r;
        llt.compute(s);
        if (llt.info() != Eigen::Success) return EFixResult::rejected;
    }
    if (!contradicts || result == EFixResult::forced) contradictedSince = kNone;

    const Tall gain = llt.solve(ph.transpose()).transpose();
    correction += gain * z;
    // Joseph's form multiplied out: as tolerant of an inexact gain, without products of the whole matrix.
    const Tall back = gain * s - ph;
    p.noalias() += back * gain.transpose();
    p.noalias() -= gain * ph.transpose();
    p = (0.5 * (p + p.transpose())).eval();
    return result;
}

EFixResult CInsFilter::Observe(const SObservation& observation, double& contradictedSince,
                               SFixOutcome& outcome) {
    PropagateCovariance();
    StateVector correction = StateVector::Zero(m_state.covariance.rows());
    const EFixResult result = UpdatePart(observation, contradictedSince, false, outcome, correction);
    ApplyCorrection(correction);
    return result;
}

SFixOutcome CInsFilter::Update(const SPositionFix& fix) {
    PropagateCovariance();
    SFixOutcome outcome;
    const SNavigation& navigation = m_strapdown.Get();
    const int armState = fix.source == 0 ? m_layout.Find(EGroup::gpsArm) : -1;
    const int biasState = fix.source >= kFirstUsbl ? m_layout.Find(EGroup::usblBias) : -1;
    const int originState = fix.isRelative ? m_layout.Find(EGroup::usblOrigin) : -1;
    if (fix.isRelative && originState < 0) return outcome;
    const Vector3d vesselArm =
        armState < 0 ? fix.leverArm : Vector3d(fix.leverArm + GetSensor3(EGroup::gpsArm));
    const Vector3d arm = navigation.attitude * vesselArm;
    outcome.innovation = MetresBetween(navigation.position, fix.position) - arm;
    if (biasState >= 0) outcome.innovation -= GetSensor3(EGroup::usblBias);
    if (originState >= 0) outcome.innovation -= GetSensor3(EGroup::usblOrigin);
    // A fix that is dated late shows where the antenna was before.
    const int lagState = fix.source == 0 ? m_layout.Find(EGroup::gpsLag) : -1;
    const double lag = lagState < 0 ? 0.0 : GetSensor(EGroup::gpsLag);
    const Vector3d speed = navigation.velocity + navigation.attitude * m_strapdown.GetRate().cross(vesselArm);
    if (lagState >= 0) outcome.innovation += lag * speed;

    Eigen::Matrix<double, 3, kMostStates> h = Eigen::Matrix<double, 3, kMostStates>::Zero();
    h.block<3, 3>(0, statePosition).setIdentity();
    h.block<3, 3>(0, stateAttitude) = -SkewOf(arm);
    if (armState >= 0) h.block<3, 3>(0, armState) = navigation.attitude.toRotationMatrix();
    if (biasState >= 0) h.block<3, 3>(0, biasState).setIdentity();
    if (originState >= 0) h.block<3, 3>(0, originState).setIdentity();
    if (lagState >= 0) {
        h.col(lagState).head<3>() = -speed;
        h.block<3, 3>(0, stateVelocity) = -lag * Matrix3d::Identity();
    }

    SObservation horizontal(2), vertical(1);
    horizontal.h.topRows<2>() = h.topRows<2>();
    horizontal.innovation.head<2>() = outcome.innovation.head<2>();
    horizontal.noise.topLeftCorner<2, 2>() << fix.varianceNorth, -fix.covarianceNorthEast,
        -fix.covarianceNorthEast, fix.varianceEast;
    horizontal.use = fix.horizontal;
    vertical.h.row(0) = h.row(2);
    vertical.innovation[0] = outcome.innovation[2];
    vertical.noise(0, 0) = fix.varianceUp;
    vertical.use = fix.vertical;

    StateVector correction = StateVector::Zero(m_state.covariance.rows());
    const bool givesIn = fix.source < kFirstUsbl;
    double ignored[2] = {kNone, kNone};
    double* since = givesIn ? m_contradictedSince : ignored;
    outcome.horizontal = UpdatePart(horizontal, since[0], givesIn, outcome, correction);
    outcome.vertical = UpdatePart(vertical, since[1], givesIn, outcome, correction);
    ApplyCorrection(correction);
    if (givesIn) Doubt(fix);
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
    StateVector factor = StateVector::Ones(m_state.covariance.rows());
    if (!std::isnan(m_contradictedSince[0]))
        factor.head<9>().setConstant(std::exp(0.5 * since / GetPatience(fix.horizontal)));
    if (!std::isnan(m_contradictedSince[1]))
        factor[statePosition + 2] = factor[stateVelocity + 2] =
            std::exp(0.5 * since / GetPatience(fix.vertical));
    if (factor.maxCoeff() == 1.0) return;
    m_state.covariance = (factor.asDiagonal() * m_state.covariance * factor.asDiagonal()).eval();
}

void CInsFilter::HoldHeight(double height, double deviation) {
    SObservation observation(1);
    observation.h(0, statePosition + 2) = 1.0;
    observation.innovation[0] = height - m_strapdown.Get().position[2];
    observation.noise(0, 0) = deviation * deviation;
    observation.use = EUse::always;
    SFixOutcome outcome;
    double since = kNone;
    Observe(observation, since, outcome);
}

void CInsFilter::ApplyCorrection(const StateVector& correction) {
    m_strapdown.Correct(correction.segment<3>(statePosition), correction.segment<3>(stateVelocity),
                        correction.segment<3>(stateAttitude));
    m_state.gyroBias += correction.segment<3>(stateGyroBias);
    m_state.accelBias += correction.segment<3>(stateAccelBias);
    m_state.sensors += correction.tail(correction.size() - kStates);
    m_corrected += correction;
}

void CInsFilter::AdmitGap(const SImuSample& sample, double share) {
    PropagateCovariance();
    const Matrix3d toLevel = m_strapdown.Get().attitude.toRotationMatrix();
    const Matrix3d turn = share * toLevel * sample.gapTurn.cwiseAbs2().asDiagonal() * toLevel.transpose();
    const Matrix3d speed = share * toLevel * sample.gapSpeed.cwiseAbs2().asDiagonal() * toLevel.transpose();
    StateMatrix& p = m_state.covariance;
    p.block<3, 3>(stateAttitude, stateAttitude) += turn;
    p.block<3, 3>(stateVelocity, stateVelocity) += speed;
    p.block<3, 3>(statePosition, statePosition) += 0.25 * share * share * sample.gap * sample.gap * speed;
}

const SFilterState& CInsFilter::Get() {
    PropagateCovariance();
    m_state.navigation = m_strapdown.Get();
    return m_state;
}

} // namespace Morvex
