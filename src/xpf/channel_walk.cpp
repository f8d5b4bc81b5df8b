#include "xpf/channel_walk.h"

#include "xpf/block_reader.h"
#include "xpf/file.h"
#include "xpf/stride.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace Persistance_Xpf {

CChannelWalk::CChannelWalk(CXpfChannel& channel, std::uint32_t payloadSize)
    : m_channel(channel), m_size(payloadSize), m_copy(kPacketOverhead + payloadSize) {}

std::size_t CChannelWalk::TakeHeld() {
    CBlockReader& reader = *m_channel.m_file.m_reader;
    const std::uint32_t size = m_size + kPacketOverhead;
    const std::uint16_t number = m_channel.m_number;
    std::int64_t next = m_channel.m_current.Get(), last = 0;
    CStride stride;
    std::size_t count = 0;
    if (next == 0) return 0;
    for (std::int64_t position = next;
         count < m_run.size() && position < m_limit && reader.Holds(position, size);) {
        const std::uint8_t* packet = reader.GetHeld(position);
        const std::uint32_t found = LoadPacketSize(packet);
        if (LoadWord(packet) >> 16 != number) {
            if (found < kPacketOverhead) break;
            position += found;
            continue;
        }
        if (found != size) break;
        m_run[count++] = packet + kPacketHeaderSize;
        last = position;
        const std::uint32_t link = LoadWord(packet + offsetof(SPacketHeader, forwardLink));
        position += stride.Take(link != 0 ? link : size);
        next = position;
    }
    if (count == 0) return 0;
    m_channel.m_last = std::max(m_channel.m_last, CXpfFilePosition(last));
    m_channel.m_previous = last;
    m_channel.m_current = next;
    reader.MoveTo(next);
    return count;
}

void CChannelWalk::MoveTo(std::int64_t position) {
    if (m_channel.m_file.Seek(position)) m_channel.m_current = position;
}

void CChannelWalk::Fetch(std::int64_t size) {
    m_channel.m_file.m_reader->Fetch(GetPlace(), static_cast<std::size_t>(size));
}

void CChannelWalk::SetApart(bool isApart, std::int64_t size) {
    m_channel.m_file.m_reader->SetLone(isApart);
    if (isApart) m_channel.m_file.m_reader->Announce(GetPlace(), size);
}

bool CChannelWalk::Probe(std::int64_t position, std::span<std::uint8_t> bytes) const {
    return m_channel.m_file.m_reader->Probe(position, bytes.data(), bytes.size());
}

bool CChannelWalk::ReadPayload(std::int64_t position, std::uint8_t* payload) const {
    const CBlockReader& reader = *m_channel.m_file.m_reader;
    std::array<std::uint8_t, 512> packet;
    std::vector<std::uint8_t> larger;
    const std::size_t size = m_size + kPacketOverhead;
    if (size > packet.size()) larger.resize(size);
    std::uint8_t* bytes = size > packet.size() ? larger.data() : packet.data();
    if (!reader.Probe(position, bytes, size) || !CheckHeaderBytes(bytes) || LoadPacketSize(bytes) != size ||
        LoadWord(bytes) >> 16 != m_channel.m_number)
        return false;
    std::memcpy(payload, bytes + kPacketHeaderSize, m_size);
    return true;
}

const std::uint8_t* CChannelWalk::ViewNext() {
    if (!m_channel.m_current.IsKnown() || m_size > CXpfChannel::kLargestInBlock) return nullptr;
    CBlockReader& reader = *m_channel.m_file.m_reader;
    const std::uint32_t size = m_size + kPacketOverhead;
    std::int64_t position = m_channel.m_current.Get();
    const std::uint8_t* packet = m_channel.m_file.WalkToChannel(m_channel.m_number, position);
    if (!packet || LoadPacketSize(packet) != size) return nullptr;
    if (!reader.Holds(position, size)) {
        packet = reader.View(position, size);
        if (!packet || LoadPacketSize(packet) != size) return nullptr;
    }
    SPacketHeader header;
    std::memcpy(&header, packet, sizeof header);
    m_channel.StepOn(position, header);
    return reader.Seek(m_channel.m_current.Get()) ? packet + kPacketHeaderSize : nullptr;
}

const std::uint8_t* CChannelWalk::CopyNext() {
    std::uint32_t sizeRead = 0;
    std::uint8_t* payload = m_copy.data() + kPacketHeaderSize;
    std::memset(payload, 0, m_size);
    return m_channel.ReadNextPacket(sizeRead, nullptr, payload, m_size) ? payload : nullptr;
}

} // namespace Persistance_Xpf
