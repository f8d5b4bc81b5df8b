#include "morvex/imu_reader.h"

#include "morvex/earth.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Morvex {
namespace {

using namespace Persistance_Xpf;

constexpr double kLargestDate = 1e9;      // s: no clock of a recording runs for thirty years
constexpr double kImplausibleJump = 10.0; // s
constexpr int kProbe = 1000;              // spans looked at for the usual one
constexpr double kAgreeing = 0.1;         // share by which counter and dates may differ

} // namespace

bool CImuReader::Open(const SRunPlan& plan) {
    if (!m_stream.Open(plan.imu, kImuLayout)) return false;
    m_angleScale = Compagnon::kRadiansPerFogCount * plan.unitToVessel;
    m_velocityScale = Compagnon::kSpeedPerAccCount * plan.unitToVessel;

    if (!ProbeSpan()) return false;
    if (!m_stream.Open(plan.imu, kImuLayout)) return false;
    m_hasNext = ReadRaw(m_next);
    m_last = m_next.time - m_nominal;
    m_clock = CImuClock(m_nominal);
    m_bridge = {};
    m_ahead.clear();
    m_filled.clear();
    m_nextFilled = 0;
    return m_hasNext;
}

// The nominal span of a sample from the first packets.
bool CImuReader::ProbeSpan() {
    // Late dates come in pairs of a long and a short span, and packets may be missing: the median.
    std::vector<double> spans;
    SRaw first, raw, last;
    if (!ReadRaw(first)) return false;
    last = first;
    double steps = 0.0; // of the counter
    while (static_cast<int>(spans.size()) < kProbe && ReadRaw(raw)) {
        if (raw.time > last.time) spans.push_back(raw.time - last.time);
        steps += (raw.counter - last.counter + kCounterCycle) % kCounterCycle;
        last = raw;
    }
    if (spans.empty()) return false;
    const auto middle = spans.begin() + static_cast<std::ptrdiff_t>(spans.size() / 2);
    std::nth_element(spans.begin(), middle, spans.end());
    m_nominal = *middle;
    // Where the counter agrees with the dates it gives the span through lost packets and late dates alike.
    const double byCounter = steps > 0.0 ? (last.time - first.time) / steps : 0.0;
    if (std::abs(byCounter - m_nominal) < kAgreeing * m_nominal) {
        m_nominal = byCounter;
        return true;
    }
    // The mean of the spans near the median is free of the rounding of single dates.
    double sum = 0.0;
    int count = 0;
    for (const double span : spans)
        if (std::abs(span - m_nominal) < 0.25 * m_nominal) {
            sum += span;
            ++count;
        }
    m_nominal = sum / count;
    return true;
}

bool CImuReader::ReadRaw(SRaw& raw) {
    CPayload payload;
    while (m_stream.Next(payload)) {
        raw.time = payload.GetSeconds() + m_stream.GetTimeOffset();
        if (!(std::abs(raw.time) < kLargestDate)) continue;
        raw.counter = payload.Get<std::uint16_t>(kImuLayout.OffsetOf("FrameCounter"));
        constexpr std::array<std::uint32_t, 3> fog{kImuLayout.OffsetOf("Fog 1"), kImuLayout.OffsetOf("Fog 2"),
                                                   kImuLayout.OffsetOf("Fog 3")};
        constexpr std::array<std::uint32_t, 3> acc{kImuLayout.OffsetOf("Acc 1"), kImuLayout.OffsetOf("Acc 2"),
                                                   kImuLayout.OffsetOf("Acc 3")};
        Vector3d angle, velocity;
        for (std::size_t i = 0; i < 3; ++i) {
            angle[static_cast<int>(i)] = payload.Get<std::int32_t>(fog[i]);
            velocity[static_cast<int>(i)] = payload.Get<std::int32_t>(acc[i]);
        }
        raw.angle = m_angleScale * angle;
        raw.velocity = m_velocityScale * velocity;
        return true;
    }
    return false;
}

bool CImuReader::Take(SImuSample& sample) {
    while (m_hasNext) {
        const SRaw raw = m_next;
        m_hasNext = ReadRaw(m_next);
        if (raw.time - m_last > kImplausibleJump && m_hasNext && m_next.time < raw.time &&
            m_next.time > m_last)
            continue;
        const auto span = m_clock.Add(raw.time, raw.counter);
        if (!span) continue;
        sample = {};
        sample.time = m_last = span->time;
        sample.span = span->length;
        sample.gap = span->lost > 0 ? std::max(span->length - m_nominal, 0.0) : 0.0;
        sample.angle = raw.angle;
        sample.velocity = raw.velocity;
        return true;
    }
    return false;
}

bool CImuReader::Next(SImuSample& sample) {
    if (m_nextFilled < m_filled.size()) {
        sample = m_filled[m_nextFilled++];
        return true;
    }
    if (!m_ahead.empty()) {
        sample = m_ahead.front();
        m_ahead.pop_front();
    } else if (!Take(sample)) {
        return false;
    }
    if (!(sample.gap > 0.0)) {
        m_bridge.Learn(sample);
        return true;
    }
    const double wanted = sample.time + CGapBridge::GetLookAhead(sample.gap) + 2.0 * m_nominal;
    SImuSample next;
    while ((m_ahead.empty() ? sample.time : m_ahead.back().time) < wanted && Take(next))
        m_ahead.push_back(next);
    std::vector<SImuSample> after;
    for (const SImuSample& s : m_ahead) {
        if (s.gap > 0.0) break;
        after.push_back(s);
    }
    m_filled.clear();
    m_bridge.Fill(sample, after, m_nominal, m_filled);
    m_nextFilled = 0;
    return Next(sample);
}

} // namespace Morvex
