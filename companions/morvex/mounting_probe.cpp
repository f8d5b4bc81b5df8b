#include "morvex/mounting_probe.h"

#include "morvex/aiding.h"
#include "morvex/alignment.h"
#include "morvex/run_inputs.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kProbed = 600.0;      // s of the recording
constexpr double kReadAtOnce = 30.0;   // s
constexpr double kForgottenArm = 30.0; // m: deviation of an arm that is left at zero
constexpr double kUnknownLag = 1.0;    // s
constexpr double kCertain = 5.0;       // deviations

// Whether the vehicle moves as its wheels make it: the speed sideways and upwards in its own axes, against
// what the land model allows for.
class CWheelTest {
  public:
    // To be asked a few times a second. REQUIRES: the filter's heading is about known.
    void Add(CInsFilter& filter, double span) {
        const SNavigation& navigation = filter.GetNavigation();
        const Vector3d speed = navigation.attitude.conjugate() * navigation.velocity;
        // Where the speed is badly known it says nothing: in a gap of the fixes, or after a contradiction.
        const double variance = filter.Get().covariance.diagonal().segment<3>(stateVelocity).maxCoeff();
        if (std::abs(speed.x()) < kMoving || variance > kKnown * kKnown) return;
        const Vector3d& rate = filter.GetStrapdown().GetRate();
        const Eigen::Vector2d deviation = GetLandDeviation(speed.x(), rate);
        m_turned += std::abs(rate.z()) * span;
        m_time += span;
        ++m_count;
        // Sums of a line through the origin: a unit that is mounted by eye turns the speed by a fixed angle.
        for (Eigen::Index i = 0; i < 2; ++i) {
            const double x = speed.x() / deviation[i], y = speed[i + 1] / deviation[i];
            m_xx[i] += x * x;
            m_xy[i] += x * y;
            m_yy[i] += y * y;
        }
    }
    bool Passed() const {
        if (m_time < kLongEnough || m_turned < kTurnedEnough) return false;
        const Eigen::Vector2d angle = m_xy.cwiseQuotient(m_xx);
        const Eigen::Vector2d misfit = (m_yy - angle.cwiseProduct(m_xy)) / m_count;
        return angle.cwiseAbs().maxCoeff() < kMountedByEye && misfit.maxCoeff() < kLargestMisfit;
    }

  private:
    static constexpr double kMoving = 3.0;        // m/s
    static constexpr double kKnown = 0.1;         // m/s, deviation
    static constexpr double kLongEnough = 60.0;   // s of motion
    static constexpr double kTurnedEnough = 3.0;  // rad: wind and current would show themselves
    static constexpr double kMountedByEye = 0.1;  // rad
    static constexpr double kLargestMisfit = 1.0; // mean square, in deviations of the land model

    Eigen::Vector2d m_xx = Eigen::Vector2d::Zero(), m_xy = Eigen::Vector2d::Zero(),
                    m_yy = Eigen::Vector2d::Zero();
    double m_count = 0.0, m_time = 0.0, m_turned = 0.0;
};

CStateLayout MakeProbeLayout(const SRunPlan& plan) {
    const double stated = plan.gps.front().leverArm.norm();
    CStateLayout layout;
    layout.Add(EGroup::gpsArm, stated > 0.0 ? std::max(2.0 * stated, 1.0) : kForgottenArm);
    layout.Add(EGroup::gpsLag, kUnknownLag);
    return layout;
}

std::optional<SMounting> ProbeOnce(const SRunPlan& plan, const std::function<bool()>& goOn) {
    if (plan.gps.empty() || plan.gps.front().isUsbl) return std::nullopt;
    CRunInputs inputs;
    if (!inputs.OpenImu(plan)) return std::nullopt;
    const std::vector<int> missing = inputs.OpenFixes();
    if (std::ranges::find(missing, 0) != missing.end()) return std::nullopt;

    const CStateLayout layout = MakeProbeLayout(plan);
    CAlignment alignment(goOn, layout);
    SStretch stretch;
    for (bool more = true; more;) {
        more = inputs.ReadAhead(stretch, kReadAtOnce);
        const CAlignment::EState state = alignment.Continue(stretch);
        if (state == CAlignment::EState::stopped || stretch.samples.empty()) return std::nullopt;
        const double length = stretch.samples.back().time - stretch.samples.front().time;
        if (state == CAlignment::EState::settled || length > CAlignment::kLongestStretch) break;
    }
    if (stretch.samples.empty()) return std::nullopt;
    const std::optional<SAlignment> aligned = alignment.Finish(stretch);
    if (!aligned || !aligned->headingKnown) return std::nullopt;

    CInsFilter filter(aligned->start, aligned->grade, CInsFilter::EMode::search, layout);
    CFixSource fixes(stretch, inputs.GetFixes());
    CWheelTest wheels;
    constexpr double kLook = 0.2, kHeadingKnown = 3.0 * kRadiansPerDegree;
    const double begin = filter.GetNavigation().time;
    double nextLook = begin, nextQuestion = begin;
    const auto advance = [&](const SImuSample& sample) {
        AdvanceThrough(filter, sample, fixes, [&](const SPositionFix& fix) { filter.Update(fix); });
        if (sample.time >= nextLook) {
            nextLook = sample.time + kLook;
            if (HeadingDeviation(filter.Get()) < kHeadingKnown) wheels.Add(filter, kLook);
        }
        if (sample.time < nextQuestion) return true;
        nextQuestion = sample.time + 1.0;
        return goOn();
    };
    for (const SImuSample& sample : stretch.samples)
        if (!advance(sample)) return std::nullopt;
    SImuSample sample;
    while (filter.GetNavigation().time < begin + kProbed && inputs.NextSample(sample) &&
           sample.gap < CRunInputs::kLongestGap)
        if (!advance(sample)) return std::nullopt;

    const SFilterState& state = filter.Get();
    const int arm = layout.Find(EGroup::gpsArm), lag = layout.Find(EGroup::gpsLag);
    SMounting mounting;
    mounting.arm = filter.GetSensor3(EGroup::gpsArm);
    mounting.armDeviation = state.covariance.diagonal().segment<3>(arm).cwiseSqrt();
    mounting.lag = filter.GetSensor(EGroup::gpsLag);
    mounting.lagDeviation = std::sqrt(state.covariance(lag, lag));
    mounting.isOnWheels = wheels.Passed();
    return mounting;
}

} // namespace

std::optional<SMounting> ProbeMounting(const SRunPlan& plan, const std::function<bool()>& goOn) {
    // A lag of a second is not linear: it is corrected, and the rest is searched again.
    constexpr int kMostProbes = 4;
    constexpr double kSmallLag = 0.03; // s
    SRunPlan corrected = plan;
    double lag = 0.0;
    for (int i = 0;; ++i) {
        std::optional<SMounting> mounting = ProbeOnce(corrected, goOn);
        if (!mounting) return mounting;
        lag += mounting->lag;
        const bool isSmall = !IsCertain(mounting->lag, mounting->lagDeviation, kSmallLag);
        if (isSmall || i + 1 == kMostProbes) {
            mounting->lag = lag;
            return mounting;
        }
        corrected.gps.front().source.timeOffset -= mounting->lag;
    }
}

bool IsCertain(double estimate, double deviation, double least) {
    return std::abs(estimate) > std::max(least, kCertain * deviation);
}

} // namespace Morvex
