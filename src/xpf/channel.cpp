#include "xpf/channel.h"

#include "xpf/block_reader.h"
#include "xpf/file.h"
#include "xpf/packet.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace Persistance_Xpf {

namespace {

// What is looked at of a file's end at once: the last trailer, its packet, and some that lie before it.
constexpr std::int64_t kTail = 4096;

} // namespace

CXpfChannel::CXpfChannel(CXpfFile& file, std::uint16_t number, std::string name, std::string description,
                         std::uint32_t packetType)
    : m_number(number),
      m_name(std::move(name)),
      m_description(std::move(description)),
      m_packetType(packetType),
      m_file(file),
      m_numberSearch(*this, file) {}

std::unique_ptr<CXpfPacket> CXpfChannel::CreatePacket() const { return nullptr; }

bool CXpfChannel::ReadNextPacket(std::uint32_t& sizeRead, SPacketHeader* header, void* buffer,
                                 std::uint32_t bufferSize) {
    sizeRead = 0;
    if (!m_current.IsKnown() && !SeekFirstPacket(nullptr)) return false;
    CBlockReader& reader = *m_file.m_reader;
    std::int64_t position = m_current.Get();
    if (!reader.Seek(position)) return false;

    const std::uint8_t* packet = m_file.WalkToChannel(m_number, position);
    reader.Seek(position); // where the pointer stays on a failure
    if (!packet) return false;
    m_current = position;

    // The trailer is only read, never compared: a whole packet has been written once its last byte is there.
    // After a payload that is cut by a small buffer, the bytes in its place serve as well.
    const std::uint32_t size = LoadPacketSize(packet);
    const std::uint32_t count = std::min(bufferSize, size - kPacketOverhead);
    const std::size_t length = std::size_t{kPacketOverhead} + count;
    SPacketHeader found;
    std::memcpy(&found, packet, sizeof found);
    if (length > kLargestInBlock) {
        SPacketTrailer trailer;
        reader.Seek(position + kPacketHeaderSize);
        if (reader.Read(buffer, count) != count || reader.Read(&trailer, sizeof trailer) != sizeof trailer) {
            reader.Seek(position);
            return false;
        }
    } else {
        if (!reader.Holds(position, length)) {
            packet = reader.View(position, length);
            // Read again, header and all; it has changed only under a reader that came upon a place being
            // written.
            if (!packet || LoadPacketSize(packet) != size) return false;
            std::memcpy(&found, packet, sizeof found);
        }
        if (count > 0) std::memcpy(buffer, packet + kPacketHeaderSize, count);
        reader.Seek(position + static_cast<std::int64_t>(length));
    }
    sizeRead = count;
    if (header) *header = found;
    StepOn(position, found);
    return found.forwardLink == 0 || reader.Seek(m_current.Get());
}

void CXpfChannel::StepOn(std::int64_t position, const SPacketHeader& header) {
    if (position > m_last.Get()) m_last = position;
    m_previous = position;
    // Without a link this packet was the last of its channel when it was read; the next read walks on from
    // its end through whatever the writer has appended since.
    m_current = position + (header.forwardLink != 0 ? header.forwardLink : header.size);
}

bool CXpfChannel::ReadNextPacket(CXpfPacket& packet, SPacketHeader* header) {
    std::uint32_t sizeRead = 0;
    return ReadNextPacket(sizeRead, header, packet.GetPayload(), packet.GetPayloadSize());
}

bool CXpfChannel::MoveTo(std::int64_t position, std::int64_t previous) {
    if (!m_file.Seek(position)) return false;
    m_current = position;
    m_previous = previous;
    return true;
}

bool CXpfChannel::SeekFirstPacket(SPacketHeader* header) {
    SPacketHeader found;
    bool done = false;
    if (!m_first.IsKnown()) {
        done = FindFirstPacket(found);
    } else if (m_file.Seek(m_first.Get())) {
        m_current = m_first;
        done = !header || m_file.m_reader->ReadRecord(m_first.Get(), found);
    }
    m_previous = 0;
    if (!done)
        m_current = m_first = 0;
    else if (header)
        *header = found;
    return done;
}

bool CXpfChannel::FindFirstPacket(SPacketHeader& header) {
    const CXpfFilePosition start = m_file.GetDataStart();
    std::int64_t position = start.Get();
    const std::uint8_t* packet = start.IsKnown() ? m_file.WalkToChannel(m_number, position) : nullptr;
    if (!packet) return false;
    std::memcpy(&header, packet, sizeof header);
    m_first = m_current = position;
    return m_file.Seek(position);
}

bool CXpfChannel::SeekPacketNumber(std::uint32_t number) {
    return number == 0 ? SeekFirstPacket(nullptr) : m_numberSearch.Seek(number);
}

bool CXpfChannel::SeekLastPacket(SPacketHeader* header) {
    m_previous = 0;
    SPacketHeader found;
    if (!FindLastPacket(found)) return false;
    if (header) *header = found;
    return true;
}

bool CXpfChannel::FindLastPacket(SPacketHeader& header) {
    // What was read ahead may be older than the writer's last link.
    m_file.m_reader->Forget();
    if (m_last.IsKnown()) {
        if (!m_file.m_reader->ReadRecord(m_last.Get(), header) || !header.Check()) return false;
        if (header.forwardLink == 0) {
            m_current = m_last;
            m_numberSearch.RememberLast(m_last.Get(), header);
            return m_file.Seek(m_last.Get());
        }
    }

    std::int64_t position = 0;
    if (!FindStreamEnd(position, header)) return false;
    while (header.channel != m_number) {
        // The trailer before a packet shows where the packet before it begins.
        const std::int64_t end = position;
        const std::uint8_t* bytes = m_file.m_reader->View(end - kPacketTrailerSize, kPacketTrailerSize);
        if (!bytes) return false;
        SPacketTrailer trailer;
        std::memcpy(&trailer, bytes, sizeof trailer);
        if (!trailer.CheckMagic()) return false;
        position = end - trailer.size;
        if (!m_file.m_reader->ReadRecord(position, header) || !trailer.Matches(header)) return false;
    }
    m_current = m_last = position;
    m_numberSearch.RememberLast(position, header);
    return m_file.Seek(position);
}

bool CXpfChannel::FindStreamEnd(std::int64_t& position, SPacketHeader& header) {
    const std::int64_t fileSize = m_file.GetFileSize();
    if (fileSize == 0) return false;
    SPacketTrailer trailer;
    m_file.m_reader->Fetch(std::max<std::int64_t>(fileSize - kTail, 0), kTail);
    if (m_file.m_reader->Probe(fileSize - kPacketTrailerSize, &trailer, sizeof trailer) &&
        trailer.CheckMagic()) {
        position = fileSize - trailer.size;
        if (m_file.m_reader->ReadRecord(position, header) && trailer.Matches(header)) return true;
    }
    // The tail is damaged, or being written just now.
    if (!m_file.Seek(fileSize) || !m_file.SearchPacketBackward(header)) return false;
    position = m_file.GetPosition();
    return true;
}

} // namespace Persistance_Xpf
