#include "morvex/packet_stream.h"

#include "xpf/packets.h"
#include "xpf/stream_walk.h"

namespace Morvex {

using namespace Persistance_Xpf;

bool CPacketStream::Open(const SChannelPlan& plan, const SPacketLayout& layout) {
    m_file = OpenXpfFile(plan.path, EFileKind::tarin).file;
    if (!m_file) return false;
    const CXpfChannel* channel = m_file->FindChannelByName(plan.channel);
    if (!channel || channel->GetPacketType() != layout.type) return false;
    m_channel = channel->GetNumber();
    m_payloadSize = layout.payloadSize;
    m_timeOffset = plan.timeOffset;
    m_damages = 0;
    const CXpfFilePosition start = m_file->GetDataStart();
    return start.IsKnown() && m_file->Seek(start.Get());
}

bool CPacketStream::Next(CPayload& payload) {
    for (;;) {
        SPacketHeader header;
        std::span<const std::uint8_t> bytes;
        switch (CStreamWalk(*m_file).Next(header, bytes)) {
        case EPacketRead::whole:
            if (header.channel != m_channel || bytes.size() != m_payloadSize) continue;
            payload = CPayload(bytes);
            return true;
        case EPacketRead::torn:
        case EPacketRead::damaged: break;
        }
        // A torn packet in the middle of the file is a damaged size: what follows is searched as well.
        const std::int64_t position = m_file->GetPosition();
        if (position >= m_file->GetFileSize()) return false;
        if (!m_file->Seek(position + 1) || !m_file->SearchPacketForward(header)) return false;
        ++m_damages;
    }
}

bool CPacketStream::GetLastDate(double& seconds) {
    const std::int64_t position = m_file->GetPosition();
    CXpfChannel* channel = m_file->FindChannelByNumber(m_channel);
    const std::unique_ptr<CXpfPacket> packet = channel ? channel->CreatePacket() : nullptr;
    CDateTimeSpan date;
    const bool found = packet && channel->SeekLastPacket(nullptr) && channel->ReadNextPacket(*packet) &&
                       packet->GetDate(0, date);
    if (found) seconds = date.GetTotalSeconds() + m_timeOffset;
    m_file->Seek(position);
    return found;
}

} // namespace Morvex
