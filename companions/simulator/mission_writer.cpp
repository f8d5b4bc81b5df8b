#include "simulator/mission_writer.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

#include "recording/recording_writer.h"
#include "simulator/inertial_unit.h"
#include "simulator/sensors.h"

#include <algorithm>
#include <charconv>
#include <fstream>

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
    bool WriteBefore(std::int64_t date, CRecordingWriter& writer) {
        while (m_next && m_next->sensor.GetNextDate() < date) {
            const auto payload = m_next->sensor.MakePacket(m_cursor);
            if (!payload.empty() && !writer.WriteRaw(m_next->handle, payload)) return false;
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
    CSensors sensors(mission, writer);
    const auto end = static_cast<std::int64_t>(mission.GetDuration() * static_cast<double>(kTicksPerSecond));
    while (unit.GetNextDate() <= end) {
        if (!sensors.WriteBefore(unit.GetNextDate(), writer)) return false;
        if (!writer.WriteRaw(imu, unit.MakePacket())) return false;
    }
    return sensors.WriteBefore(end + 1, writer) && writer.Close();
}

void AppendNumber(std::string& line, double value, int decimals) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    line.append(text, end.ptr);
}

bool WriteTruth(const CMission& mission, const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    std::string lines = "time,latitude,longitude,altitude,speedNorth,speedEast,speedUp,heading,roll,pitch\n";
    CTrackCursor cursor;
    const double rate = mission.GetOptions().truthRate;
    for (std::int64_t i = 0; static_cast<double>(i) <= mission.GetDuration() * rate; ++i) {
        const STruth truth = mission.GetTruth(static_cast<double>(i) / rate, cursor);
        const std::pair<double, int> values[] = {
            {truth.time, 4},       {truth.latitude, 11}, {truth.longitude, 11}, {truth.altitude, 5},
            {truth.speedNorth, 6}, {truth.speedEast, 6}, {truth.speedUp, 6},    {truth.heading, 7},
            {truth.roll, 7},       {truth.pitch, 7}};
        for (const auto& [value, decimals] : values) {
            AppendNumber(lines, value, decimals);
            lines += ',';
        }
        lines.back() = '\n';
        if (lines.size() > 1 << 16) {
            file << lines;
            lines.clear();
        }
    }
    file << lines;
    file.close();
    return file.good();
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
