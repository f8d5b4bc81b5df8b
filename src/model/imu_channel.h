// What the model asks of the inertial packets of a recording.
#pragma once

#include "foundation/date_time.h"
#include "foundation/thread.h"

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

    // False also for a file without an IMU channel. Whoever reads the channel walks a recording that declares
    // it and holds no packet of it to its end: the event ends that, and must outlive the object.
    bool Open(const std::filesystem::path& path, const Outils::CEvent* interrupt = nullptr);

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

// What the inertial packets of a recording say about it, read on the caller's thread until the event is set.

// In hertz, over at most 100 packets after the first. True only for one that an INS has; `frequency` is what
// was measured all the same, and 0 if nothing was.
bool MeasureImuFrequency(const std::filesystem::path& path, std::int32_t& frequency,
                         const Outils::CEvent* interrupt = nullptr);
// The equipment code in the first packet; false when there is none.
bool ReadImuEquipment(const std::filesystem::path& path, std::int32_t& code,
                      const Outils::CEvent* interrupt = nullptr);
// 0 plain, 1 or 2 ciphered, by the first packet; 0 when there is none.
std::int32_t ReadImuCipherMode(const std::filesystem::path& path, const Outils::CEvent* interrupt = nullptr);

} // namespace Metier_Tarvel
