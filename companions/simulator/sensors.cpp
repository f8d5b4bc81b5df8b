#include "simulator/sensors.h"

#include "simulator/earth.h"
#include "simulator/sensor_rows.h"
#include "xpf/records.h"
#include "xpf/tarin_layouts.h"

#include <Eigen/Geometry>

#include <cmath>

namespace Simulation {

using Outils_Temps::kTicksPerSecond;

namespace {

std::uint64_t GetStream(std::string_view channel) {
    const Persistance_Xpf::SChannelLayout* layout = Persistance_Xpf::FindChannelLayout(channel);
    return static_cast<std::uint64_t>(layout - Persistance_Xpf::GetChannelLayouts().data());
}

double GetRate(const SMissionOptions& options, std::string_view channel) {
    const SChannelOptions* own = options.FindChannelOptions(channel);
    return own && own->rate > 0 ? own->rate : GetUsualRate(channel);
}

} // namespace

CSensor::CSensor(const CMission& mission, std::string_view channel)
    : m_mission(&mission),
      m_row(FindSensorRow(channel)),
      m_channel(channel),
      m_rate(GetRate(mission.GetOptions(), channel)),
      m_delay(0),
      m_hiddenDelay(0),
      m_interval(1 / m_rate),
      m_random(mission.GetOptions().seed, GetStream(channel)) {
    if (const SChannelOptions* own = mission.GetOptions().FindChannelOptions(channel)) {
        m_delay = own->delay;
        m_hiddenDelay = own->hiddenDelay;
    }
    m_index = -1;
    // A recording's clock starts before its first packet.
    do Schedule();
    while (m_nextDate <= 0);
}

void CSensor::Schedule() {
    ++m_index;
    const double seconds = static_cast<double>(m_index) / m_rate + m_row->phase / m_rate;
    m_nextDate = std::llround(seconds * static_cast<double>(kTicksPerSecond));
}

double CSensor::GetTime() const {
    return static_cast<double>(m_date) / kTicksPerSecond - m_delay - m_hiddenDelay;
}

std::span<const std::uint8_t> CSensor::MakePacket(CTrackCursor& cursor) {
    m_date = m_nextDate;
    Schedule();
    const SMissionOptions& options = m_mission->GetOptions();
    const double time = GetTime();
    // Drawn for every packet, so that the errors of the others stay what they are.
    m_outlier = m_random.Uniform() < options.outliers;
    if (options.IsOutage(m_channel, time)) return {};

    if (m_count > 0 && options.IsJammed(m_channel, time)) {
        m_payload.PutDate(m_date);
        return m_payload.Get();
    }

    // The shared cursor moves forward with the dates; a delayed look back would pull it to and fro.
    m_state = m_mission->GetState(time, m_delay + m_hiddenDelay > 0 ? m_ownCursor : cursor);
    if (IsUnderWater() && !m_row->underWater) return {};
    m_payload.Reset(m_row->layout->payloadSize);
    m_payload.PutDate(m_date);
    m_row->fill(*this, m_payload);
    ++m_count;
    return m_payload.Get();
}

bool CSensor::IsUnderWater() const {
    return GetOptions().vehicle == EVehicle::auv &&
           m_state.motion.altitude < GetOptions().geoidSeparation - 1;
}

double CSensor::MakeError(double deviation) {
    double error = m_random.Normal() * GetOptions().GetNoise();
    if (m_outlier) error += std::copysign(m_random.Uniform(15, 60), error);
    return error * deviation;
}

Vector3d CSensor::StepWander(double deviation, double time) {
    Vector3d error;
    for (Eigen::Index i = 0; i < 3; ++i) {
        CWander& wander = m_wander[static_cast<std::size_t>(i)];
        if (m_count == 0) {
            wander = CWander(deviation, time);
            wander.Start(m_random);
        }
        error[i] = wander.Step(m_interval, m_random);
    }
    return error;
}

Vector3d CSensor::StepHiddenError() {
    constexpr double kTime = 120, kBetweenJumps = 300; // seconds
    const SMissionOptions& options = GetOptions();
    Vector3d error = Vector3d::Zero();
    if (options.gpsWander > 0) {
        error = StepWander(options.gpsWander, kTime);
        error.z() = 0;
    }
    if (options.gpsJumps > 0) {
        const double time = GetTime();
        if (time >= m_nextJump) {
            const double angle = m_random.Uniform(0, 2 * kPi);
            if (m_nextJump >= 0) {
                m_jump = options.gpsJumps * Vector3d{std::cos(angle), std::sin(angle), 0};
                m_jumpEnd = time + m_random.Uniform(10, 30);
            }
            m_nextJump = time + kBetweenJumps * m_random.Uniform(0.5, 1.5);
        }
        if (time < m_jumpEnd) error += m_jump;
    }
    return error;
}

CSensor::SPoint CSensor::GetPointAt(EMount mount) const {
    const Vector3d arm = m_state.attitude * GetOptions().leverArms[static_cast<std::size_t>(mount)];
    return {m_state.latitude + arm.x() / m_state.meridianRadius,
            m_state.longitude - arm.y() / (m_state.normalRadius * std::cos(m_state.latitude)),
            m_state.motion.altitude + arm.z()};
}

Vector3d CSensor::GetVelocityAt(EMount mount) const {
    return m_state.attitude.transpose() * m_state.motion.velocity +
           m_state.earthRelativeRate.cross(GetOptions().leverArms[static_cast<std::size_t>(mount)]);
}

double GetUsualRate(std::string_view channel) {
    const SSensorRow* row = FindSensorRow(channel);
    return row ? row->rate : 0;
}

double GetBytesPerSecond(const SMissionOptions& options) {
    using Persistance_Xpf::kPacketOverhead;
    double bytes =
        options.imuRate * static_cast<double>(Persistance_Xpf::kImuLayout.payloadSize + kPacketOverhead);
    for (const std::string_view channel : options.GetChannels())
        if (const SSensorRow* row = FindSensorRow(channel))
            bytes +=
                GetRate(options, channel) * static_cast<double>(row->layout->payloadSize + kPacketOverhead);
    return bytes;
}

} // namespace Simulation
