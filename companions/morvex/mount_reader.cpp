#include "morvex/mount_reader.h"

#include "morvex/earth.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <cmath>

namespace Morvex {

using Persistance_Xpf::kPlatformOrientationLayout;

bool CMountReader::Open(const SMountPlan& plan) {
    m_plan = nullptr;
    m_count = 0;
    if (!m_stream.Open(plan.source, kPlatformOrientationLayout)) return false;
    m_plan = &plan;
    if (!Read(m_before)) m_plan = nullptr;
    m_after = m_before;
    return IsOpen();
}

bool CMountReader::Read(SPacket& packet) {
    constexpr auto at = [](std::string_view name) { return kPlatformOrientationLayout.OffsetOf(name); };
    CPayload payload;
    while (m_stream.Next(payload)) {
        const double heading = payload.Get<float>(at("Drift (heading)"));
        const double roll = payload.Get<float>(at("Roll")), pitch = payload.Get<float>(at("Pitch"));
        const double time = payload.GetSeconds() + m_stream.GetTimeOffset();
        if (!std::isfinite(heading + roll + pitch) || !(std::abs(time) < 1e9)) continue;
        if (m_count > 0 && !(time > packet.time)) continue;
        const Matrix3d platformToMount =
            MatrixOf({heading * kRadiansPerDegree, roll * kRadiansPerDegree, pitch * kRadiansPerDegree});
        const Matrix3d unitToVehicle = m_plan->mountToVehicle * platformToMount * m_plan->unitToPlatform;
        packet = {time, Quaterniond(Matrix3d(unitToVehicle.transpose()))};
        ++m_count;
        return true;
    }
    return false;
}

Quaterniond CMountReader::GetVehicleToUnit(double time) {
    if (!IsOpen()) return Quaterniond::Identity();
    while (m_after.time < time) {
        SPacket next = m_after;
        if (!Read(next)) return m_after.vehicleToUnit;
        m_before = m_after;
        m_after = next;
    }
    if (!(m_after.time > m_before.time)) return m_after.vehicleToUnit;
    const double share = std::clamp((time - m_before.time) / (m_after.time - m_before.time), 0.0, 1.0);
    return m_before.vehicleToUnit.slerp(share, m_after.vehicleToUnit);
}

Vector3d CMountReader::ToUnit(const Vector3d& point, double time) {
    if (!IsOpen()) return point;
    return m_plan->ToUnit(point, GetVehicleToUnit(time));
}

} // namespace Morvex
