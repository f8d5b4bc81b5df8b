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
constexpr double kLeastArm = 1.0;   // m: a difference that is worth a warning
// A vehicle that has hardly turned tells an arm badly, and a deviation of metres is too small then.
constexpr double kArmDoubt = 0.6;  // m
constexpr double kLeastLag = 0.02; // s
constexpr std::size_t kUtcPackets = 101;
constexpr double kEstimateSpan = 0.9999; // s, between two packets of estimates
constexpr double kStateSpan = 9.9999;    // s, of internal states: a covariance is long
constexpr double kLagToWarnOf = 0.05;    // s
constexpr double kEpochSpan = 1.0;       // s, longest between two epochs of the smoother
constexpr double kJustBefore = 1e-7;     // s: a tick
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
      m_observer(m_plan, [this](auto level, auto code, auto arguments) { Tell(level, code, arguments); }),
      m_smoothing(plan.backwardAsked) {}

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
    if (m_plan.mount && !m_mount.Open(*m_plan.mount))
        Tell(ELevel::warning, EText::gpsChannelMissing,
             {m_plan.mount->source.channel, m_plan.mount->source.path.string()});
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
    m_plan.hasRelativeFixes = m_inputs.GetFixes().HasRelative();
    m_layout = MakeStateLayout(m_plan);
    m_observer.Reset();
}

void CNavigationRun::UseMounting(const SMounting& mounting) {
    SGpsPlan& gps = m_plan.gps.front();
    const bool isForgotten = gps.leverArm.isZero();
    Vector3d arm = Vector3d::Zero();
    double deviation = 0.0;
    for (Eigen::Index i = 0; i < 3; ++i)
        if (mounting.armDeviation[i] < kArmDoubt &&
            IsCertain(mounting.arm[i], mounting.armDeviation[i], kLeastArm)) {
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
    m_nextEstimates = m_nextStates = begin;
    m_observer.Begin(filter, alignment.grade, stretch);
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
                m_observer.Use(filter, *item.fix);
            else
                m_observer.Use(filter, *item.aiding);
        });
    });
    m_time = sample.time;
    m_observer.AddMotion(filter, sample.span);
    m_observer.ObserveDue(filter, m_time, [&](auto&& apply) { change(m_time, apply); });
    if (m_time >= m_nextEstimates) WriteStates(filter);
    if (m_smoothing && m_time - m_lastEpoch >= kEpochSpan) change(m_time, [] {});
    m_results.AddMotion(filter.GetStrapdown());
    if (!WriteBetween(filter, before, m_time + kJustBefore) || m_writeFailed) return false;
    if (++m_samplesSinceAlive < kSamplesPerLook) return true;
    m_samplesSinceAlive = 0;
    return KeepAlive(m_time);
}

void CNavigationRun::WriteStates(CInsFilter& filter) {
    m_nextEstimates = m_time + kEstimateSpan;
    const NavigationCovariance covariance = filter.Get().covariance.topLeftCorner<9, 9>();
    const SEstimateContext context{m_observer.GetGeoidHeight(), m_observer.GetStatus1(m_time, covariance),
                                   m_observer.GetStatus2(m_time)};
    if (!m_result.WriteEstimates(MakeEstimatePacket(filter, m_plan, context))) m_writeFailed = true;
    if (m_time < m_nextStates) return;
    m_nextStates = m_time + kStateSpan;
    if (!m_result.WriteStates(MakeStatePacket(filter))) m_writeFailed = true;
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
        context.geoidHeight = m_observer.GetGeoidHeight();
        context.rate = filter.GetStrapdown().GetRate();
        context.status1 = m_observer.GetStatus1(time, covariance);
        context.status2 = m_observer.GetStatus2(time);
        context.vehicleToUnit = m_mount.GetVehicleToUnit(time);
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
    if (const int damages = m_inputs.GetImu().GetStream().GetDamageCount(); damages > 0)
        Tell(ELevel::warning, EText::damaged, {std::to_string(damages)});
    m_observer.Finish(m_time);
    if (m_mount.IsOpen())
        Tell(ELevel::information, EText::mountUse,
             {m_plan.mount->source.channel, std::to_string(m_mount.GetCount())});
    for (const SEstimateText& estimate : m_estimates)
        Tell(ELevel::information, EText::sensorEstimates, {estimate.channel, estimate.text});
    if (const int gaps = m_observer.GetGapCount(); gaps > 0 && !m_smoothing)
        Tell(ELevel::information, EText::smoothable, {std::to_string(gaps)});
    if (!m_result.WriteMessage(m_time, static_cast<int>(ELevel::information), MakeFinishedText()))
        m_writeFailed = true;
}

std::string CNavigationRun::MakeFinishedText() const {
    return Outils_Texte::FormatText(EText::finished, {std::to_string(m_result.GetCount())});
}

} // namespace Morvex
