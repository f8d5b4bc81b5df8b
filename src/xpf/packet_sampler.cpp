#include "xpf/packet_sampler.h"

#include "xpf/block_reader.h"
#include "xpf/file.h"

#include <algorithm>
#include <cstring>

namespace Persistance_Xpf {

CPacketSampler::CPacketSampler(CXpfChannel& channel, std::uint32_t payloadSize, std::size_t blockSize)
    : m_channel(channel),
      m_size(payloadSize),
      m_blockSize(blockSize),
      m_blocks(std::make_unique<std::uint8_t[]>(blockSize * kTogether)),
      m_payload(payloadSize) {}

void CPacketSampler::Sample(std::span<const std::int64_t> places, const Take& take) {
    CBlockReader& reader = *m_channel.m_file.m_reader;
    std::int64_t last = -1;
    while (!places.empty() && !reader.IsInterrupted()) {
        const auto together = places.first(std::min(places.size(), kTogether));
        places = places.subspan(together.size());
        Read(together);
        bool goesOn = true;
        for (std::size_t i = 0; i < m_reads.size() && goesOn; ++i) {
            const std::uint8_t* block = m_blocks.get() + i * m_blockSize;
            std::size_t at = 0;
            const std::uint8_t* packet = FindPacket(block, m_reads[i].size, at);
            const std::int64_t position = m_reads[i].place + static_cast<std::int64_t>(at);
            if (!packet || position <= last) continue;
            last = position;
            const std::size_t size = std::min<std::size_t>(m_size, LoadPacketSize(packet) - kPacketOverhead);
            std::fill(m_payload.begin() + static_cast<std::ptrdiff_t>(size), m_payload.end(),
                      std::uint8_t{0});
            std::memcpy(m_payload.data(), packet + kPacketHeaderSize, size);
            goesOn = take(position, m_payload.data());
        }
        for (const SRead& read : m_reads)
            if (!read.wasCached) reader.Release(read.place, m_blockSize);
        if (!goesOn) return;
    }
}

// The system is asked for all blocks before the first of them is waited for.
void CPacketSampler::Read(std::span<const std::int64_t> places) {
    const CBlockReader& reader = *m_channel.m_file.m_reader;
    m_reads.clear();
    for (const std::int64_t place : places) {
        std::uint8_t* block = m_blocks.get() + m_reads.size() * m_blockSize;
        const std::size_t size = reader.ProbeCached(place, block, m_blockSize);
        m_reads.push_back({place, size, size == m_blockSize});
        if (size < m_blockSize) reader.Announce(place, static_cast<std::int64_t>(m_blockSize));
    }
    for (std::size_t i = 0; i < m_reads.size(); ++i)
        if (!m_reads[i].wasCached)
            m_reads[i].size =
                reader.ProbePart(m_reads[i].place, m_blocks.get() + i * m_blockSize, m_blockSize);
}

// The packet's header, and in `at` its place in the block; null when the block has no whole one. Starts at
// any byte: the first bytes that are a whole packet of any channel give the beat, and every step is checked.
const std::uint8_t* CPacketSampler::FindPacket(const std::uint8_t* bytes, std::size_t size, std::size_t& at) {
    at = 0;
    while (at + kPacketOverhead <= size) {
        const std::uint8_t* packet = bytes + at;
        const std::size_t length = CheckHeaderBytes(packet) ? LoadPacketSize(packet) : 0;
        if (length > 0 && length <= size - at &&
            TrailerBytesMatch(packet, packet + length - kPacketTrailerSize)) {
            if (LoadWord(packet) >> 16 == m_channel.m_number) return packet;
            at += length;
            continue;
        }
        const auto* next = static_cast<const std::uint8_t*>(std::memchr(packet + 1, '$', size - at - 1));
        if (!next) return nullptr;
        at = static_cast<std::size_t>(next - bytes);
    }
    return nullptr;
}

} // namespace Persistance_Xpf
