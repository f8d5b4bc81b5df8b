// What the model asks of the inertial packets of a recording.
#pragma once

#include "foundation/date_time.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace Persistance_Xpf {
class CXpfChannel;
class CXpfFile;
class CXpfPacket;
} // namespace Persistance_Xpf

namespace Metier_Tarvel {

// The "IMU" channel of an input data file, one packet at a time. Every operation is false on failure.
class CImuChannel {
  public:
    CImuChannel();
    ~CImuChannel();
    CImuChannel(const CImuChannel&) = delete;
    CImuChannel& operator=(const CImuChannel&) = delete;

    // False also for a file without an IMU channel.
    bool Open(const std::filesystem::path& path);

    bool ReadFirst();
    bool ReadNext();
    bool ReadLast();

    // Of the packet read last.
    std::uint32_t GetNumber() const { return m_number; } // running number in the channel
    bool GetDate(Outils_Temps::CDateTimeSpan& date) const;
    bool GetFrameCounter(std::uint16_t& counter) const;
    bool GetSystemType(std::uint8_t& type) const;
    bool GetDataType(std::uint8_t& type) const;

  private:
    std::unique_ptr<Persistance_Xpf::CXpfFile> m_file;
    Persistance_Xpf::CXpfChannel* m_channel = nullptr; // m_file's
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_packet;
    std::uint32_t m_number = 0;
};

} // namespace Metier_Tarvel
