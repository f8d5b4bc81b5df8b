// Small recordings for the tests of this room: a dense and a sparse channel with known values.
#pragma once

#include "foundation/date_time.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"
#include "xpf/records.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace test {

using Outils_Temps::CDateTimeSpan;

inline CDateTimeSpan Seconds(double seconds) { return CDateTimeSpan::FromSeconds(seconds); }

constexpr std::uint16_t kDepthNumber = 8; // rows of the channel table
constexpr std::uint16_t kGpsNumber = 5;
constexpr std::uint16_t kUtcNumber = 13;

// Gives a recording the marks of a former layout: a channel name and a packet version of no table.
inline void MakeOutdated(const std::filesystem::path& path) {
    using namespace Persistance_Xpf;
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    const int channels = file.seekg(kChannelCountOffset).get(); // below 256
    file.seekp(kFileHeaderSize + 2).put('X');
    file.seekp(kFileHeaderSize + channels * kChannelRecordSize + 2).put(99);
    EXPECT_TRUE(file.flush().good());
}

class CTestRecording {
  public:
    explicit CTestRecording(std::filesystem::path path) : m_path(std::move(path)) {
        constexpr std::string_view channels[] = {"IMU", "DEPTH", "GPS_1", "UTC"};
        EXPECT_TRUE(m_writer.Create(m_path, channels));
    }

    const std::filesystem::path& GetPath() const { return m_path; }
    Enregistrement::CRecordingWriter& GetWriter() { return m_writer; }

    void Depth(double seconds, float depth, std::uint8_t rejection = 1) {
        Depth(Seconds(seconds), depth, rejection);
    }
    void Depth(CDateTimeSpan date, float depth, std::uint8_t rejection) {
        Persistance_Xpf::CXpfTarinDepthPacketV1 packet;
        packet.SetDate(0, date);
        packet.SetUInt8(2, rejection);
        packet.SetFloat(3, depth);
        EXPECT_TRUE(m_writer.Write("DEPTH", packet));
    }
    void Gps(double seconds, double latitude, double longitude, float altitude) {
        Persistance_Xpf::CXpfTarinGpsPacketV2 packet;
        packet.SetDate(0, Seconds(seconds));
        packet.SetDouble(5, latitude);
        packet.SetDouble(6, longitude);
        packet.SetFloat(7, altitude);
        EXPECT_TRUE(m_writer.Write("GPS_1", packet));
    }
    void Utc(double seconds, std::uint16_t year, int hour, int minute, float second) {
        Persistance_Xpf::CXpfTarinUtcPacketV2 packet;
        packet.SetDate(0, Seconds(seconds));
        packet.SetUInt16(3, year);
        packet.SetUInt8(4, 3);
        packet.SetUInt8(5, 14);
        packet.SetUInt8(6, static_cast<std::uint8_t>(hour));
        packet.SetUInt8(7, static_cast<std::uint8_t>(minute));
        packet.SetFloat(8, second);
        EXPECT_TRUE(m_writer.Write("UTC", packet));
    }
    // A packet of the inertial unit of this equipment.
    void Imu(double seconds, int equipment, int number = 0) {
        Persistance_Xpf::CXpfTarinImuPacketV2 packet;
        packet.SetDate(0, Seconds(seconds));
        packet.SetUInt16(1, static_cast<std::uint16_t>(number));
        packet.SetUInt8(2, static_cast<std::uint8_t>(equipment));
        EXPECT_TRUE(m_writer.Write("IMU", packet));
    }
    void Flush() { EXPECT_TRUE(m_writer.Flush()); }

  private:
    std::filesystem::path m_path;
    Enregistrement::CRecordingWriter m_writer;
};

} // namespace test
