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
constexpr int kProbe = 64;                // spans looked at for the usual one

} // namespace

bool CImuReader::Open(const SRunPlan& plan) {
    if (!m_stream.Open(plan.imu, kImuLayout)) return false;
    m_angleScale = Compagnon::kRadiansPerFogCount * plan.unitToVessel;
    m_velocityScale = Compagnon::kSpeedPerAccCount * plan.unitToVessel;

    // The usual span is the median of the first ones: dates jitter, and packets may be missing.
    std::vector<double> spans;
    SRaw raw, last;
    if (!ReadRaw(last)) return false;
    while (static_cast<int>(spans.size()) < kProbe && ReadRaw(raw)) {
        if (raw.time > last.time) spans.push_back(raw.time - last.time);
        last = raw;
    }
    if (spans.empty()) return false;
    std::nth_element(spans.begin(), spans.begin() + static_cast<std::ptrdiff_t>(spans.size() / 2),
                     spans.end());
    m_nominal = spans[spans.size() / 2];

    if (!m_stream.Open(plan.imu, kImuLayout)) return false;
    m_hasNext = ReadRaw(m_next);
    m_last = m_next.time - m_nominal;
    return m_hasNext;
}

bool CImuReader::ReadRaw(SRaw& raw) {
    CPayload payload;
    while (m_stream.Next(payload)) {
        raw.time = payload.GetSeconds() + m_stream.GetTimeOffset();
        if (!(std::abs(raw.time) < kLargestDate)) continue;
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

bool CImuReader::Next(SImuSample& sample) {
    while (m_hasNext) {
        const SRaw raw = m_next;
        m_hasNext = ReadRaw(m_next);
        const double span = raw.time - m_last;
        if (!(span > 0.0)) continue;
        if (span > kImplausibleJump && m_hasNext && m_next.time < raw.time && m_next.time > m_last) continue;
        sample = {raw.time, span, raw.angle, raw.velocity};
        if (span > 1.75 * m_nominal) {
            sample.gap = span - m_nominal;
            sample.angle *= span / m_nominal;
            sample.velocity *= span / m_nominal;
        }
        m_last = raw.time;
        return true;
    }
    return false;
}

} // namespace Morvex
