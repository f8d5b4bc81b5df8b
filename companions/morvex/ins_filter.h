// Error-state Kalman filter over the strapdown mechanisation: position, velocity, attitude and the biases of
// the unit, corrected by position fixes.
//
// The equations are those of Groves, Principles of GNSS, Inertial, and Multisensor Integrated Navigation
// Systems, 2nd ed., sections 14.2.4 (local level) and 14.3.1 (position measurements with a lever arm), with
// the axes turned to north, west, up and errors counted as true minus computed. Closed loop: after each
// measurement the errors go into the mechanisation. Fixed-size matrices, nothing is allocated.
#pragma once

#include "morvex/sensor_grade.h"
#include "morvex/strapdown.h"

#include <Eigen/Core>

namespace Morvex {

inline constexpr int kStates = 15;
// First index of each group of three states.
enum EState : int {
    statePosition = 0,   // m, north, west, up
    stateVelocity = 3,   // m/s, the same axes
    stateAttitude = 6,   // rad: the rotation of the level axes that makes the computed attitude true
    stateGyroBias = 9,   // rad/s, vessel axes
    stateAccelBias = 12, // m/s², vessel axes
};
using StateMatrix = Eigen::Matrix<double, kStates, kStates>;
using StateVector = Eigen::Matrix<double, kStates, 1>;

// All that a filter knows: enough to go on from.
struct SFilterState {
    SNavigation navigation;
    Vector3d gyroBias = Vector3d::Zero();  // rad/s
    Vector3d accelBias = Vector3d::Zero(); // m/s²
    StateMatrix covariance = StateMatrix::Zero();
    double direction = 1.0; // -1 while time runs backwards

    // The same knowledge for time running the other way: velocities and gyro biases change their signs.
    SFilterState Reversed() const;
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

// Continuous-time error dynamics at an instant, by the groups above; for `force` and the attitude's matrix in
// the level frame. Exposed because it is what the numerical differentiation of the mechanisation checks.
StateMatrix ErrorDynamics(const SNavigation& navigation, const Vector3d& levelForce, const Matrix3d& attitude,
                          double direction);

class CInsFilter {
  public:
    // How contradictions are handled.
    enum class EMode : unsigned char {
        navigation, // a fix outside its 99.9 % region pulls less, one far outside is left out, until they
                    // have gone on for too long
        search      // none is left out; one far outside pulls less (alignment starts far from the truth)
    };

    CInsFilter(const SFilterState& start, const SSensorGrade& grade, EMode mode = EMode::navigation);

    // Moves on by a sample. The covariance follows in steps of up to 50 ms.
    void Advance(const SImuSample& sample);
    // Applies a fix at the present instant. The covariance is brought up to it. Contradictions that go on
    // make the filter doubt itself: the sooner, the coarser the unit's grade.
    SFixOutcome Update(const SPositionFix& fix);
    // Widens the position and velocity uncertainty for samples that are missing over `seconds`.
    void AdmitGap(double seconds);
    // Holds the height where it is within a standard deviation, m: against the exponential drift of an
    // unaided vertical channel.
    void HoldHeight(double height, double deviation);

    // The state, with the covariance brought up to the present instant.
    const SFilterState& Get();
    const SNavigation& GetNavigation() const { return m_strapdown.Get(); }
    const CStrapdown& GetStrapdown() const { return m_strapdown; }

  private:
    void PropagateCovariance();
    void ApplyCorrection(const StateVector& correction);
    void Doubt(const SPositionFix& fix);
    double GetPatience(EUse use) const;
    template <int N>
    EFixResult UpdatePart(const Eigen::Matrix<double, N, kStates>& h,
                          const Eigen::Matrix<double, N, 1>& innovation,
                          const Eigen::Matrix<double, N, N>& noise, EUse use, double& contradictedSince,
                          SFixOutcome& outcome, StateVector& correction);

    SFilterState m_state; // the navigation in it is a copy made by Get
    CStrapdown m_strapdown;
    SSensorGrade m_grade;
    EMode m_mode;
    // Sums since the covariance was last brought up.
    double m_pending = 0.0;
    Vector3d m_pendingForce = Vector3d::Zero();    // level axes, m/s
    Matrix3d m_pendingAttitude = Matrix3d::Zero(); // s
    Vector3d m_pendingRotation = Vector3d::Zero(); // rad
    // Since when each horizontal or vertical part has contradicted the filter; NaN: the last one agreed.
    double m_contradictedSince[2];
    double m_lastFix; // NaN before the first
};

} // namespace Morvex
