#include "morvex/navigation_run.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "xpf/utc_fields.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Morvex {

using Outils_Texte::EText;
namespace {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::FormatFixed;

constexpr double kLongestGap = 10.0; // s of missing inertial data that are bridged
constexpr double kGapWithoutResult = 1.0;
constexpr double kReadAhead = 30.0; // s, between two looks at the alignment
constexpr double kGpsGap = 10.0;    // s, from which a gap is told
constexpr int kMostGapsTold = 50;
constexpr double kHeightUnaided = 120.0; // s, after which the height is held
constexpr double kHeightHoldSpan = 10.0;
constexpr double kHeightHoldDeviation = 30.0; // m
constexpr int kSamplesPerLook = 64;           // between two looks at the commands and the clock

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

// First what was read ahead for the alignment, then the files.
class CNavigationRun::CFixSource {
  public:
    CFixSource(const SStretch& stretch, CFixReader& reader) : m_cursor(stretch.fixes), m_reader(reader) {}
    const SPositionFix* Peek() const {
        const SPositionFix* fix = m_cursor.Peek();
        return fix ? fix : m_reader.Peek();
    }
    void Pop() {
        if (m_cursor.Peek())
            m_cursor.Pop();
        else
            m_reader.Pop();
    }

  private:
    CFixCursor m_cursor;
    CFixReader& m_reader;
};

CNavigationRun::CNavigationRun(const SRunPlan& plan, IRunMonitor& monitor)
    : m_plan(plan), m_monitor(monitor), m_schedule(plan), m_fixMonitor(plan.gps.size()) {}

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
    if (m_plan.backwardAsked) Tell(ELevel::warning, EText::forwardOnly);
    FindUtcOrigin();

    do {
        SStretch stretch;
        m_segmentEnded = false;
        const std::optional<SAlignment> alignment = Align(stretch);
        if (alignment && !m_stopped && !NavigateSegment(stretch, *alignment)) break;
    } while (m_hasCarry && !m_stopped && !m_writeFailed);

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
    m_monitor.Progress(100.0);
    return ERunEnd::finished;
}

bool CNavigationRun::OpenInputs() {
    if (m_plan.ciphered) {
        Tell(ELevel::error, EText::ciphered);
        return false;
    }
    if (!m_imu.Open(m_plan)) {
        std::error_code error;
        const bool exists = std::filesystem::is_regular_file(m_plan.imu.path, error);
        Tell(ELevel::error, exists ? EText::noInertialData : EText::noMainFile, {m_plan.imu.path.string()});
        return false;
    }
    const std::vector<int> missing = m_fixes.Open(m_plan);
    for (const int number : missing)
        Tell(ELevel::warning, EText::gpsChannelMissing,
             {m_plan.gps[static_cast<std::size_t>(number)].source.channel,
              m_plan.gps[static_cast<std::size_t>(number)].source.path.string()});
    if (!m_fixes.HasSources()) {
        Tell(ELevel::error, EText::noGps);
        return false;
    }
    m_marks.Open(m_plan);
    SImuSample first;
    if (!NextSample(first)) {
        Tell(ELevel::error, EText::noInertialData, {m_plan.imu.path.string()});
        return false;
    }
    m_carry = first;
    m_hasCarry = true;
    m_begin = m_time = first.time;
    double last = m_begin;
    m_imu.GetStream().GetLastDate(last);
    m_end = m_plan.end ? std::min(*m_plan.end, last) : last;
    return true;
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
    CPayload payload;
    while (stream.Open(plan, kUtcLayout) && stream.Next(payload)) {
        CDateTime date = Persistance_Xpf::SUtcFields(payload.GetBytes()).GetOrigin();
        date -= CDateTimeSpan::FromSeconds(stream.GetTimeOffset());
        if (!date.IsValid()) break;
        m_result.SetUtcOrigin(date);
        return;
    }
    Tell(ELevel::warning, EText::noUtc);
}

bool CNavigationRun::NextSample(SImuSample& sample) {
    if (m_hasCarry) {
        sample = m_carry;
        m_hasCarry = false;
        return true;
    }
    while (m_imu.Next(sample)) {
        if (m_plan.begin && sample.time <= *m_plan.begin) continue;
        return !m_plan.end || sample.time <= *m_plan.end;
    }
    return false;
}

// Adds up to so many seconds to the stretch. False when the data, or the segment, ends.
bool CNavigationRun::ReadAhead(SStretch& stretch, double seconds) {
    SImuSample sample;
    double until = 0.0;
    bool more = true;
    for (bool first = true;; first = false) {
        if (!NextSample(sample)) {
            more = false;
            break;
        }
        if (stretch.samples.empty()) {
            // Nothing is known of what was before the first sample.
            if (sample.gap > 0.0) {
                const double nominal = sample.span - sample.gap;
                sample = {sample.time, nominal, sample.angle * (nominal / sample.span),
                          sample.velocity * (nominal / sample.span), 0.0};
            }
            while (m_fixes.Peek() && m_fixes.Peek()->time < sample.time - sample.span) m_fixes.Pop();
        } else if (sample.gap > kLongestGap) {
            m_carry = sample;
            m_hasCarry = true;
            more = false;
            break;
        }
        if (first) until = sample.time + seconds;
        stretch.samples.push_back(sample);
        if (sample.time >= until) break;
    }
    if (stretch.samples.empty()) return false;
    while (m_fixes.Peek() && m_fixes.Peek()->time <= stretch.samples.back().time) {
        stretch.fixes.push_back(*m_fixes.Peek());
        m_fixes.Pop();
    }
    return more;
}

std::optional<SAlignment> CNavigationRun::Align(SStretch& stretch) {
    CAlignment alignment([this] {
        m_stopped = m_stopped || !m_monitor.GoOn();
        return !m_stopped;
    });
    for (;;) {
        const bool more = ReadAhead(stretch, kReadAhead);
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
    CInsFilter filter(alignment.start, alignment.grade);
    CFixSource fixes(stretch, m_fixes);
    const double begin = filter.GetNavigation().time;
    m_nextOutput = m_schedule.GetNextAfter(begin - 1e-6);
    m_nextHeightHold = begin + kHeightUnaided;
    m_lastFix = begin;
    if (!stretch.fixes.empty()) m_fixMonitor.SetGeoidHeight(stretch.fixes.front().geoidHeight);
    while (m_marks.Peek() && m_marks.Peek()->time < begin) m_marks.Pop();
    m_navigated = true;
    for (const SImuSample& sample : stretch.samples)
        if (!NavigateSample(filter, sample, fixes)) return false;
    if (m_segmentEnded) return true;
    SImuSample sample;
    while (NextSample(sample)) {
        if (sample.gap > kLongestGap) {
            Tell(ELevel::warning, EText::imuGap,
                 {FormatFixed(sample.time - sample.gap, 1), FormatFixed(sample.time, 1)});
            m_carry = sample;
            m_hasCarry = true;
            return true;
        }
        if (!NavigateSample(filter, sample, fixes)) return false;
    }
    return true;
}

bool CNavigationRun::NavigateSample(CInsFilter& filter, const SImuSample& sample, CFixSource& fixes) {
    const SNavigation before = filter.GetNavigation();
    AdvanceThrough(filter, sample, fixes, [&](const SPositionFix& fix) {
        m_fixMonitor.Add(fix, filter.Update(fix));
        if (m_fixMonitor.GetLastUsed() == fix.time) TellGpsGap(fix.time);
    });
    m_time = sample.time;
    if (m_time - m_fixMonitor.GetLastHeight() > kHeightUnaided && m_time >= m_nextHeightHold) {
        filter.HoldHeight(filter.GetNavigation().position[2], kHeightHoldDeviation);
        m_nextHeightHold = m_time + kHeightHoldSpan;
    }
    if (sample.gap > kGapWithoutResult) {
        m_nextOutput = m_schedule.GetNextAfter(m_time - 1e-6);
        while (m_marks.Peek() && m_marks.Peek()->time < m_time) m_marks.Pop();
    }
    if (!WriteBetween(filter, before)) return false;
    if (++m_samplesSinceAlive < kSamplesPerLook) return true;
    m_samplesSinceAlive = 0;
    return KeepAlive(m_time);
}

bool CNavigationRun::WriteBetween(CInsFilter& filter, const SNavigation& before) {
    const double until = filter.GetNavigation().time + 1e-7;
    for (;;) {
        const SMark* mark = m_marks.Peek();
        const bool isMark = mark && mark->time < m_nextOutput;
        const double time = isMark ? mark->time : m_nextOutput;
        if (time > until) return true;
        const StateMatrix& covariance = filter.Get().covariance;
        SResultContext context;
        context.geoidHeight = m_fixMonitor.GetGeoidHeight();
        context.rate = filter.GetStrapdown().GetRate();
        context.status1 = m_fixMonitor.GetStatus1(time, covariance);
        context.status2 = m_fixMonitor.GetStatus2(time);
        if (isMark) {
            context.sensor = mark->channel;
            context.sensorData = mark->data;
        }
        if (!m_result.Write(Between(before, filter.GetNavigation(), time), covariance, context)) {
            m_writeFailed = true;
            return false;
        }
        if (isMark)
            m_marks.Pop();
        else
            m_nextOutput = m_schedule.GetNextAfter(m_nextOutput);
    }
}

// Tells a gap between the last fix that was used and this time, if there was one.
void CNavigationRun::TellGpsGap(double time) {
    const double last = std::exchange(m_lastFix, time);
    if (time - last < kGpsGap || ++m_gapsTold > kMostGapsTold) return;
    Tell(ELevel::warning, EText::gpsGap,
         {FormatFixed(last, 1), FormatFixed(time, 1), FormatFixed(time - last, 1)});
}

bool CNavigationRun::KeepAlive(double time) {
    if (m_end > m_begin)
        m_monitor.Progress(std::clamp(100.0 * (time - m_begin) / (m_end - m_begin), 0.0, 99.9));
    if (!m_result.FlushIfDue()) m_writeFailed = true;
    m_stopped = m_stopped || !m_monitor.GoOn();
    return !m_stopped && !m_writeFailed;
}

void CNavigationRun::Finish() {
    if (!m_navigated) return;
    TellGpsGap(m_time);
    if (const int damages = m_imu.GetStream().GetDamageCount(); damages > 0)
        Tell(ELevel::warning, EText::damaged, {std::to_string(damages)});
    if (m_fixMonitor.GetRejectedCount() > 0)
        Tell(ELevel::warning, EText::rejectedFixes,
             {std::to_string(m_fixMonitor.GetRejectedCount()), std::to_string(m_fixMonitor.GetUsedCount())});
    Tell(ELevel::information, EText::finished, {std::to_string(m_result.GetCount())});
}

} // namespace Morvex
