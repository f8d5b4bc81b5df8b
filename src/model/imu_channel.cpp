#include "model/imu_channel.h"

#include "xpf/file.h"
#include "xpf/packet.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>

namespace Metier_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::uint32_t kFrequencySpan = 100; // packets over which the frequency is measured
constexpr std::int32_t kFrequencies[] = {200, 100, 50, 25, 20};

// Frames between two values of the counter, which runs through 6000 values.
int CountFrames(std::uint16_t first, std::uint16_t last) {
    constexpr int kPeriod = 6000;
    const auto lift =
        last < first ? static_cast<std::uint16_t>(((first - last - 1) / kPeriod + 1) * kPeriod) : 0;
    return static_cast<std::uint16_t>(last + lift - first);
}

} // namespace

CImuChannel::CImuChannel() = default;
CImuChannel::~CImuChannel() = default;

bool CImuChannel::Open(const std::filesystem::path& path, const Outils::CEvent* interrupt) {
    m_channel = nullptr;
    m_packet.reset();
    m_file = OpenXpfFile(path, EFileKind::tarin, interrupt).file;
    if (!m_file) return false;
    m_channel = m_file->FindChannelByName("IMU");
    if (m_channel) m_packet = m_channel->CreatePacket();
    return m_packet != nullptr;
}

bool CImuChannel::ReadFirst() { return m_packet && m_channel->SeekFirstPacket(nullptr) && ReadNext(); }

bool CImuChannel::ReadLast() { return m_packet && m_channel->SeekLastPacket(nullptr) && ReadNext(); }

bool CImuChannel::ReadNext() {
    SPacketHeader header;
    if (!m_packet || !m_channel->ReadNextPacket(*m_packet, &header)) return false;
    m_number = header.number;
    return true;
}

bool CImuChannel::GetDate(Outils_Temps::CDateTimeSpan& date) const {
    return m_packet && m_packet->GetDate(kImuLayout.IndexOf("Date"), date);
}

bool CImuChannel::GetFrameCounter(std::uint16_t& counter) const {
    return m_packet && m_packet->GetUInt16(kImuLayout.IndexOf("FrameCounter"), counter);
}

bool CImuChannel::GetSystemType(std::uint8_t& type) const {
    return m_packet && m_packet->GetUInt8(kImuLayout.IndexOf("System type"), type);
}

bool CImuChannel::GetDataType(std::uint8_t& type) const {
    return m_packet && m_packet->GetUInt8(kImuLayout.IndexOf("Data type"), type);
}

bool MeasureImuFrequency(const std::filesystem::path& path, std::int32_t& frequency,
                         const Outils::CEvent* interrupt) {
    frequency = 0;
    CImuChannel imu;
    Outils_Temps::CDateTimeSpan firstDate, lastDate;
    std::uint16_t firstCounter = 0, lastCounter = 0;
    if (!imu.Open(path, interrupt) || !imu.ReadFirst() || !imu.GetDate(firstDate) ||
        !imu.GetFrameCounter(firstCounter))
        return false;
    // By number, so that a gap counts as the packets that are missing in it; by packets too, so that damaged
    // numbers that do not grow cannot lead through the whole file.
    const std::uint64_t lastNumber = std::uint64_t{imu.GetNumber()} + kFrequencySpan;
    for (std::uint32_t read = 0; read < kFrequencySpan && imu.GetNumber() < lastNumber; ++read)
        if (!imu.ReadNext()) return false;
    if (!imu.GetDate(lastDate) || !imu.GetFrameCounter(lastCounter)) return false;

    const Outils_Temps::CDateTimeSpan span = lastDate - firstDate;
    if (!span.IsValid() || span.GetTicks() <= 0) return false;
    const double measured = static_cast<double>(CountFrames(firstCounter, lastCounter)) /
                                static_cast<double>(span.GetTicks()) * Outils_Temps::kTicksPerSecond +
                            0.5;
    frequency = static_cast<std::int32_t>(std::min(measured, 2e9));
    return std::find(std::begin(kFrequencies), std::end(kFrequencies), frequency) != std::end(kFrequencies);
}

bool ReadImuEquipment(const std::filesystem::path& path, std::int32_t& code,
                      const Outils::CEvent* interrupt) {
    CImuChannel imu;
    std::uint8_t systemType = 0;
    if (!imu.Open(path, interrupt) || !imu.ReadFirst() || !imu.GetSystemType(systemType)) return false;
    code = systemType;
    return true;
}

std::int32_t ReadImuCipherMode(const std::filesystem::path& path, const Outils::CEvent* interrupt) {
    std::uint8_t dataType = 0;
    CImuChannel imu;
    const bool known = imu.Open(path, interrupt) && imu.ReadFirst() && imu.GetDataType(dataType);
    return known && (dataType == 1 || dataType == 2) ? dataType : 0;
}

} // namespace Metier_Tarvel
