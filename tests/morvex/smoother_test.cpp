#include "morvex/smoother.h"

#include "support/temporary_folder.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <random>

using namespace Morvex;

namespace {

constexpr int kEpochs = 40;
constexpr double kDrift = 0.3;    // variance of the process noise of each state
constexpr double kFixNoise = 2.0; // variance of a fix

// One state of the filter's fifteen moves: a speed drives a position, and fixes observe it.
StateMatrix MakeTransition() {
    StateMatrix transition = StateMatrix::Identity(kStates, kStates);
    transition(statePosition, stateVelocity) = 1.0;
    return transition;
}

} // namespace

// The filter over the epochs and the pass backwards, against one least-squares solution of all of it.
TEST(Smoother, AgreesWithLeastSquares) {
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    const StateMatrix transition = MakeTransition();
    Eigen::MatrixXd normalMatrix = Eigen::MatrixXd::Zero(2 * kEpochs, 2 * kEpochs);
    Eigen::VectorXd right = Eigen::VectorXd::Zero(2 * kEpochs);
    const auto add = [&](const Eigen::RowVectorXd& row, double value, double variance) {
        normalMatrix += row.transpose() * row / variance;
        right += row.transpose() * value / variance;
    };

    test::CTemporaryFolder folder;
    CSmoother smoother;
    ASSERT_TRUE(smoother.Open(folder.GetPath(), kStates));
    StateMatrix covariance = StateMatrix::Identity(kStates, kStates);
    std::vector<double> filtered;
    double position = 0.0, speed = 0.0; // the filter's estimates
    for (int i = 0; i < kEpochs; ++i) {
        SEpoch epoch;
        epoch.time = i;
        epoch.begins = i == 0;
        epoch.transition = i == 0 ? StateMatrix(StateMatrix::Identity(kStates, kStates)) : transition;
        if (i > 0) {
            covariance = (transition * covariance * transition.transpose()).eval();
            covariance(statePosition, statePosition) += kDrift;
            covariance(stateVelocity, stateVelocity) += kDrift;
            position += speed;
        }
        Eigen::RowVectorXd row = Eigen::RowVectorXd::Zero(2 * kEpochs);
        for (int state = 0; state < 2; ++state) {
            row.setZero();
            row[2 * i + state] = 1.0;
            if (i > 0) row[2 * i - 2 + state] = -1.0;
            if (i > 0 && state == 0) row[2 * i - 1] = -1.0;
            add(row, 0.0, i > 0 ? kDrift : 1.0);
        }
        epoch.before = covariance;
        epoch.correction = StateVector::Zero(kStates);
        if (i < 10 || i > 25) { // a gap in the middle
            const double fix = 3.0 * i + normal(random);
            row.setZero();
            row[2 * i] = 1.0;
            add(row, fix, kFixNoise);
            const StateVector gain =
                covariance.col(statePosition) / (covariance(statePosition, statePosition) + kFixNoise);
            epoch.correction = gain * (fix - position);
            covariance = (covariance - gain * covariance.row(statePosition)).eval();
        }
        epoch.after = covariance;
        position += epoch.correction[statePosition];
        speed += epoch.correction[stateVelocity];
        filtered.push_back(position);
        ASSERT_TRUE(smoother.Add(epoch));
    }
    ASSERT_TRUE(smoother.Run([](double) { return true; }));
    const Eigen::MatrixXd inverse = normalMatrix.inverse();
    const Eigen::VectorXd best = inverse * right;
    for (int i = 0; i < kEpochs; ++i) {
        NavigationErrors errors;
        NavigationCovariance smoothed;
        ASSERT_TRUE(smoother.GetErrors(i, errors, smoothed));
        EXPECT_NEAR(filtered[static_cast<std::size_t>(i)] + errors[statePosition], best[2 * i], 1e-6) << i;
        EXPECT_NEAR(smoothed(statePosition, statePosition), inverse(2 * i, 2 * i), 1e-6) << i;
        EXPECT_NEAR(smoothed(stateVelocity, stateVelocity), inverse(2 * i + 1, 2 * i + 1), 1e-6) << i;
    }
}
