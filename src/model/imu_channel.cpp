#include "model/imu_channel.h"

#include "xpf/file.h"
#include "xpf/packet.h"
#include "xpf/tarin_layouts.h"

namespace Metier_Tarvel {

using namespace Persistance_Xpf;

CImuChannel::CImuChannel() = default;
CImuChannel::~CImuChannel() = default;

bool CImuChannel::Open(const std::filesystem::path& path) {
    bool outdated = false;
    m_channel = nullptr;
    m_packet.reset();
    m_file = OpenXpfFile(path, EFileKind::tarin, outdated);
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

} // namespace Metier_Tarvel
