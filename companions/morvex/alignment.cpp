#include "morvex/alignment.h"

#include <Eigen/LU>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Morvex {
namespace {

constexpr double kShortest = 60.0;                   // s, before anything is believed
constexpr double kReference = 120.0;                 // s, of a coarser bank that is only compared with
constexpr double kSettled = 0.3 * kRadiansPerDegree; // heading deviation at which waiting brings little
// A grade disagrees when its misfit is large, and larger than that of the coarsest grade: correlated errors
// of the fixes are not taken for errors of the unit, nor are deviations that a receiver states too small.
constexpr double kLargestMisfit = 3.0;
constexpr double kLargestRatio = 2.5;
constexpr double kKnown = 3.0 * kRadiansPerDegree;
// A unit may be better or worse than its grade by so much.
constexpr double kQuietest = 0.4, kNoisiest = 3.0;

bool IsWorse(double misfit, double reference) {
    return misfit > kLargestMisfit && misfit > kLargestRatio * reference;
}

// What is unknown at the far end of a stretch that is filtered backwards: the search has brought the filter
// close, but its certainty comes from the same fixes that are met again now, so it is given up.
SFilterState Widened(SFilterState state, const SSensorGrade& grade, const CStateLayout& layout) {
    const double heading = std::max(5.0 * kRadiansPerDegree, 2.0 * HeadingDeviation(state));
    state.covariance.setZero();
    auto set = [&state](int group, double deviation) {
        state.covariance.diagonal().segment<3>(group).setConstant(deviation * deviation);
    };
    set(statePosition, 10.0);
    set(stateVelocity, 2.0);
    set(stateAttitude, 1.0 * kRadiansPerDegree);
    state.covariance(stateAttitude + 2, stateAttitude + 2) = heading * heading;
    set(stateGyroBias, grade.gyroBias);
    set(stateAccelBias, grade.accelBias);
    layout.SetDeviations(state.covariance);
    return state;
}

} // namespace

CAlignment::CAlignment(std::function<bool()> goOn, const CStateLayout& layout)
    : m_goOn(std::move(goOn)), m_layout(layout) {}

bool CAlignment::Start(const SStretch& stretch) {
    const auto start = FindLevelStart(stretch);
    if (!start) return false;
    const auto first = std::find_if(stretch.fixes.begin(), stretch.fixes.end(),
                                    [&](const SPositionFix& fix) { return fix.time == start->time; });
    for (const SSensorGrade& grade : kSensorGrades) m_banks.emplace_back(*start, *first, grade, m_layout);
    m_givenUp.assign(m_banks.size(), false);
    m_start = start->time;
    return true;
}

CAlignment::EState CAlignment::Continue(const SStretch& stretch) {
    if (m_stopped) return EState::stopped;
    for (; m_probed < stretch.samples.size(); ++m_probed) {
        const SImuSample& sample = stretch.samples[m_probed];
        m_noise.Add(sample);
        m_accelNoise.Add(sample.time, sample.span, sample.gap, sample.velocity);
    }
    if (stretch.samples.empty() || (m_banks.empty() && !Start(stretch))) return EState::needsMore;

    const double end = stretch.samples.back().time;
    auto run = [&](CHypothesisBank& bank, double until) {
        m_stopped = m_stopped || !bank.RunTo(until, stretch, m_goOn);
        return !m_stopped;
    };
    if (!run(m_banks.back(), std::min(end, m_start + kReference))) return EState::stopped;
    for (m_active = m_noise.GetFinestGrade(); m_active < m_banks.size(); ++m_active) {
        if (m_givenUp[m_active]) continue;
        CHypothesisBank& bank = m_banks[m_active];
        if (!run(bank, end)) return EState::stopped;
        const bool early = bank.GetElapsed() < kShortest;
        if (early || m_active + 1 == m_banks.size() ||
            !IsWorse(bank.GetMisfit(), m_banks.back().GetMisfit())) {
            const bool settled = !early && bank.IsDecided() && HeadingDeviation(bank.GetBest()) < kSettled;
            return settled ? EState::settled : EState::needsMore;
        }
        m_givenUp[m_active] = true;
    }
    return EState::needsMore;
}

std::optional<SAlignment> CAlignment::Finish(const SStretch& stretch) {
    if (Continue(stretch) == EState::stopped || m_banks.empty()) return std::nullopt;
    CHypothesisBank& bank = m_banks[m_active];
    const SFilterState found = bank.GetBest();
    SAlignment result;
    result.headingDeviation = HeadingDeviation(found);
    result.headingKnown = bank.IsDecided() && result.headingDeviation < kKnown;
    result.duration = bank.GetElapsed();

    // With the precise fixes at their own weight a coarser unit may show that the search could not tell
    // apart.
    const SStretch reversed = stretch.Reversed();
    std::size_t grade = m_active;
    SBackward best = FilterBackwards(reversed, found, GetGrade(grade));
    while (grade + 1 < kSensorGrades.size() && best.misfit > kLargestMisfit) {
        SBackward coarser = FilterBackwards(reversed, found, GetGrade(grade + 1));
        if (coarser.misfit * kLargestRatio > best.misfit) break;
        best = coarser;
        ++grade;
    }
    result.grade = GetGrade(grade);
    result.start = best.start;
    return result;
}

// With the noise that was found, as far as it is that of the grade and not of the vehicle's vibration.
SSensorGrade CAlignment::GetGrade(std::size_t index) const {
    SSensorGrade grade = kSensorGrades[index];
    const auto within = [](double found, double usual) {
        return std::clamp(found, kQuietest * usual, kNoisiest * usual);
    };
    grade.gyroNoise = within(m_noise.GetNoise(), grade.gyroNoise);
    grade.accelNoise = within(m_accelNoise.GetNoise(), grade.accelNoise);
    return grade;
}

CAlignment::SBackward CAlignment::FilterBackwards(const SStretch& reversed, const SFilterState& found,
                                                  const SSensorGrade& grade) const {
    CInsFilter filter(Widened(found, grade, m_layout).Reversed(m_layout), grade, CInsFilter::EMode::search,
                      m_layout);
    CFixCursor cursor(reversed.fixes);
    cursor.SkipTo(-found.navigation.time - kSameTime);
    double distance = 0.0;
    int components = 0;
    for (const SImuSample& sample : reversed.samples) {
        if (sample.time - sample.span < -found.navigation.time - kSameTime) continue;
        AdvanceThrough(filter, sample, cursor, [&](const SPositionFix& fix) {
            const SFixOutcome outcome = filter.Update(fix);
            distance += std::min(outcome.distance, kLargestDistance);
            components += outcome.dimension;
        });
    }
    SBackward result;
    result.start = filter.Get().Reversed(m_layout);
    result.misfit = components > 0 ? distance / components : 0.0;
    // The fixes of the stretch are met once more on the way forward. Half of the information that they gave
    // is kept for the start, so that together they do not count twice as much.
    const StateMatrix information =
        result.start.covariance.inverse() + Widened(result.start, grade, m_layout).covariance.inverse();
    result.start.covariance = 2.0 * information.inverse();
    result.start.covariance = (0.5 * (result.start.covariance + result.start.covariance.transpose())).eval();
    return result;
}

} // namespace Morvex
