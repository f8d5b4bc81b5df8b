// Error-state Kalman filter over the strapdown mechanisation: position, velocity, attitude and the biases of
// the unit, and what the sensors add, corrected by observations.
//
// The equations are those of Groves, Principles of GNSS, Inertial, and Multisensor Integrated Navigation
// Systems, 2nd ed., sections 14.2.4 (local level) and 14.3.1 (position measurements with a lever arm), with
// the axes turned to north, west, up and errors counted as true minus computed. Closed loop: after each
// observation the errors go into the mechanisation. The matrices have a largest size, so nothing is
// allocated.
#pragma once

#include "morvex/sensor_grade.h"
#include "morvex/state_layout.h"
#include "morvex/strapdown.h"

#include <Eigen/Core>

namespace Morvex {

// First index of each group of three states.
enum EState : int {
    statePosition = 0,   // m, north, west, up
    stateVelocity = 3,   // m/s, the same axes
    stateAttitude = 6,   // rad: the rotation of the level axes that makes the computed attitude true
    stateGyroBias = 9,   // rad/s, vessel axes
    stateAccelBias = 12, // m/s², vessel axes
};
using CoreMatrix = Eigen::Matrix<double, kStates, kStates>;
using StateMatrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, 0, kMostStates, kMostStates>;
using StateVector = Eigen::Matrix<double, Eigen::Dynamic, 1, 0, kMostStates, 1>;

// All that a filter knows: enough to go on from.
struct SFilterState {
    SNavigation navigation;
    Vector3d gyroBias = Vector3d::Zero();       // rad/s
    Vector3d accelBias = Vector3d::Zero();      // m/s²
    StateVector sensors = StateVector::Zero(0); // estimates of the layout's groups, behind the fifteen
    StateMatrix covariance = StateMatrix::Zero(kStates, kStates);
    double direction = 1.0; // -1 while time runs backwards

    // The same knowledge for time running the other way: velocities, gyro biases and date lags change their
    // signs. `layout`: of the sensors' states.
    SFilterState Reversed(const CStateLayout& layout = {}) const;
};

// What became of one part, horizontal or vertical, of a fix.
enum class EFixResult : unsigned char { notTaken, accepted, rejected, forced };

struct SFixOutcome {
    EFixResult horizontal = EFixResult::notTaken;
    EFixResult vertical = EFixResult::notTaken;
    Vector3d innovation = Vector3d::Zero(); // fix minus prediction, metres north, west, up
    double distance = 0.0;                  // squared Mahalanobis distance of the parts that were looked at
    int dimension = 0;                      // their number of components
    double logLikelihood = 0.0;             // of the fix before it was used, an outlier at a bounded cost
};

// One to three numbers that a sensor measured, against what the state predicts.
struct SObservation {
    int size = 0;
    Vector3d innovation = Vector3d::Zero();  // measured minus predicted
    Eigen::Matrix<double, 3, kMostStates> h; // derivative of the prediction; columns beyond the layout unused
    Matrix3d noise = Matrix3d::Zero();
    EUse use = EUse::tested;

    explicit SObservation(int count) : size(count) { h.setZero(); }
};

// Continuous-time error dynamics at an instant, by the groups above; for `force` and the attitude's matrix in
// the level frame. Exposed because it is what the numerical differentiation of the mechanisation checks.
CoreMatrix ErrorDynamics(const SNavigation& navigation, const Vector3d& levelForce, const Matrix3d& attitude,
                         double direction);

class CInsFilter {
  public:
    // How contradictions are handled.
    enum class EMode : unsigned char {
        navigation, // a fix outside its 99.9 % region pulls less, one far outside is left out, until they
                    // have gone on for too long
        search      // none is left out; one far outside pulls less (alignment starts far from the truth)
    };

    // A `start` without the layout's groups gets them at their rows' deviations.
    CInsFilter(const SFilterState& start, const SSensorGrade& grade, EMode mode = EMode::navigation,
               const CStateLayout& layout = {});

    // Moves on by a sample. The covariance follows in steps of up to 50 ms.
    void Advance(const SImuSample& sample);
    // Applies a fix at the present instant; a relative one only where the layout has its origin. The
    // covariance is brought up to it. Contradictions that go on make the filter doubt itself: the sooner, the
    // coarser the unit's grade.
    SFixOutcome Update(const SPositionFix& fix);
    // Applies an observation. `contradictedSince` is the sensor's own: NaN while it agrees with the filter.
    // A sensor other than a fix is never given in to: its contradictions are left out.
    EFixResult Observe(const SObservation& observation, double& contradictedSince, SFixOutcome& outcome);
    // Widens the uncertainty for what the bridge over a sample's gap may be off, on this share of it.
    void AdmitGap(const SImuSample& sample, double share = 1.0);
    // Draws the height, m above the ellipsoid, to a value of this standard deviation.
    void HoldHeight(double height, double deviation);
    const CStateLayout& GetLayout() const { return m_layout; }
    // The estimate of a group's state; 0 without the group.
    double GetSensor(EGroup group, int index = 0) const {
        const int first = m_layout.Find(group);
        return first < 0 ? 0.0 : m_state.sensors[first - kStates + index];
    }
    Vector3d GetSensor3(EGroup group) const {
        return {GetSensor(group, 0), GetSensor(group, 1), GetSensor(group, 2)};
    }

    // Follows the transition, which a third of the propagation goes into.
    void KeepTransition() { m_keepsTransition = true; }
    // The transition of the errors since the last call, which begins a new one; and the correction applied
    // since.
    // REQUIRES: KeepTransition before the first sample; without it the identity.
    StateMatrix TakeTransition();
    StateVector TakeCorrection();

    // The state, with the covariance brought up to the present instant.
    const SFilterState& Get();
    const SNavigation& GetNavigation() const { return m_strapdown.Get(); }
    const CStrapdown& GetStrapdown() const { return m_strapdown; }

  private:
    void PropagateCovariance();
    void ApplyCorrection(const StateVector& correction);
    void Doubt(const SPositionFix& fix);
    double GetPatience(EUse use) const;
    EFixResult UpdatePart(const SObservation& observation, double& contradictedSince, bool givesIn,
                          SFixOutcome& outcome, StateVector& correction);

    SFilterState m_state; // the navigation in it is a copy made by Get
    CStrapdown m_strapdown;
    SSensorGrade m_grade;
    EMode m_mode;
    CStateLayout m_layout;
    bool m_keepsTransition = false;
    StateMatrix m_transition; // since TakeTransition
    StateVector m_corrected;  // since TakeCorrection
    // Sums since the covariance was last brought up.
    double m_pending = 0.0;
    Vector3d m_pendingForce = Vector3d::Zero();    // level axes, m/s
    Matrix3d m_pendingAttitude = Matrix3d::Zero(); // s
    Vector3d m_pendingRotation = Vector3d::Zero(); // rad
    // Means of the last seconds: rate, vessel axes, rad/s, and force less gravity, level axes, m/s².
    Vector3d m_turn = Vector3d::Zero(), m_push = Vector3d::Zero();
    // Since when each horizontal or vertical part has contradicted the filter; NaN: the last one agreed.
    double m_contradictedSince[2];
    double m_lastFix; // NaN before the first
};

} // namespace Morvex
