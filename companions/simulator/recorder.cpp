#include "simulator/recorder.h"

#include <cmath>
#include <cstring>

namespace Simulation {

using Enregistrement::ChannelHandle;
using Outils_Temps::kTicksPerSecond;

bool CRecorder::Write(ChannelHandle handle, std::span<const std::uint8_t> payload, double late) {
    if (m_options.clockDrift == 0 && late == 0) return m_writer.WriteRaw(handle, payload);
    m_payload.assign(payload.begin(), payload.end());
    std::int64_t date;
    std::memcpy(&date, m_payload.data(), sizeof date);
    date += std::llround(static_cast<double>(date) * m_options.clockDrift * 1e-6 + late * kTicksPerSecond);
    std::memcpy(m_payload.data(), &date, sizeof date);
    return m_writer.WriteRaw(handle, m_payload);
}

bool CRecorder::WriteImu(ChannelHandle handle, std::span<const std::uint8_t> payload, double time) {
    if (m_options.IsOutage("IMU", time) || Happens(m_options.imuLost)) return true;
    double late = Happens(m_options.imuLate) ? m_options.imuLateBy : 0;
    if (m_options.imuJitter > 0) late += std::abs(m_random.Normal()) * m_options.imuJitter;
    return Write(handle, payload, late) &&
           (!Happens(m_options.imuDoubled) || Write(handle, payload, late + 1e-4));
}

} // namespace Simulation
