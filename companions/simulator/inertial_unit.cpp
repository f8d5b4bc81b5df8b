#include "simulator/inertial_unit.h"

#include "simulator/earth.h"
#include "simulator/grades.h"
#include "xpf/tarin_layouts.h"

namespace Simulation {

namespace {

using Compagnon::kRadiansPerFogCount;
using Compagnon::kSpeedPerAccCount;
using Outils_Temps::kTicksPerSecond;
using Persistance_Xpf::kImuLayout;

constexpr std::uint64_t kStream = 101; // beyond those of the channels and of the route
constexpr double kWanderStep = 1;      // seconds between two looks at the wandering errors
constexpr int kFrameCycle = 6000;
constexpr double kMicroG = 9.80665e-6;

constexpr std::array<SPlace, 6> kPlaces = {PlaceOf(kImuLayout, "Fog 1"), PlaceOf(kImuLayout, "Fog 2"),
                                           PlaceOf(kImuLayout, "Fog 3"), PlaceOf(kImuLayout, "Acc 1"),
                                           PlaceOf(kImuLayout, "Acc 2"), PlaceOf(kImuLayout, "Acc 3")};

// Gauss-Legendre rules over -1 to 1 with weights that sum to 1.
struct SNode {
    double node, weight;
};
constexpr SNode kTwoNodes[] = {{-0.5773502691896257, 0.5}, {0.5773502691896257, 0.5}};
constexpr SNode kThreeNodes[] = {
    {-0.7745966692414834, 5.0 / 18}, {0, 8.0 / 18}, {0.7745966692414834, 5.0 / 18}};

// Two points err by step^5 / 4320 of the fourth derivative, three by step^7 / 2016000 of the sixth: both stay
// below a tenth of a raw unit, and each point costs a fair share of the time that a recording takes.
std::span<const SNode> GetNodes(double step) {
    constexpr double kShort = 0.01001; // seconds
    if (step < kShort) return kTwoNodes;
    return kThreeNodes;
}

} // namespace

CInertialUnit::CInertialUnit(const CMission& mission)
    : m_mission(&mission),
      m_rate(mission.GetOptions().imuRate),
      m_random(mission.GetOptions().seed, kStream) {
    const SGrade& grade = GetGrade(mission.GetOptions().grade);
    const double perHour =
        kRadiansPerDegree / 3600 / kRadiansPerFogCount; // raw units per second for a degree per hour
    const double perRootHour = kRadiansPerDegree / 60 / kRadiansPerFogCount;
    const double perMicroG = kMicroG / kSpeedPerAccCount;
    for (std::size_t i = 0; i < m_axes.size(); ++i) {
        SAxis& axis = m_axes[i];
        const bool gyro = i < 3;
        const double unit = gyro ? perHour : perMicroG;
        axis.bias = (gyro ? grade.gyroBias : grade.accBias) * unit * m_random.Normal();
        axis.scale = (gyro ? grade.gyroScale : grade.accScale) * 1e-6 * m_random.Normal();
        axis.walk = gyro ? grade.gyroWalk * perRootHour : grade.accNoise * perMicroG;
        axis.wander = CWander((gyro ? grade.gyroWander : grade.accWander) * unit, grade.wanderTime);
        axis.wander.Start(m_random);
    }
    m_payload.Reset(kImuLayout.payloadSize);
}

std::int64_t CInertialUnit::GetDate(std::int64_t count) const {
    // Split, so that no product overflows however long the mission.
    return count / m_rate * kTicksPerSecond + count % m_rate * kTicksPerSecond / m_rate;
}

double CInertialUnit::Count(SAxis& axis, double exact, double step) {
    const double value = exact * (1 + axis.scale) + (axis.bias + axis.wander.Get()) * step +
                         axis.walk * std::sqrt(step) * m_random.Normal() + axis.remainder;
    const double count = std::nearbyint(value);
    axis.remainder = value - count;
    return count;
}

std::span<const std::uint8_t> CInertialUnit::MakePacket() {
    const std::int64_t beginDate = GetDate(m_count), endDate = GetDate(m_count + 1);
    const double begin = static_cast<double>(beginDate) / kTicksPerSecond;
    const double step = static_cast<double>(endDate - beginDate) / kTicksPerSecond;
    const double middle = begin + step / 2;

    Vector3d rotation = Vector3d::Zero(), velocity = Vector3d::Zero();
    for (const auto& [node, weight] : GetNodes(step)) {
        const SVehicleState state = m_mission->GetUnitState(middle + node * step / 2, m_cursor);
        rotation += weight * step * state.inertialRate;
        velocity += weight * step * state.force;
    }
    const double exact[6] = {rotation.x() / kRadiansPerFogCount, rotation.y() / kRadiansPerFogCount,
                             rotation.z() / kRadiansPerFogCount, velocity.x() / kSpeedPerAccCount,
                             velocity.y() / kSpeedPerAccCount,   velocity.z() / kSpeedPerAccCount};

    if (begin >= 1 && std::floor(begin) != std::floor(begin - step))
        for (SAxis& axis : m_axes) axis.wander.Step(kWanderStep, m_random);
    m_payload.PutDate(endDate);
    m_payload.Put(PlaceOf(kImuLayout, "FrameCounter"), static_cast<double>(m_count % kFrameCycle));
    m_payload.Put(PlaceOf(kImuLayout, "System type"), m_mission->GetOptions().equipment);
    for (std::size_t i = 0; i < 6; ++i) m_payload.Put(kPlaces[i], Count(m_axes[i], exact[i], step));
    ++m_count;
    return m_payload.Get();
}

} // namespace Simulation
