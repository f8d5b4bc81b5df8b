#include "simulator/mission_writer.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

#include "recording/recording_writer.h"
#include "simulator/inertial_unit.h"
#include "simulator/recorder.h"
#include "simulator/sensors.h"
#include "simulator/truth_writer.h"

#include <algorithm>

namespace Simulation {

using Enregistrement::ChannelHandle;
using Enregistrement::CRecordingWriter;
using Outils_Temps::kTicksPerSecond;

namespace {

struct SWrittenSensor {
    CSensor sensor;
    ChannelHandle handle;
};

// All sensors, merged by date; of equal dates in channel order.
class CSensors {
  public:
    CSensors(const CMission& mission, const CRecordingWriter& writer) {
        for (const std::string_view channel : mission.GetChannels())
            if (channel != "IMU")
                m_sensors.push_back({CSensor(mission, channel), *writer.FindChannel(channel)});
        FindNext();
    }

    // Writes what is dated before `date`.
    bool WriteBefore(std::int64_t date, CRecorder& recorder) {
        while (m_next && m_next->sensor.GetNextDate() < date) {
            const auto payload = m_next->sensor.MakePacket(m_cursor);
            if (!payload.empty() && !recorder.Write(m_next->handle, payload)) return false;
            FindNext();
        }
        return true;
    }

  private:
    void FindNext() {
        const auto next = std::ranges::min_element(
            m_sensors, {}, [](const SWrittenSensor& written) { return written.sensor.GetNextDate(); });
        m_next = next == m_sensors.end() ? nullptr : &*next;
    }

    std::vector<SWrittenSensor> m_sensors;
    SWrittenSensor* m_next = nullptr;
    CTrackCursor m_cursor;
};

bool WriteRecording(const CMission& mission, const std::filesystem::path& path) {
    CRecordingWriter writer;
    if (!writer.Create(path, mission.GetChannels())) return false;
    const ChannelHandle imu = *writer.FindChannel("IMU");
    CInertialUnit unit(mission);
    CRecorder recorder(mission.GetOptions(), writer);
    CSensors sensors(mission, writer);
    const auto end = static_cast<std::int64_t>(mission.GetDuration() * static_cast<double>(kTicksPerSecond));
    while (unit.GetNextDate() <= end) {
        const std::int64_t date = unit.GetNextDate();
        if (!sensors.WriteBefore(date, recorder)) return false;
        if (!recorder.WriteImu(imu, unit.MakePacket(), static_cast<double>(date) / kTicksPerSecond))
            return false;
    }
    return sensors.WriteBefore(end + 1, recorder) && writer.Close();
}

} // namespace

bool WriteMission(const CMission& mission, const std::filesystem::path& path,
                  const std::filesystem::path& truthPath, std::string& error) {
    if (!WriteRecording(mission, path)) {
        error = Outils_Texte::FormatText(Outils_Texte::EText::simNotWritten, {Outils_Fichiers::ToText(path)});
        return false;
    }
    if (!truthPath.empty() && !WriteTruth(mission, truthPath)) {
        error = Outils_Texte::FormatText(Outils_Texte::EText::simNotWritten,
                                         {Outils_Fichiers::ToText(truthPath)});
        return false;
    }
    return true;
}

bool WriteMission(const SMissionOptions& options, const std::filesystem::path& path,
                  const std::filesystem::path& truthPath, std::string& error) {
    error = options.Validate();
    return error.empty() && WriteMission(CMission(options), path, truthPath, error);
}

} // namespace Simulation
