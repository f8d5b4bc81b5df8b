#include "morvex/observer.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "morvex/hypothesis_bank.h"
#include "morvex/mounting_probe.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Morvex {
namespace {

using Compagnon::ELevel;
using Outils_Texte::EText;
using Outils_Texte::FormatFixed;

constexpr double kGpsGap = 10.0; // s, from which a gap is reported
constexpr int kMostGapsReported = 50;
constexpr double kLeastScale = 0.02;     // one part in one: a difference that is worth a warning
constexpr double kScaleSpan = 30.0;      // s, between two looks at the scales
constexpr double kHeightUnaided = 120.0; // s, after which the height is held
constexpr double kHeightHoldSpan = 10.0;
constexpr double kHeightHoldDeviation = 20.0;            // m, of the last height that was aided
constexpr double kReferenceDeviation = 5.0;              // m, of the height that the user states
constexpr double kRestSpan = 1.0;                        // s, between two observations of a vehicle at rest
constexpr double kSlow = 0.3;                            // m/s
constexpr double kFoundRestDeviation = 0.02;             // m/s
constexpr double kRestRecent = 3.0;                      // s
constexpr double kLandSpan = 0.2;                        // s, between two observations of a vehicle on wheels
constexpr double kLandMoving = 2.0;                      // m/s
constexpr double kLandPatience = 5.0;                    // s of contradictions more than of agreement
constexpr double kLandHeading = 5.0 * kRadiansPerDegree; // deviation up to which they are made

constexpr std::uint32_t kModeZupt = 1u << 16, kZuptValid = 1u << 17; // bits of the second status word

} // namespace

CObserver::CObserver(SRunPlan& plan, CReport report)
    : m_plan(plan), m_report(std::move(report)), m_fixMonitor(plan) {
    m_contradicted.fill(std::nan(""));
}

void CObserver::Reset() {
    m_fixMonitor = CFixMonitor(m_plan);
    m_land = nullptr;
    for (const SAidingPlan& aiding : m_plan.aidings)
        if (aiding.kind == EAiding::land) m_land = &aiding;
}

void CObserver::Begin(const CInsFilter& filter, const SSensorGrade& grade, const SStretch& stretch) {
    const double begin = filter.GetNavigation().time;
    m_rest = CRestDetector(grade.gyroNoise, grade.accelNoise);
    m_nextHeightHold = begin + kHeightUnaided;
    m_heldHeight = filter.GetNavigation().position[2];
    m_nextRest = begin + kRestSpan;
    m_nextLand = begin + kLandSpan;
    m_nextScales = begin + kScaleSpan;
    m_lastFix = begin;
    if (!stretch.fixes.empty()) m_fixMonitor.SetGeoidHeight(stretch.fixes.front().geoidHeight);
}

std::uint32_t CObserver::GetStatus2(double time) const {
    std::uint32_t word = m_fixMonitor.GetStatus2(time);
    const double* rest = FindInForce(m_plan.atRest, time);
    if (rest && *rest != 0.0) word |= kModeZupt;
    if (time - m_lastRest < kRestRecent) word |= kZuptValid;
    return word;
}

void CObserver::Use(CInsFilter& filter, const SPositionFix& fix) {
    const SFixOutcome outcome = filter.Update(fix);
    m_fixMonitor.Add(fix, outcome);
    if (m_fixMonitor.GetLastUsed() == fix.time) ReportGpsGap(fix.time);
    if (m_fixMonitor.GetLastHeight() == fix.time) m_heldHeight = filter.GetNavigation().position[2];
}

EFixResult CObserver::Use(CInsFilter& filter, const SAiding& aiding) {
    const EHeightAid* aid = FindInForce(m_plan.heightAids, aiding.time);
    if (m_watch.IsJammed(aiding)) {
        if (const auto since = m_watch.TakeJam(aiding.kind))
            m_report(ELevel::warning, EText::sensorJammed,
                     {aiding.plan->source.channel, FormatFixed(*since, 1)});
        return EFixResult::notTaken;
    }
    const bool otherHeight =
        aid && (*aid == EHeightAid::gps || *aid == EHeightAid::hydro || *aid == EHeightAid::reference);
    if (aiding.kind == EAiding::depth && otherHeight) return EFixResult::notTaken;
    const SNavigation& navigation = filter.GetNavigation();
    const SEarth earth(navigation.position[0], navigation.position[2], navigation.velocity);
    SAidingContext context;
    context.geoidHeight = m_fixMonitor.GetGeoidHeight();
    context.rate = filter.GetStrapdown().GetRate() - navigation.attitude.conjugate() * earth.earthRate;
    SFixOutcome outcome;
    double& since = m_contradicted[static_cast<std::size_t>(aiding.kind)];
    const bool isLog = aiding.kind == EAiding::dvlBottom;
    if (isLog) WatchDirection(filter, aiding, context);
    const EFixResult result = filter.Observe(ObserveAiding(aiding, filter, context), since, outcome);
    if (const auto from = m_watch.TakeContradiction(aiding.kind, aiding.time, result);
        from && aiding.kind != EAiding::land)
        m_report(ELevel::warning, EText::sensorContradicts,
                 {aiding.plan->source.channel, FormatFixed(*from, 1)});
    m_fixMonitor.Add(aiding, result, outcome);
    if (aiding.kind == EAiding::depth && result == EFixResult::accepted)
        m_heldHeight = filter.GetNavigation().position[2];
    return result;
}

// A log that is mounted turned is turned back in the plan, for the bottom and for the water.
void CObserver::WatchDirection(CInsFilter& filter, const SAiding& aiding, const SAidingContext& context) {
    if (HeadingDeviation(filter.Get()) > kLandHeading || aiding.time - m_fixMonitor.GetLastUsed() > kGpsGap)
        return;
    const SNavigation& navigation = filter.GetNavigation();
    const Vector3d speed =
        navigation.attitude.conjugate() * navigation.velocity + context.rate.cross(aiding.plan->leverArm);
    m_watch.AddDirection(aiding.kind, aiding.value, aiding.plan->sensorToVessel.transpose() * speed);
    const auto turn = m_watch.TakeTurn(aiding.kind);
    if (!turn) return;
    m_report(ELevel::warning, EText::sensorTurned,
             {aiding.plan->source.channel, FormatFixed(*turn / kRadiansPerDegree, 0)});
    const Matrix3d back = Eigen::AngleAxisd(*turn, Vector3d::UnitZ()).toRotationMatrix();
    for (SAidingPlan& plan : m_plan.aidings)
        if (plan.kind == EAiding::dvlBottom || plan.kind == EAiding::dvlWater)
            plan.sensorToVessel = plan.sensorToVessel * back;
}

void CObserver::AddMotion(const CInsFilter& filter, double span) {
    m_rest.Add(span, filter.GetStrapdown().GetRate(), filter.GetStrapdown().GetForce());
}

void CObserver::ObserveRest(CInsFilter& filter, double time) {
    m_nextRest = time + kRestSpan;
    const double* stated = FindInForce(m_plan.atRest, time);
    if (!stated || *stated == 0.0) return;
    double deviation = *stated;
    if (deviation == kFindRest) {
        // A vehicle can glide as quietly as it rests: its speed tells the difference.
        const double variance = filter.Get().covariance.diagonal().segment<3>(stateVelocity).maxCoeff();
        const double speed = filter.GetNavigation().velocity.norm();
        if (!m_rest.IsAtRest() || speed > kSlow + 3.0 * std::sqrt(variance)) return;
        deviation = kFoundRestDeviation;
    }
    SObservation observation(3);
    observation.innovation = -filter.GetNavigation().velocity;
    observation.h.block<3, 3>(0, stateVelocity).setIdentity();
    observation.noise = Matrix3d::Identity() * deviation * deviation;
    SFixOutcome outcome;
    double since = std::nan("");
    if (filter.Observe(observation, since, outcome) == EFixResult::rejected) {
        ++m_restRejected;
    } else {
        ++m_restUsed;
        m_lastRest = time;
    }
}

// While the heading is not known, the way of the vehicle must not be taken for it: the unit may be mounted
// across.
void CObserver::ObserveLand(CInsFilter& filter, double time) {
    m_nextLand = time + kLandSpan;
    if (filter.Get().covariance(stateAttitude + 2, stateAttitude + 2) > kLandHeading * kLandHeading) return;
    const EFixResult result = Use(filter, MakeLandAiding(*m_land, time));
    // A skid is short. What lasts is a unit that is mounted otherwise than stated, or no land vehicle at all.
    if (filter.GetNavigation().velocity.norm() < kLandMoving) return;
    m_landDoubt =
        result == EFixResult::rejected ? m_landDoubt + kLandSpan : std::max(0.0, m_landDoubt - kLandSpan);
    if (m_landDoubt < kLandPatience) return;
    m_report(ELevel::warning, EText::landRefused, {FormatFixed(time, 1)});
    m_land = nullptr;
}

// Without an aid the vertical channel errs exponentially: it is drawn to the height that the user states, or
// to the last one that was aided.
void CObserver::ObserveHeight(CInsFilter& filter, double time) {
    m_nextHeightHold = time + kHeightHoldSpan;
    const EHeightAid* aid = FindInForce(m_plan.heightAids, time);
    if (aid && *aid == EHeightAid::reference) {
        const double geoid = m_plan.aboveGeoid ? m_fixMonitor.GetGeoidHeight() : 0.0;
        filter.HoldHeight(m_plan.referenceAltitude + geoid, kReferenceDeviation);
    } else if (time - m_fixMonitor.GetLastHeightAid() > kHeightUnaided) {
        filter.HoldHeight(m_heldHeight, kHeightHoldDeviation);
    }
}

// Reports a scale far from the stated one as soon as it is certain.
void CObserver::WatchScales(CInsFilter& filter, double time) {
    m_nextScales = time + kScaleSpan;
    struct SScale {
        EGroup group;
        EAiding kind;
    };
    constexpr SScale kScales[] = {{EGroup::dvlScale, EAiding::dvlBottom},
                                  {EGroup::emLogScale, EAiding::emLog},
                                  {EGroup::odometerScale, EAiding::odometer}};
    for (const SScale& row : kScales) {
        const int state = filter.GetLayout().Find(row.group);
        bool& isReported = m_scaleReported[static_cast<std::size_t>(row.kind)];
        if (state < 0 || isReported) continue;
        const double scale = filter.GetSensor(row.group);
        const double deviation = std::sqrt(filter.Get().covariance(state, state));
        if (!IsCertain(scale, deviation, kLeastScale)) continue;
        isReported = true;
        m_report(ELevel::warning, EText::sensorScaled,
                 {GetChannel(row.kind), FormatFixed(100.0 * scale, 1), FormatFixed(100.0 * deviation, 1)});
    }
}

std::string_view CObserver::GetChannel(EAiding kind) const {
    const auto plan = std::ranges::find(m_plan.aidings, kind, &SAidingPlan::kind);
    return plan == m_plan.aidings.end() ? std::string_view() : std::string_view(plan->source.channel);
}

// Reports a gap between the last fix that was used and this time, if there was one.
void CObserver::ReportGpsGap(double time) {
    const double last = std::exchange(m_lastFix, time);
    if (time - last < kGpsGap || ++m_gaps > kMostGapsReported) return;
    m_report(ELevel::warning, EText::gpsGap,
             {FormatFixed(last, 1), FormatFixed(time, 1), FormatFixed(time - last, 1)});
}

void CObserver::Finish(double time) {
    ReportGpsGap(time);
    if (m_fixMonitor.GetRejectedCount() > 0)
        m_report(
            ELevel::warning, EText::rejectedFixes,
            {std::to_string(m_fixMonitor.GetRejectedCount()), std::to_string(m_fixMonitor.GetUsedCount())});
    m_fixMonitor.ForEachAiding([&](std::string_view channel, const CFixMonitor::SUse& use) {
        m_report(ELevel::information, EText::aidingUse,
                 {channel, std::to_string(use.used), std::to_string(use.rejected),
                  FormatFixed(use.components > 0 ? use.distance / use.components : 0.0, 2)});
    });
    if (m_restUsed + m_restRejected > 0)
        m_report(ELevel::information, EText::restUse,
                 {std::to_string(m_restUsed), std::to_string(m_restRejected)});
}

} // namespace Morvex
