#include "morvex/hypothesis_bank.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

// Spacing of 22.5 degrees: a filter started half of that away from the truth still converges.
constexpr int kHeadings = 16;
constexpr double kHeadingDeviation = 12.0 * kRadiansPerDegree;
constexpr double kTiltDeviation = 2.5 * kRadiansPerDegree;
constexpr double kVelocityDeviation = 2.0; // m/s
constexpr double kPositionDeviation = 3.0; // m, besides that of the fix and the lever arm
// While angles are large, the neglected second order moves the prediction by more than a precise fix allows.
constexpr double kSearchNoise = 0.3; // m

constexpr double kPruningSpan = 5.0; // s
constexpr double kHopeless = 25.0;   // in log likelihood behind the best
constexpr double kAlike = 4.0 * kRadiansPerDegree;
constexpr double kLargestFixDistance = 30.0; // of one fix in the misfit: outliers are not the unit's fault

bool IsUsable(const SPositionFix& fix) { return fix.horizontal != EUse::never && !fix.isRelative; }

SPositionFix Blurred(SPositionFix fix) {
    fix.varianceNorth += kSearchNoise * kSearchNoise;
    fix.varianceEast += kSearchNoise * kSearchNoise;
    fix.varianceUp += kSearchNoise * kSearchNoise;
    return fix;
}

// Position, velocity at the first fix and mean acceleration by a parabola through the fixes.
void FitMotion(std::span<const SPositionFix> fixes, SLevelStart& start) {
    const SPositionFix& first = fixes.front();
    start.position = first.position;
    Eigen::Matrix3d normal = Eigen::Matrix3d::Zero();
    Eigen::Matrix3d right = Eigen::Matrix3d::Zero();
    int count = 0;
    for (const SPositionFix& fix : fixes) {
        if (!IsUsable(fix)) continue;
        const double t = fix.time - first.time;
        const Vector3d row(1.0, t, 0.5 * t * t);
        normal += row * row.transpose();
        right += row * MetresBetween(first.position, fix.position).transpose();
        ++count;
    }
    if (count < 5) {
        const double t = fixes.back().time - first.time;
        if (count >= 2 && t > 1.0) start.velocity = MetresBetween(first.position, fixes.back().position) / t;
        return;
    }
    const Eigen::Matrix3d solution = normal.ldlt().solve(right);
    start.velocity = solution.row(1).transpose();
    start.acceleration = solution.row(2).transpose();
}

// The attitude with this heading that turns the measured mean force into gravity plus acceleration.
Quaterniond LevelWithHeading(const SLevelStart& start, double heading) {
    SAttitude attitude{heading, 0.0, 0.0};
    for (int iteration = 0; iteration < 4; ++iteration) {
        const Vector3d up = start.force - MatrixOf(attitude).transpose() * start.acceleration;
        attitude.roll = std::atan2(up.y(), up.z());
        attitude.pitch = std::atan2(up.x(), std::hypot(up.y(), up.z()));
    }
    return Quaterniond(MatrixOf(attitude));
}

double HeadingBetween(const SFilterState& a, const SFilterState& b) {
    const double difference = AttitudeOf(a.navigation.attitude.toRotationMatrix()).heading -
                              AttitudeOf(b.navigation.attitude.toRotationMatrix()).heading;
    return std::abs(std::remainder(difference, 2.0 * std::numbers::pi));
}

} // namespace

double HeadingDeviation(const SFilterState& state) {
    return std::sqrt(std::max(0.0, state.covariance(stateAttitude + 2, stateAttitude + 2)));
}

std::optional<SLevelStart> FindLevelStart(const SStretch& stretch, double needed) {
    if (stretch.samples.empty()) return std::nullopt;
    const double begin = stretch.samples.front().time - stretch.samples.front().span;
    const double end = stretch.samples.back().time;
    const auto first =
        std::find_if(stretch.fixes.begin(), stretch.fixes.end(),
                     [begin](const SPositionFix& fix) { return fix.time >= begin && IsUsable(fix); });
    if (first == stretch.fixes.end() || end < first->time + needed) return std::nullopt;

    SLevelStart start;
    start.time = first->time;
    const auto last = std::find_if(first, stretch.fixes.end(),
                                   [&](const SPositionFix& fix) { return fix.time > start.time + needed; });
    FitMotion(std::span<const SPositionFix>(first, last), start);

    const auto sample = std::find_if(stretch.samples.begin(), stretch.samples.end(),
                                     [&](const SImuSample& s) { return s.time > start.time + kSameTime; });
    start.firstSample = static_cast<std::size_t>(sample - stretch.samples.begin());
    // Summed in axes that stand still from the first fix on, so that waves and turns do not smear it.
    Quaterniond turned = Quaterniond::Identity();
    double duration = 0.0;
    for (auto s = sample; s != stretch.samples.end() && s->time <= start.time + needed; ++s) {
        start.force += turned * (s->velocity + 0.5 * s->angle.cross(s->velocity));
        turned = (turned * RotationOf(s->angle)).normalized();
        duration += s->span;
    }
    if (duration <= 0.0 || start.force.norm() < 1.0) return std::nullopt;
    start.force /= duration;
    return start;
}

CHypothesisBank::CHypothesisBank(const SLevelStart& start, const SPositionFix& first,
                                 const SSensorGrade& grade, const CStateLayout& layout)
    : m_start(start),
      m_grade(grade),
      m_time(start.time),
      m_nextSample(start.firstSample),
      m_nextPruning(start.time + kPruningSpan) {
    m_hypotheses.reserve(kHeadings);
    for (int i = 0; i < kHeadings; ++i) {
        const double heading = 2.0 * std::numbers::pi * i / kHeadings;
        SFilterState state;
        state.navigation.time = start.time;
        state.navigation.position = start.position;
        state.navigation.velocity = start.velocity;
        state.navigation.attitude = LevelWithHeading(start, heading);
        const SEarth earth(start.position[0], start.position[2], start.velocity);
        MovePosition(state.navigation.position, -(state.navigation.attitude * first.leverArm), earth);
        auto set = [&state](int group, double deviation) {
            state.covariance.diagonal().segment<3>(group).setConstant(deviation * deviation);
        };
        const double noise = std::max({first.varianceNorth, first.varianceEast, first.varianceUp});
        const double arm = layout.Find(EGroup::gpsArm) < 0 ? 0.0 : layout.GetRow(EGroup::gpsArm).deviation;
        set(statePosition, kPositionDeviation + std::sqrt(noise) + 0.3 * first.leverArm.norm() + arm);
        set(stateVelocity, kVelocityDeviation);
        set(stateAttitude, kTiltDeviation);
        state.covariance(stateAttitude + 2, stateAttitude + 2) = kHeadingDeviation * kHeadingDeviation;
        set(stateGyroBias, grade.gyroBias);
        set(stateAccelBias, grade.accelBias);
        m_hypotheses.push_back({CInsFilter(state, grade, CInsFilter::EMode::search, layout), 0.0, 0.0, 0});
    }
}

bool CHypothesisBank::RunTo(double time, const SStretch& stretch, const std::function<bool()>& goOn) {
    while (m_nextSample < stretch.samples.size() && stretch.samples[m_nextSample].time <= time) {
        // A second for each hypothesis in turn keeps its filter in the cache.
        const double until = std::min({time, m_time + 1.0, m_nextPruning});
        std::size_t end = m_nextSample + 1;
        while (end < stretch.samples.size() && stretch.samples[end].time <= until) ++end;
        for (SHypothesis& hypothesis : m_hypotheses) {
            CFixCursor cursor(stretch.fixes);
            cursor.SkipTo(m_time);
            for (std::size_t i = m_nextSample; i < end; ++i) {
                SImuSample sample = stretch.samples[i];
                // The filters stand at the first fix, inside the first sample.
                const double late = m_start.time - (sample.time - sample.span);
                if (late > 0.0 && late < sample.span) {
                    const double share = 1.0 - late / sample.span;
                    sample = {sample.time, sample.span - late, sample.angle * share, sample.velocity * share};
                }
                AdvanceThrough(hypothesis.filter, sample, cursor, [&](const SPositionFix& fix) {
                    const SFixOutcome outcome = hypothesis.filter.Update(Blurred(fix));
                    hypothesis.cost -= outcome.logLikelihood;
                    hypothesis.distance += std::min(outcome.distance, kLargestFixDistance);
                    hypothesis.components += outcome.dimension;
                });
            }
        }
        m_time = stretch.samples[end - 1].time;
        m_nextSample = end;
        if (m_time >= m_nextPruning) {
            Prune();
            m_nextPruning = m_time + kPruningSpan;
        }
        if (!goOn()) return false;
    }
    Prune();
    return true;
}

void CHypothesisBank::Prune() {
    // A filter that has run into numbers beyond all measure is out.
    std::erase_if(m_hypotheses,
                  [this](const SHypothesis& h) { return !std::isfinite(h.cost) && m_hypotheses.size() > 1; });
    std::sort(m_hypotheses.begin(), m_hypotheses.end(),
              [](const SHypothesis& a, const SHypothesis& b) { return a.cost < b.cost; });
    for (std::size_t i = 0; i < m_hypotheses.size(); ++i) {
        const SFilterState& better = m_hypotheses[i].filter.Get();
        const double deviation = HeadingDeviation(better);
        for (std::size_t k = m_hypotheses.size() - 1; k > i; --k) {
            const bool hopeless = m_hypotheses[k].cost - m_hypotheses.front().cost > kHopeless;
            const bool alike =
                HeadingBetween(better, m_hypotheses[k].filter.Get()) < std::min(kAlike, 2.0 * deviation);
            if (hopeless || alike) m_hypotheses.erase(m_hypotheses.begin() + static_cast<std::ptrdiff_t>(k));
        }
    }
}

SFilterState CHypothesisBank::GetBest() { return m_hypotheses.front().filter.Get(); }

double CHypothesisBank::GetMisfit() const {
    const SHypothesis& best = m_hypotheses.front();
    return best.components > 0 ? best.distance / best.components : 0.0;
}

} // namespace Morvex
