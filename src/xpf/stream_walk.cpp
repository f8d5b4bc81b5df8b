#include "xpf/stream_walk.h"

#include "xpf/block_reader.h"
#include "xpf/stride.h"

#include <algorithm>
#include <cstring>

namespace Persistance_Xpf {

// The fast step, for nearly every packet: so short that it needs no registers saved.
EPacketRead CStreamWalk::Next(SPacketHeader& header, std::span<const std::uint8_t>& payload) {
    CBlockReader& reader = m_reader;
    const std::int64_t position = reader.GetPosition();
    if (!reader.Holds(position, kPacketHeaderSize)) return NextAnew(header, payload);
    const std::uint8_t* packet = reader.GetHeld(position);
    const std::uint32_t size = LoadPacketSize(packet);
    if (!CheckHeaderBytes(packet) || !reader.Holds(position, size) ||
        !TrailerBytesMatch(packet, packet + size - kPacketTrailerSize))
        return NextAnew(header, payload);
    std::memcpy(&header, packet, sizeof header);
    payload = {packet + kPacketHeaderSize, size - kPacketOverhead};
    reader.Advance(size);
    return EPacketRead::whole;
}

EPacketRead CStreamWalk::NextRun(Run& run) {
    const std::size_t count = TakeHeld();
    run = {m_run.data(), count};
    if (count > 0) return EPacketRead::whole;
    // No whole packet follows, or one that is too big for a run of several.
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    const EPacketRead read = Next(header, payload);
    if (read != EPacketRead::whole) return read;
    m_run[0] = payload.data() - kPacketHeaderSize;
    run = {m_run.data(), 1};
    return read;
}

std::span<const std::uint8_t> CStreamWalk::GetPayload(const std::uint8_t* packet) {
    const std::size_t size = std::min<std::size_t>(LoadPacketSize(packet) - kPacketOverhead,
                                                   CBlockReader::kLargestView - kPacketHeaderSize);
    return {packet + kPacketHeaderSize, size};
}

std::size_t CStreamWalk::TakeHeld() {
    CBlockReader& reader = m_reader;
    const std::int64_t position = reader.GetPosition();
    const std::uint8_t* first = reader.View(position, kPacketHeaderSize);
    if (!first || !CheckHeaderBytes(first) || !reader.View(position, LoadPacketSize(first))) return 0;
    const std::uint8_t* const begin = reader.GetHeld(position);
    const std::uint8_t* const end = begin + (reader.GetHeldEnd() - position);
    const std::uint8_t* packet = begin;
    CStride stride;
    std::size_t count = 0;
    while (count < m_run.size() && end - packet >= std::int64_t{kPacketOverhead}) {
        const std::uint32_t size = LoadPacketSize(packet);
        if (!CheckHeaderBytes(packet) || size > end - packet ||
            !TrailerBytesMatch(packet, packet + size - kPacketTrailerSize))
            break;
        m_run[count++] = packet;
        packet += stride.Take(size);
    }
    reader.Advance(packet - begin);
    return count;
}

EPacketRead CStreamWalk::NextAnew(SPacketHeader& header, std::span<const std::uint8_t>& payload) {
    CBlockReader& reader = m_reader;
    const std::int64_t position = reader.GetPosition();
    const std::uint8_t* packet = reader.View(position, kPacketHeaderSize);
    if (!packet) return EPacketRead::torn;
    std::memcpy(&header, packet, sizeof header);
    const std::uint32_t size = LoadPacketSize(packet);
    if (!CheckHeaderBytes(packet)) {
        reader.Forget(); // so that a later try sees what the writer has made of it
        return EPacketRead::damaged;
    }
    if (!reader.Holds(position, size)) {
        if (size > CBlockReader::kLargestView) return NextHuge(header, payload);
        packet = reader.View(position, size);
        if (!packet) return EPacketRead::torn;
        std::memcpy(&header, packet, sizeof header); // of the same moment as the rest
        if (header.size != size) return EPacketRead::torn;
    }
    if (!TrailerBytesMatch(packet, packet + size - kPacketTrailerSize)) {
        reader.Forget();
        return EPacketRead::damaged;
    }
    payload = {packet + kPacketHeaderSize, size - kPacketOverhead};
    reader.Advance(size);
    return EPacketRead::whole;
}

EPacketRead CStreamWalk::NextHuge(const SPacketHeader& header, std::span<const std::uint8_t>& payload) {
    const std::int64_t position = m_reader.GetPosition();
    SPacketTrailer trailer;
    if (!m_reader.Probe(position + header.size - kPacketTrailerSize, &trailer, sizeof trailer))
        return EPacketRead::torn;
    if (!trailer.Matches(header)) return EPacketRead::damaged;
    const std::uint8_t* packet = m_reader.View(position, CBlockReader::kLargestView);
    if (!packet) return EPacketRead::torn;
    payload = GetPayload(packet);
    m_reader.Seek(position + header.size);
    return EPacketRead::whole;
}

} // namespace Persistance_Xpf
