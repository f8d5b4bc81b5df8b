#include "morvex/aiding.h"
#include "morvex/ins_filter.h"
#include "morvex/noise_probe.h"
#include "morvex/rest_detector.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace Morvex;

namespace {

SFilterState MakeState() {
    SFilterState state;
    state.navigation.position = {48.0 * kRadiansPerDegree, -4.0 * kRadiansPerDegree, 30.0};
    state.navigation.velocity = {15.0, -8.0, 1.0};
    state.navigation.attitude =
        Quaterniond(MatrixOf({70 * kRadiansPerDegree, 5 * kRadiansPerDegree, -8 * kRadiansPerDegree}));
    auto set = [&state](int group, double deviation) {
        state.covariance.diagonal().segment<3>(group).setConstant(deviation * deviation);
    };
    set(statePosition, 2.0);
    set(stateVelocity, 0.1);
    set(stateAttitude, 0.01);
    set(stateGyroBias, kSensorGrades[0].gyroBias);
    set(stateAccelBias, kSensorGrades[0].accelBias);
    return state;
}

// The state with its errors `x` taken as the filter takes them.
SFilterState Displaced(SFilterState state, const StateVector& x) {
    CStrapdown strapdown(state.navigation);
    strapdown.Correct(x.segment<3>(statePosition), x.segment<3>(stateVelocity), x.segment<3>(stateAttitude));
    state.navigation = strapdown.Get();
    state.gyroBias += x.segment<3>(stateGyroBias);
    state.accelBias += x.segment<3>(stateAccelBias);
    state.sensors += x.tail(state.sensors.size());
    return state;
}

StateVector Difference(const SFilterState& from, const SFilterState& to) {
    StateVector x(kStates);
    x.segment<3>(statePosition) = MetresBetween(from.navigation.position, to.navigation.position);
    x.segment<3>(stateVelocity) = to.navigation.velocity - from.navigation.velocity;
    const Quaterniond turn = to.navigation.attitude * from.navigation.attitude.conjugate();
    x.segment<3>(stateAttitude) = 2.0 * turn.vec() * (turn.w() < 0 ? -1.0 : 1.0);
    x.segment<3>(stateGyroBias) = to.gyroBias - from.gyroBias;
    x.segment<3>(stateAccelBias) = to.accelBias - from.accelBias;
    return x;
}

SImuSample MakeSample(double time) { return {time, 0.01, {2e-4, -3e-4, 5e-4}, {0.02, -0.01, 0.098}}; }

SFilterState AfterOneSecond(const SFilterState& start) {
    CInsFilter filter(start, kSensorGrades[0]);
    for (int i = 1; i <= 100; ++i) filter.Advance(MakeSample(0.01 * i));
    return filter.Get();
}

SPositionFix FixAt(const SFilterState& state, const Vector3d& metres, double deviation) {
    SPositionFix fix;
    fix.time = state.navigation.time;
    fix.position = state.navigation.position;
    MovePosition(fix.position, metres, SEarth(fix.position[0], fix.position[2], state.navigation.velocity));
    fix.varianceNorth = fix.varianceEast = fix.varianceUp = deviation * deviation;
    return fix;
}

} // namespace

// The transition over a second, state by state, against moving the mechanisation's start.
TEST(InsFilter, CovarianceFollowsTheMechanisation) {
    SFilterState start = MakeState();
    const double steps[] = {10.0, 0.1, 1e-4, 1e-5, 1e-3};
    for (int state = 0; state < kStates; ++state) {
        StateVector x = StateVector::Zero(kStates);
        const double step = steps[state / 3];
        x[state] = step;
        start.covariance.setZero();
        const StateVector moved =
            (Difference(AfterOneSecond(Displaced(start, -x)), AfterOneSecond(Displaced(start, x))) /
             (2.0 * step));
        // A filter that is certain of all but this state must find its errors along `moved`.
        start.covariance(state, state) = 1.0;
        const StateMatrix p = AfterOneSecond(start).covariance;
        for (int row = 0; row < kStates; ++row) {
            const double expected = moved[row] * moved[state];
            EXPECT_NEAR(p(row, state), expected, 3e-3 * std::abs(expected) + 1e-5) << row << " by " << state;
        }
    }
}

// What each sensor predicts, against moving the state of the filter, for every state.
TEST(Aiding, DerivativesAgreeWithDifferences) {
    SRunPlan plan;
    for (int kind = 0; kind < static_cast<int>(EAiding::count); ++kind) {
        SAidingPlan aiding;
        aiding.kind = static_cast<EAiding>(kind);
        aiding.leverArm = {2.0, -1.0, 0.5};
        aiding.sensorToVessel = MatrixOf({0.1, -0.05, 0.03});
        aiding.scale = 0.02;
        plan.aidings.push_back(aiding);
    }
    const CStateLayout layout = MakeStateLayout(plan);
    SFilterState state = MakeState();
    state.covariance = StateMatrix::Identity(layout.GetSize(), layout.GetSize());
    state.sensors = StateVector::LinSpaced(layout.GetSize() - kStates, -0.02, 0.03);
    for (const SAidingPlan& aidingPlan : plan.aidings) {
        SAiding aiding;
        aiding.kind = aidingPlan.kind;
        aiding.plan = &aidingPlan;
        aiding.place = state.navigation.position + Vector3d(1e-4, -2e-4, -80.0);
        const auto observe = [&](const StateVector& x) {
            const CInsFilter filter(Displaced(state, x), kSensorGrades[0], CInsFilter::EMode::navigation,
                                    layout);
            return ObserveAiding(aiding, filter,
                                 {40.0, Vector3d(0.1, 0.2, -0.3) - x.segment<3>(stateGyroBias)});
        };
        const SObservation here = observe(StateVector::Zero(layout.GetSize()));
        for (int i = 0; i < layout.GetSize(); ++i) {
            constexpr double kStep = 1e-4;
            StateVector x = StateVector::Zero(layout.GetSize());
            x[i] = kStep;
            const Vector3d moved = (observe(-x).innovation - observe(x).innovation) / (2.0 * kStep);
            for (int row = 0; row < here.size; ++row)
                EXPECT_NEAR(here.h(row, i), moved[row], 2e-3 * std::abs(moved[row]) + 1e-5)
                    << static_cast<int>(aiding.kind) << " state " << i;
        }
    }
}

// A fix that is next to exact finds a displacement of each state that it depends on.
TEST(InsFilter, FixesFindEveryState) {
    CStateLayout layout;
    layout.Add(EGroup::gpsArm);
    layout.Add(EGroup::gpsLag);
    layout.Add(EGroup::usblBias);
    layout.Add(EGroup::usblOrigin);
    SFilterState start = MakeState();
    start.covariance.setZero(layout.GetSize(), layout.GetSize());
    start.sensors = StateVector::Zero(layout.GetSize() - kStates);
    const int lag = layout.Find(EGroup::gpsLag), bias = layout.Find(EGroup::usblBias);
    start.sensors[lag - kStates] = 0.4;
    const Vector3d arm(3.0, -2.0, 10.0);
    for (int state = 0; state < layout.GetSize(); ++state) {
        const bool isOfUnit = state >= stateGyroBias && state < kStates;
        if (isOfUnit) continue;
        SPositionFix fix =
            FixAt(start, start.navigation.attitude * arm - 0.4 * start.navigation.velocity, 1e-5);
        fix.leverArm = arm;
        fix.horizontal = fix.vertical = EUse::always;
        fix.source = state >= bias ? kFirstUsbl : 0;
        if (fix.source)
            fix = [&] { // of a transponder, which knows no lag
                SPositionFix other = FixAt(start, start.navigation.attitude * arm, 1e-5);
                other.leverArm = arm;
                other.source = kFirstUsbl;
                other.isRelative = state >= layout.Find(EGroup::usblOrigin);
                other.horizontal = other.vertical = EUse::always;
                return other;
            }();
        StateVector x = StateVector::Zero(layout.GetSize());
        x[state] = 1e-3;
        SFilterState displaced = Displaced(start, x);
        displaced.covariance(state, state) = 1.0;
        CInsFilter filter(displaced, kSensorGrades[0], CInsFilter::EMode::navigation, layout);
        const double before = filter.Update(fix).innovation.norm();
        EXPECT_GT(before, 1e-4) << state;
        EXPECT_LT(filter.Update(fix).innovation.norm(), 0.02 * before) << state;
    }
}

// Observations of all states at once, against one least-squares solution of all of them.
TEST(InsFilter, ObservationsAgreeWithLeastSquares) {
    const SFilterState start = MakeState();
    const StateVector unit = start.covariance.diagonal().cwiseSqrt();
    CInsFilter filter(start, kSensorGrades[0]);
    std::mt19937 random(7);
    std::normal_distribution<double> normal;
    constexpr double kVariance = 0.25;
    Eigen::MatrixXd information = Eigen::MatrixXd::Identity(kStates, kStates);
    Eigen::VectorXd right = Eigen::VectorXd::Zero(kStates);
    StateVector found = StateVector::Zero(kStates); // in units of the deviations at the start
    for (int i = 0; i < 60; ++i) {
        SObservation observation(1 + i % 3);
        observation.use = EUse::always;
        for (int row = 0; row < observation.size; ++row) {
            const Eigen::VectorXd a = Eigen::VectorXd::NullaryExpr(kStates, [&] { return normal(random); });
            const double measured = normal(random);
            observation.h.row(row).head(kStates) = a.cwiseQuotient(unit).transpose();
            observation.innovation[row] = measured - a.dot(found);
            observation.noise(row, row) = kVariance;
            information += a * a.transpose() / kVariance;
            right += a * measured / kVariance;
        }
        double since = std::nan("");
        SFixOutcome outcome;
        ASSERT_EQ(filter.Observe(observation, since, outcome), EFixResult::accepted);
        found += filter.TakeCorrection().cwiseQuotient(unit);
    }
    const Eigen::MatrixXd covariance = information.inverse();
    EXPECT_LT((found - covariance * right).norm(), 1e-9);
    const StateMatrix scaled =
        unit.cwiseInverse().asDiagonal() * filter.Get().covariance * unit.cwiseInverse().asDiagonal();
    EXPECT_LT((scaled - covariance).norm(), 1e-9);
}

// A tilt by a known angle moves an antenna on its arm, and precise fixes find the tilt.
TEST(InsFilter, LeverArmTurnsWithTheAttitude) {
    const SFilterState state = MakeState();
    SPositionFix fix = FixAt(state, state.navigation.attitude * Vector3d(3.0, -2.0, 10.0), 1e-4);
    fix.leverArm = {3.0, -2.0, 10.0};
    EXPECT_LT(CInsFilter(state, kSensorGrades[0]).Update(fix).innovation.norm(), 1e-4);

    StateVector tilt = StateVector::Zero(kStates);
    tilt.segment<3>(stateAttitude) = Vector3d(0.004, -0.003, 0.0);
    SFilterState tilted = Displaced(state, tilt);
    tilted.covariance.block<6, 6>(0, 0).setZero();
    tilted.covariance(8, 8) = 1e-14;
    CInsFilter corrected(tilted, kSensorGrades[0]);
    corrected.Update(fix);
    EXPECT_LT(corrected.GetNavigation().attitude.angularDistance(state.navigation.attitude), 2e-4);
}

TEST(InsFilter, OutliersAreIgnoredLastingContradictionsWin) {
    // The use, the grade, and the seconds until a contradiction is over.
    for (const auto& [use, grade, longest] :
         {std::tuple{EUse::tested, 0, 130.0}, {EUse::reacquired, 0, 30.0}, {EUse::tested, 3, 10.0}}) {
        SFilterState start = MakeState();
        start.navigation.velocity.setZero();
        start.navigation.attitude.setIdentity();
        CInsFilter filter(start, kSensorGrades[grade]);
        const SEarth earth(start.navigation.position[0], 30.0, Vector3d::Zero());
        auto second = [&, use = use](double time, double off) {
            for (int i = 1; i <= 20; ++i)
                filter.Advance(
                    {time - 1.0 + 0.05 * i, 0.05, earth.earthRate * 0.05, {0, 0, earth.gravity * 0.05}});
            SFilterState here = start;
            here.navigation.time = time;
            SPositionFix fix = FixAt(here, {off, 0.0, 0.0}, 1.0);
            fix.horizontal = use;
            return filter.Update(fix);
        };
        double time = 0.0;
        while (time < 60.0) EXPECT_EQ(second(time += 1.0, 0.0).horizontal, EFixResult::accepted);
        EXPECT_EQ(second(time += 1.0, 80.0).horizontal, EFixResult::rejected);
        const double moved =
            MetresBetween(start.navigation.position, filter.GetNavigation().position).head<2>().norm();
        EXPECT_LT(moved, 0.5) << "a single outlier pulls nothing";
        for (int i = 0; i < 10; ++i) second(time += 1.0, 0.0);

        const double began = time;
        while (second(time += 1.0, 80.0).innovation.head<2>().norm() > 5.0 && time - began < 1000.0) {
        }
        EXPECT_LT(time - began, longest);
        EXPECT_GT(time - began, 1.0);
    }
}

TEST(InsFilter, CovarianceStaysPositiveThroughExtremes) {
    CInsFilter filter(MakeState(), kSensorGrades[0]);
    std::mt19937 random(1);
    std::normal_distribution<double> normal;
    for (int i = 1; i <= 3000; ++i) {
        filter.Advance(MakeSample(0.01 * i));
        if (i % 10 == 0)
            filter.Update(
                FixAt(filter.Get(), {normal(random), normal(random), normal(random)}, i % 20 ? 1e-3 : 1e3));
        if (i % 500 == 0) {
            SImuSample gap = MakeSample(0.01 * i);
            gap.gap = 2.0;
            gap.gapTurn.setConstant(0.2);
            gap.gapSpeed.setConstant(2.0);
            filter.AdmitGap(gap);
        }
        if (i % 700 == 0) filter.HoldHeight(30.0, 30.0);
    }
    const StateMatrix& p = filter.Get().covariance;
    EXPECT_TRUE(p.allFinite());
    const StateMatrix scale = p.diagonal().cwiseSqrt().cwiseInverse().asDiagonal();
    EXPECT_GT(Eigen::SelfAdjointEigenSolver<StateMatrix>(scale * p * scale).eigenvalues().minCoeff(), -1e-9);
}

// The level of white noise gives the grade; waves, rounding and a slow drift do not count.
TEST(NoiseProbe, FindsTheGradeUnderWaves) {
    // The noise in degrees per root of an hour.
    for (const auto& [noise, grade] :
         {std::pair{0.002, "navigation"}, {0.1, "tactical"}, {0.3, "industrial"}, {5.0, "MEMS"}}) {
        CNoiseProbe probe;
        std::mt19937 random(3);
        std::normal_distribution<double> normal(0.0, noise * Units::kDegreePerRootHour * 0.1);
        for (int i = 1; i <= 12000; ++i) {
            const double t = 0.01 * i;
            const double wave = 0.08 * std::cos(0.8 * t) * 0.01;
            probe.Add({t,
                       0.01,
                       {wave + normal(random), 0.7 * wave + normal(random), 0.5 * wave + normal(random)},
                       {}});
        }
        EXPECT_EQ(kSensorGrades[probe.GetFinestGrade()].name, grade);
    }
}

// Noise of the unit and an engine that idles are rest; a road, a turn and a start are not.
TEST(RestDetector, TellsRestFromQuietMotion) {
    struct SCase {
        double shake, turn, noise; // m/s², rad/s, m/s/√s
        bool isRest;
    };
    constexpr SCase kCases[] = {{0.0, 0.0, 3e-4, true},  {0.05, 0.0, 3e-4, true},  {0.0, 0.0, 1e-2, true},
                                {0.3, 0.0, 3e-4, false}, {0.0, 0.01, 3e-4, false}, {0.0, 0.01, 1e-2, false}};
    for (const auto& [shake, turn, noise, isRest] : kCases) {
        CRestDetector detector(1e-6, noise);
        std::mt19937 random(2);
        std::normal_distribution<double> normal(0.0, noise / std::sqrt(0.01));
        for (int i = 0; i < 500; ++i)
            detector.Add(0.01, {7e-5, 0.0, turn}, {normal(random), 0.0, 9.8 + shake * std::sin(0.3 * i)});
        EXPECT_EQ(detector.IsAtRest(), isRest) << shake << ' ' << turn << ' ' << noise;
    }
}
