#include "morvex/navigation_run.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "morvex/state_packets.h"
#include "xpf/utc_fields.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <utility>

namespace Morvex {

using Outils_Texte::EText;
namespace {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::FormatFixed;

constexpr double kGapWithoutResult = 1.0;
constexpr double kReadAhead = 30.0; // s, between two looks at the alignment
constexpr double kGpsGap = 10.0;    // s, from which a gap is reported
constexpr int kMostGapsTold = 50;
constexpr double kLeastArm = 1.0;    // m: a difference that is worth a warning
constexpr double kLeastLag = 0.02;   // s
constexpr double kLeastScale = 0.02; // one part in one: a difference that is worth a warning
constexpr std::size_t kUtcPackets = 101;
constexpr double kEstimateSpan = 0.9999; // s, between two packets of estimates
constexpr double kStateSpan = 9.9999;    // s, of internal states: a covariance is long
constexpr double kScaleSpan = 30.0;      // s, between two looks at the scales
constexpr double kLagToWarnOf = 0.05;    // s
constexpr double kHeightUnaided = 120.0; // s, after which the height is held
constexpr double kHeightHoldSpan = 10.0;
constexpr double kHeightHoldDeviation = 20.0;            // m, of the last height that was aided
constexpr double kReferenceDeviation = 5.0;              // m, of the height that the user states
constexpr double kRestSpan = 1.0;                        // s, between two observations of a vehicle at rest
constexpr double kLandSpan = 0.2;                        // s, between two observations of a vehicle on wheels
constexpr double kLandMoving = 2.0;                      // m/s
constexpr double kLandPatience = 5.0;                    // s of contradictions more than of agreement
constexpr double kLandHeading = 5.0 * kRadiansPerDegree; // deviation up to which they are made
constexpr double kEpochSpan = 1.0;                       // s, longest between two epochs of the smoother
constexpr double kJustBefore = 1e-7;                     // s: a tick
constexpr std::chrono::seconds kStopPatience(3);
constexpr double kForwardShare = 0.8; // of a smoothed run
constexpr int kSamplesPerLook = 64;   // between two looks at the commands and the clock

std::string Degrees(double radians) { return FormatFixed(radians / kRadiansPerDegree, 2); }

// A result must never empty a recording that it is made from.
bool WouldOverwriteInput(const SRunPlan& plan) {
    auto same = [&plan](const SChannelPlan& source) {
        std::error_code error;
        return std::filesystem::equivalent(source.path, plan.output, error);
    };
    return same(plan.imu) ||
           std::any_of(plan.gps.begin(), plan.gps.end(),
                       [&](const SGpsPlan& gps) { return same(gps.source); }) ||
           std::any_of(plan.synchronized.begin(), plan.synchronized.end(), same);
}

SNavigation Between(const SNavigation& a, const SNavigation& b, double time) {
    const double share = b.time > a.time ? std::clamp((time - a.time) / (b.time - a.time), 0.0, 1.0) : 1.0;
    SNavigation result = b;
    result.time = time;
    const double east = std::remainder(b.position[1] - a.position[1], 2.0 * std::numbers::pi);
    result.position = a.position + share * (b.position - a.position);
    result.position[1] = std::remainder(a.position[1] + share * east, 2.0 * std::numbers::pi);
    result.velocity = a.velocity + share * (b.velocity - a.velocity);
    result.attitude = a.attitude.slerp(share, b.attitude);
    return result;
}

} // namespace

// Positions and other packets in one order of time.
class CNavigationRun::CItems {
  public:
    struct SItem {
        double time = 0.0;
        const SPositionFix* fix = nullptr; // one of the two
        const SAiding* aiding = nullptr;
    };
    CItems(CFixSource& fixes, CAidingReader& aidings) : m_fixes(fixes), m_aidings(aidings) {}
    const SItem* Peek() {
        const SPositionFix* fix = m_fixes.Peek();
        const SAiding* aiding = m_aidings.Peek();
        if (!fix && !aiding) return nullptr;
        if (fix && (!aiding || fix->time <= aiding->time))
            m_item = {fix->time, fix, nullptr};
        else
            m_item = {aiding->time, nullptr, aiding};
        return &m_item;
    }
    void Pop() {
        if (m_item.fix)
            m_fixes.Pop();
        else
            m_aidings.Pop();
    }

  private:
    CFixSource& m_fixes;
    CAidingReader& m_aidings;
    SItem m_item;
};

CNavigationRun::CNavigationRun(const SRunPlan& plan, IRunMonitor& monitor)
    : m_plan(plan),
      m_monitor(monitor),
      m_layout(MakeStateLayout(plan)),
      m_schedule(m_plan),
      m_results(m_plan, m_result),
      m_fixMonitor(plan),
      m_smoothing(plan.backwardAsked) {
    m_contradicted.fill(std::nan(""));
}

void CNavigationRun::Tell(ELevel level, EText code, std::initializer_list<std::string_view> arguments) {
    const std::string text = Outils_Texte::FormatText(code, arguments);
    m_monitor.Message(level, code, text);
    if (!m_result.WriteMessage(m_time, static_cast<int>(level), text)) m_writeFailed = true;
}

ERunEnd CNavigationRun::Execute() {
    m_monitor.Progress(0.0);
    if (!OpenInputs()) return ERunEnd::failed;
    if (WouldOverwriteInput(m_plan) || !m_result.Open(m_plan)) {
        Tell(ELevel::error, EText::outputFailed, {m_plan.output.string()});
        return ERunEnd::failed;
    }
    if (!m_plan.sensorsNotUsed.empty()) Tell(ELevel::warning, EText::sensorsNotUsed, {m_plan.sensorsNotUsed});
    for (const std::string& setting : m_plan.ignored) Tell(ELevel::warning, EText::settingIgnored, {setting});
    if (m_plan.heave == EHeave::none) Tell(ELevel::information, EText::heaveNotComputed);
    Prepare();
    const std::filesystem::path folder = m_plan.output.parent_path();
    if (m_smoothing && !(m_smoother.Open(folder, m_layout.GetSize()) && m_results.OpenSpool(folder))) {
        Tell(ELevel::error, EText::temporaryFailed, {folder.string()});
        return ERunEnd::failed;
    }
    FindUtcOrigin();

    do {
        SStretch stretch;
        m_segmentEnded = false;
        const std::optional<SAlignment> alignment = Align(stretch);
        if (alignment && !m_stopped && !NavigateSegment(stretch, *alignment)) break;
    } while (m_inputs.HasPutBack() && !m_stopped && !m_writeFailed);

    if (m_smoothing && m_navigated && !m_writeFailed && !Smooth() && !m_stopped) m_writeFailed = true;
    if (m_stopped) Tell(ELevel::information, EText::stopped);
    if (!m_stopped && !m_writeFailed) Finish();
    if (!m_result.Close()) m_writeFailed = true;
    if (m_writeFailed) {
        m_monitor.Message(ELevel::error, EText::outputFailed,
                          Outils_Texte::FormatText(EText::outputFailed, {m_plan.output.string()}));
        return ERunEnd::failed;
    }
    if (m_stopped) return ERunEnd::stopped;
    if (!m_navigated) return ERunEnd::failed;
    // Only now: the disk may not have taken the last of the result.
    m_monitor.Message(ELevel::information, EText::finished, MakeFinishedText());
    m_monitor.Progress(100.0);
    return ERunEnd::finished;
}

bool CNavigationRun::OpenInputs() {
    if (m_plan.ciphered) {
        Tell(ELevel::error, EText::ciphered);
        return false;
    }
    if (!m_inputs.OpenImu(m_plan)) {
        std::error_code error;
        const bool exists = std::filesystem::is_regular_file(m_plan.imu.path, error);
        Tell(ELevel::error, exists ? EText::noInertialData : EText::noMainFile, {m_plan.imu.path.string()});
        return false;
    }
    const std::vector<int> missing = m_inputs.OpenFixes();
    for (const int number : missing)
        Tell(ELevel::warning, EText::gpsChannelMissing,
             {m_plan.gps[static_cast<std::size_t>(number)].source.channel,
              m_plan.gps[static_cast<std::size_t>(number)].source.path.string()});
    if (!m_inputs.GetFixes().HasSources()) {
        Tell(ELevel::error, EText::noGps);
        return false;
    }
    for (const SAidingPlan* aiding : m_aidings.Open(m_plan))
        Tell(ELevel::warning, EText::gpsChannelMissing,
             {aiding->source.channel, aiding->source.path.string()});
    m_marks.Open(m_plan);
    SImuSample first;
    if (!m_inputs.NextSample(first)) {
        Tell(ELevel::error, EText::noInertialData, {m_plan.imu.path.string()});
        return false;
    }
    m_inputs.PutBack(first);
    m_begin = m_time = first.time;
    double last = m_begin;
    m_inputs.GetImu().GetStream().GetLastDate(last);
    m_end = m_plan.end ? std::min(*m_plan.end, last) : last;
    return true;
}

void CNavigationRun::Prepare() {
    const auto goOn = [this] {
        m_stopped = m_stopped || !m_monitor.GoOn();
        return !m_stopped;
    };
    const auto mounting = ProbeMounting(m_plan, goOn);
    if (mounting && !m_stopped) UseMounting(*mounting);
    // The readers hold pointers into the plan, and its dates may have moved.
    SImuSample first;
    if (!m_inputs.OpenImu(m_plan) || !m_inputs.NextSample(first)) return;
    m_inputs.PutBack(first);
    m_inputs.OpenFixes();
    m_aidings.Open(m_plan);
    m_layout = MakeStateLayout(m_plan);
    m_fixMonitor = CFixMonitor(m_plan);
    for (const SAidingPlan& aiding : m_plan.aidings)
        if (aiding.kind == EAiding::land) m_land = &aiding;
}

void CNavigationRun::UseMounting(const SMounting& mounting) {
    SGpsPlan& gps = m_plan.gps.front();
    const bool isForgotten = gps.leverArm.isZero();
    Vector3d arm = Vector3d::Zero();
    double deviation = 0.0;
    for (Eigen::Index i = 0; i < 3; ++i)
        if (IsCertain(mounting.arm[i], mounting.armDeviation[i], kLeastArm)) {
            arm[i] = mounting.arm[i];
            deviation = std::max(deviation, mounting.armDeviation[i]);
        }
    if (!arm.isZero()) {
        Tell(ELevel::warning, isForgotten ? EText::gpsArmFound : EText::gpsArmDiffers,
             {gps.source.channel, FormatFixed(arm.x(), 2), FormatFixed(arm.y(), 2), FormatFixed(arm.z(), 2),
              FormatFixed(deviation, 2)});
        gps.leverArm += arm;
        m_plan.gpsArmDeviation = 2.0 * deviation;
    }
    if (IsCertain(mounting.lag, mounting.lagDeviation, kLeastLag)) {
        // A recorder dates late and never early: fixes that seem early show that the inertial packets are
        // late.
        const bool fixesAreLate = mounting.lag > 0.0;
        const double late = std::abs(mounting.lag);
        Tell(late > kLagToWarnOf ? ELevel::warning : ELevel::information,
             fixesAreLate ? EText::gpsLag : EText::imuLag,
             {gps.source.channel, FormatFixed(late, 3), FormatFixed(mounting.lagDeviation, 3)});
        SChannelPlan& source = fixesAreLate ? gps.source : m_plan.imu;
        source.timeOffset -= late;
        m_plan.gpsLagDeviation = 2.0 * mounting.lagDeviation;
    }
    if (mounting.isOnWheels && !m_plan.inAir && AddLandModel(m_plan))
        Tell(ELevel::information, EText::landAssumed, {FormatFixed(m_begin, 1)});
}

void CNavigationRun::FindUtcOrigin() {
    if (m_plan.utcOrigin) {
        m_result.SetUtcOrigin(*m_plan.utcOrigin);
        return;
    }
    using Persistance_Xpf::kUtcLayout;
    CPacketStream stream;
    SChannelPlan plan = m_plan.imu;
    plan.channel = "UTC";
    // A packet may be dated late or hold a second that is already over: the middle of many counts.
    std::vector<std::uint64_t> origins;
    CPayload payload;
    const bool isOpen = stream.Open(plan, kUtcLayout);
    while (isOpen && origins.size() < kUtcPackets && stream.Next(payload)) {
        CDateTime date = Persistance_Xpf::SUtcFields(payload.GetBytes()).GetOrigin();
        date -= CDateTimeSpan::FromSeconds(stream.GetTimeOffset());
        if (date.IsValid()) origins.push_back(date.GetTicks());
    }
    if (!origins.empty()) {
        const auto middle = origins.begin() + static_cast<std::ptrdiff_t>(origins.size() / 2);
        std::ranges::nth_element(origins, middle);
        m_result.SetUtcOrigin(CDateTime(*middle));
        return;
    }
    Tell(ELevel::warning, EText::noUtc);
}

std::optional<SAlignment> CNavigationRun::Align(SStretch& stretch) {
    CAlignment alignment([this] {
        m_stopped = m_stopped || !m_monitor.GoOn();
        return !m_stopped;
    });
    for (;;) {
        const bool more = m_inputs.ReadAhead(stretch, kReadAhead);
        m_segmentEnded = !more;
        if (stretch.samples.empty()) return std::nullopt;
        m_time = stretch.samples.front().time;
        const double length = stretch.samples.back().time - m_time;
        const CAlignment::EState state = alignment.Continue(stretch);
        if (!m_monitor.GoOn()) m_stopped = true;
        if (m_stopped || state == CAlignment::EState::stopped) return std::nullopt;
        if (state == CAlignment::EState::settled || !more) break;
        if (length < CAlignment::kLongestStretch) continue;
        if (!stretch.fixes.empty()) break;
        // Without a fix there is nothing to start from: what is so far behind is given up.
        Tell(ELevel::warning, EText::noFix,
             {FormatFixed(m_time, 1), FormatFixed(stretch.samples.back().time, 1)});
        stretch = {};
    }
    std::optional<SAlignment> result = alignment.Finish(stretch);
    if (m_stopped) return std::nullopt;
    if (!result) {
        const bool noFix = stretch.fixes.empty();
        Tell(ELevel::error, noFix ? EText::noFix : EText::tooShort,
             {FormatFixed(m_time, 1), FormatFixed(stretch.samples.back().time, 1)});
        return result;
    }
    Tell(ELevel::information, EText::unitGrade, {result->grade.name});
    if (result->headingKnown)
        Tell(ELevel::information, EText::aligned,
             {FormatFixed(result->duration, 0), Degrees(result->headingDeviation)});
    else
        Tell(ELevel::warning, EText::headingUnknown, {Degrees(result->headingDeviation)});
    return result;
}

bool CNavigationRun::NavigateSegment(const SStretch& stretch, const SAlignment& alignment) {
    CInsFilter filter(alignment.start, alignment.grade, CInsFilter::EMode::navigation, m_layout);
    if (m_smoothing) filter.KeepTransition();
    CFixSource fixes(stretch, m_inputs.GetFixes());
    CItems items(fixes, m_aidings);
    const double begin = filter.GetNavigation().time;
    m_aidings.SkipTo(begin);
    m_nextOutput = m_schedule.GetNextAfter(begin - 1e-6);
    m_nextHeightHold = begin + kHeightUnaided;
    m_heldHeight = filter.GetNavigation().position[2];
    m_nextRest = begin + kRestSpan;
    m_nextLand = begin + kLandSpan;
    m_nextScales = begin + kScaleSpan;
    m_nextEstimates = m_nextStates = begin;
    m_lastFix = begin;
    if (!stretch.fixes.empty()) m_fixMonitor.SetGeoidHeight(stretch.fixes.front().geoidHeight);
    while (m_marks.Peek() && m_marks.Peek()->time < begin) m_marks.Pop();
    m_navigated = true;
    BeginEpoch(filter);
    EndEpoch(filter, true);
    const bool goesOn = NavigateAll(filter, stretch, items);
    if (!m_results.Flush()) m_writeFailed = true;
    m_estimates = DescribeEstimates(filter, m_plan);
    return goesOn;
}

bool CNavigationRun::NavigateAll(CInsFilter& filter, const SStretch& stretch, CItems& items) {
    for (const SImuSample& sample : stretch.samples)
        if (!NavigateSample(filter, sample, items)) return false;
    if (m_segmentEnded) return true;
    SImuSample sample;
    while (m_inputs.NextSample(sample)) {
        if (sample.gap > CRunInputs::kLongestGap) {
            Tell(ELevel::warning, EText::imuGap,
                 {FormatFixed(sample.time - sample.gap, 1), FormatFixed(sample.time, 1)});
            m_inputs.PutBack(sample);
            return true;
        }
        if (!NavigateSample(filter, sample, items)) return false;
    }
    return true;
}

bool CNavigationRun::NavigateSample(CInsFilter& filter, const SImuSample& sample, CItems& items) {
    if (sample.lost > kGapWithoutResult) {
        const double begin = sample.time - sample.span;
        Tell(ELevel::warning, EText::imuGap, {FormatFixed(begin, 1), FormatFixed(begin + sample.lost, 1)});
    }
    if (sample.gap > kGapWithoutResult) {
        m_nextOutput = m_schedule.GetNextAfter(sample.time - 1e-6);
        while (m_marks.Peek() && m_marks.Peek()->time < sample.time) m_marks.Pop();
    }
    SNavigation before = filter.GetNavigation();
    const auto change = [&](double time, auto&& apply) {
        if (!WriteBetween(filter, before, time - kJustBefore)) m_writeFailed = true;
        BeginEpoch(filter);
        apply();
        EndEpoch(filter);
        before = filter.GetNavigation();
    };
    AdvanceThrough(filter, sample, items, [&](const CItems::SItem& item) {
        change(item.time, [&] {
            if (item.fix)
                Use(filter, *item.fix);
            else
                Use(filter, *item.aiding);
        });
    });
    m_time = sample.time;
    if (m_time >= m_nextRest) change(m_time, [&] { ObserveRest(filter); });
    if (m_land && m_time >= m_nextLand) change(m_time, [&] { ObserveLand(filter); });
    if (m_time >= m_nextHeightHold) change(m_time, [&] { ObserveHeight(filter); });
    if (m_time >= m_nextScales) WatchScales(filter);
    if (m_time >= m_nextEstimates) WriteStates(filter);
    if (m_smoothing && m_time - m_lastEpoch >= kEpochSpan) change(m_time, [] {});
    m_results.AddMotion(filter.GetStrapdown());
    if (!WriteBetween(filter, before, m_time + kJustBefore) || m_writeFailed) return false;
    if (++m_samplesSinceAlive < kSamplesPerLook) return true;
    m_samplesSinceAlive = 0;
    return KeepAlive(m_time);
}

void CNavigationRun::Use(CInsFilter& filter, const SPositionFix& fix) {
    const SFixOutcome outcome = filter.Update(fix);
    m_fixMonitor.Add(fix, outcome);
    if (m_fixMonitor.GetLastUsed() == fix.time) TellGpsGap(fix.time);
    if (m_fixMonitor.GetLastHeight() == fix.time) m_heldHeight = filter.GetNavigation().position[2];
}

EFixResult CNavigationRun::Use(CInsFilter& filter, const SAiding& aiding) {
    const EHeightAid* aid = FindInForce(m_plan.heightAids, aiding.time);
    if (m_watch.IsJammed(aiding)) {
        if (const auto since = m_watch.TakeJam(aiding.kind))
            Tell(ELevel::warning, EText::sensorJammed, {aiding.plan->source.channel, FormatFixed(*since, 1)});
        return EFixResult::notTaken;
    }
    const bool otherHeight = aid && (*aid == EHeightAid::gps || *aid == EHeightAid::reference);
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
        Tell(ELevel::warning, EText::sensorContradicts, {aiding.plan->source.channel, FormatFixed(*from, 1)});
    m_fixMonitor.Add(aiding, result, outcome);
    if (aiding.kind == EAiding::depth && result == EFixResult::accepted)
        m_heldHeight = filter.GetNavigation().position[2];
    return result;
}

// A log that is mounted turned is turned back in the plan, for the bottom and for the water.
void CNavigationRun::WatchDirection(CInsFilter& filter, const SAiding& aiding,
                                    const SAidingContext& context) {
    if (HeadingDeviation(filter.Get()) > kLandHeading || m_time - m_fixMonitor.GetLastUsed() > kGpsGap)
        return;
    const SNavigation& navigation = filter.GetNavigation();
    const Vector3d speed =
        navigation.attitude.conjugate() * navigation.velocity + context.rate.cross(aiding.plan->leverArm);
    m_watch.AddDirection(aiding.kind, aiding.value, aiding.plan->sensorToVessel.transpose() * speed);
    const auto turn = m_watch.TakeTurn(aiding.kind);
    if (!turn) return;
    Tell(ELevel::warning, EText::sensorTurned,
         {aiding.plan->source.channel, FormatFixed(*turn / kRadiansPerDegree, 0)});
    const Matrix3d back = Eigen::AngleAxisd(*turn, Vector3d::UnitZ()).toRotationMatrix();
    for (SAidingPlan& plan : m_plan.aidings)
        if (plan.kind == EAiding::dvlBottom || plan.kind == EAiding::dvlWater)
            plan.sensorToVessel = plan.sensorToVessel * back;
}

void CNavigationRun::ObserveRest(CInsFilter& filter) {
    m_nextRest = m_time + kRestSpan;
    const double* deviation = FindInForce(m_plan.atRest, m_time);
    if (!deviation || *deviation <= 0.0) return;
    SObservation observation(3);
    observation.innovation = -filter.GetNavigation().velocity;
    observation.h.block<3, 3>(0, stateVelocity).setIdentity();
    observation.noise = Matrix3d::Identity() * *deviation * *deviation;
    SFixOutcome outcome;
    double since = 0.0;
    filter.Observe(observation, since, outcome);
}

// While the heading is not known, the way of the vehicle must not be taken for it: the unit may be mounted
// across.
void CNavigationRun::ObserveLand(CInsFilter& filter) {
    m_nextLand = m_time + kLandSpan;
    if (filter.Get().covariance(stateAttitude + 2, stateAttitude + 2) > kLandHeading * kLandHeading) return;
    const EFixResult result = Use(filter, MakeLandAiding(*m_land, m_time));
    // A skid is short. What lasts is a unit that is mounted otherwise than stated, or no land vehicle at all.
    if (filter.GetNavigation().velocity.norm() < kLandMoving) return;
    m_landDoubt =
        result == EFixResult::rejected ? m_landDoubt + kLandSpan : std::max(0.0, m_landDoubt - kLandSpan);
    if (m_landDoubt < kLandPatience) return;
    Tell(ELevel::warning, EText::landRefused, {FormatFixed(m_time, 1)});
    m_land = nullptr;
}

// Without an aid the vertical channel errs exponentially: it is drawn to the height that the user states, or
// to the last one that was aided.
void CNavigationRun::ObserveHeight(CInsFilter& filter) {
    m_nextHeightHold = m_time + kHeightHoldSpan;
    const EHeightAid* aid = FindInForce(m_plan.heightAids, m_time);
    if (aid && *aid == EHeightAid::reference) {
        const double geoid = m_plan.aboveGeoid ? m_fixMonitor.GetGeoidHeight() : 0.0;
        filter.HoldHeight(m_plan.referenceAltitude + geoid, kReferenceDeviation);
    } else if (m_time - m_fixMonitor.GetLastHeightAid() > kHeightUnaided) {
        filter.HoldHeight(m_heldHeight, kHeightHoldDeviation);
    }
}

// Reports a scale far from the stated one as soon as it is certain.
void CNavigationRun::WatchScales(CInsFilter& filter) {
    m_nextScales = m_time + kScaleSpan;
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
        Tell(ELevel::warning, EText::sensorScaled,
             {GetChannel(row.kind), FormatFixed(100.0 * scale, 1), FormatFixed(100.0 * deviation, 1)});
    }
}

void CNavigationRun::WriteStates(CInsFilter& filter) {
    m_nextEstimates = m_time + kEstimateSpan;
    const NavigationCovariance covariance = filter.Get().covariance.topLeftCorner<9, 9>();
    const SEstimateContext context{m_fixMonitor.GetGeoidHeight(), m_fixMonitor.GetStatus1(m_time, covariance),
                                   m_fixMonitor.GetStatus2(m_time)};
    if (!m_result.WriteEstimates(MakeEstimatePacket(filter, m_plan, context))) m_writeFailed = true;
    if (m_time < m_nextStates) return;
    m_nextStates = m_time + kStateSpan;
    if (!m_result.WriteStates(MakeStatePacket(filter))) m_writeFailed = true;
}

std::string_view CNavigationRun::GetChannel(EAiding kind) const {
    const auto plan = std::ranges::find(m_plan.aidings, kind, &SAidingPlan::kind);
    return plan == m_plan.aidings.end() ? std::string_view() : std::string_view(plan->source.channel);
}

void CNavigationRun::BeginEpoch(CInsFilter& filter) {
    if (!m_smoothing) return;
    m_epoch.before = filter.Get().covariance;
    m_epoch.transition = filter.TakeTransition();
    filter.TakeCorrection();
}

void CNavigationRun::EndEpoch(CInsFilter& filter, bool begins) {
    if (!m_smoothing) return;
    m_epoch.time = m_lastEpoch = filter.GetNavigation().time;
    m_epoch.begins = begins;
    m_epoch.after = filter.Get().covariance;
    m_epoch.correction = filter.TakeCorrection();
    if (!m_smoother.Add(m_epoch)) m_writeFailed = true;
}

bool CNavigationRun::WriteBetween(CInsFilter& filter, const SNavigation& before, double until) {
    for (;;) {
        const SMark* mark = m_marks.Peek();
        const bool isMark = mark && mark->time < m_nextOutput;
        const double time = isMark ? mark->time : m_nextOutput;
        if (time > until) return true;
        const NavigationCovariance covariance = filter.Get().covariance.topLeftCorner<9, 9>();
        SResultContext context;
        context.geoidHeight = m_fixMonitor.GetGeoidHeight();
        context.rate = filter.GetStrapdown().GetRate();
        context.status1 = m_fixMonitor.GetStatus1(time, covariance);
        context.status2 = m_fixMonitor.GetStatus2(time);
        if (isMark) {
            context.sensor = mark->channel;
            context.sensorData = mark->data;
        }
        if (!m_results.Add(Between(before, filter.GetNavigation(), time), covariance, context)) {
            m_writeFailed = true;
            return false;
        }
        if (isMark)
            m_marks.Pop();
        else
            m_nextOutput = m_schedule.GetNextAfter(m_nextOutput);
    }
}

// The passes after the forward one: backwards over the epochs, and forward over the results that wait.
bool CNavigationRun::Smooth() {
    // A run that was stopped keeps what it has come to, as far as that is ready before the user is asked
    // whether the engine hangs.
    const bool wasStopped = m_stopped;
    const auto deadline = std::chrono::steady_clock::now() + kStopPatience;
    const auto goOn = [&](double share) {
        if (wasStopped) return std::chrono::steady_clock::now() < deadline;
        m_monitor.Progress(100.0 * share);
        m_stopped = m_stopped || !m_monitor.GoOn();
        return !m_stopped;
    };
    constexpr double kBackwardShare = 0.1;
    if (!m_smoother.Run([&](double share) { return goOn(kForwardShare + kBackwardShare * share); }))
        return false;
    constexpr double kBefore = kForwardShare + kBackwardShare;
    return m_results.WriteSmoothed(
        m_smoother, [&](double share) { return goOn(std::min(kBefore + (1.0 - kBefore) * share, 0.999)); });
}

// Tells a gap between the last fix that was used and this time, if there was one.
void CNavigationRun::TellGpsGap(double time) {
    const double last = std::exchange(m_lastFix, time);
    if (time - last < kGpsGap || ++m_gaps > kMostGapsTold) return;
    Tell(ELevel::warning, EText::gpsGap,
         {FormatFixed(last, 1), FormatFixed(time, 1), FormatFixed(time - last, 1)});
}

bool CNavigationRun::KeepAlive(double time) {
    if (m_end > m_begin)
        m_monitor.Progress((m_smoothing ? kForwardShare : 1.0) *
                           std::clamp(100.0 * (time - m_begin) / (m_end - m_begin), 0.0, 99.9));
    if (!m_result.FlushIfDue()) m_writeFailed = true;
    m_stopped = m_stopped || !m_monitor.GoOn();
    return !m_stopped && !m_writeFailed;
}

void CNavigationRun::Finish() {
    if (!m_navigated) return;
    TellGpsGap(m_time);
    if (const int damages = m_inputs.GetImu().GetStream().GetDamageCount(); damages > 0)
        Tell(ELevel::warning, EText::damaged, {std::to_string(damages)});
    if (m_fixMonitor.GetRejectedCount() > 0)
        Tell(ELevel::warning, EText::rejectedFixes,
             {std::to_string(m_fixMonitor.GetRejectedCount()), std::to_string(m_fixMonitor.GetUsedCount())});
    m_fixMonitor.ForEachAiding([&](std::string_view channel, const CFixMonitor::SUse& use) {
        Tell(ELevel::information, EText::aidingUse,
             {channel, std::to_string(use.used), std::to_string(use.rejected),
              FormatFixed(use.components > 0 ? use.distance / use.components : 0.0, 2)});
    });
    for (const SEstimateText& estimate : m_estimates)
        Tell(ELevel::information, EText::sensorEstimates, {estimate.channel, estimate.text});
    if (m_gaps > 0 && !m_smoothing) Tell(ELevel::information, EText::smoothable, {std::to_string(m_gaps)});
    if (!m_result.WriteMessage(m_time, static_cast<int>(ELevel::information), MakeFinishedText()))
        m_writeFailed = true;
}

std::string CNavigationRun::MakeFinishedText() const {
    return Outils_Texte::FormatText(EText::finished, {std::to_string(m_result.GetCount())});
}

} // namespace Morvex
