#include "xpf/packet_search.h"

#include "xpf/block_reader.h"

#include <algorithm>
#include <cstring>

namespace Persistance_Xpf {

namespace {

constexpr std::int64_t kChunkSize = 128;

constexpr std::int64_t WholeChunks(std::int64_t size) { return size / kChunkSize * kChunkSize; }

// How much of the block at hand before or after `offset` is chunks without a dollar sign: what a hole of
// gigabytes consists of is passed a block at a time.
std::int64_t PassBackward(const CBlockReader& reader, std::int64_t offset) {
    const std::int64_t begin = reader.GetHeldBegin();
    if (begin >= offset || !reader.Holds(begin, static_cast<std::size_t>(offset - begin))) return 0;
    const std::uint8_t* bytes = reader.GetHeld(begin);
    const auto* last =
        static_cast<const std::uint8_t*>(memrchr(bytes, '$', static_cast<std::size_t>(offset - begin)));
    return WholeChunks(offset - begin - (last ? last + 1 - bytes : 0));
}

std::int64_t PassForward(const CBlockReader& reader, std::int64_t offset) {
    const std::int64_t size = reader.GetHeldEnd() - offset;
    if (size <= 0 || !reader.Holds(offset, static_cast<std::size_t>(size))) return 0;
    const std::uint8_t* bytes = reader.GetHeld(offset);
    const auto* first =
        static_cast<const std::uint8_t*>(std::memchr(bytes, '$', static_cast<std::size_t>(size)));
    return WholeChunks(first ? first - bytes : size);
}

} // namespace

bool CPacketSearch::SearchBackward(SPacketHeader& header) {
    const std::int64_t origin = m_reader.GetPosition();
    const std::int64_t fileSize = m_reader.GetFileSize();
    std::uint8_t chunk[kChunkSize];
    bool afterDollar = false; // the byte after the present one is a dollar sign
    for (std::int64_t chunkEnd = std::min(origin, fileSize);;) {
        const std::int64_t length = std::min(chunkEnd, kChunkSize);
        const std::int64_t chunkStart = chunkEnd - length;
        if (length < 2) break;
        if (!m_reader.Seek(chunkStart) || m_reader.IsInterrupted()) break;
        // Less than asked for only when the file shrinks meanwhile.
        const auto count = static_cast<std::int64_t>(m_reader.Read(chunk, static_cast<std::size_t>(length)));
        if (count < length) afterDollar = false;
        if (!std::memchr(chunk, '$', static_cast<std::size_t>(count))) {
            afterDollar = false;
            chunkEnd = chunkStart - PassBackward(m_reader, chunkStart);
            continue;
        }
        for (std::int64_t i = count - 1; i >= 0; --i) {
            const bool dollar = chunk[i] == '$';
            if (dollar && afterDollar) {
                SPacketHeader candidate;
                // A header that the end of the file cuts is part of a torn tail, and the search goes on.
                if (m_reader.ReadRecord(chunkStart + i, candidate) &&
                    IsPacket(chunkStart + i, candidate, fileSize)) {
                    header = candidate;
                    return m_reader.Seek(chunkStart + i);
                }
            }
            afterDollar = dollar;
        }
        chunkEnd = chunkStart;
    }
    m_reader.Seek(origin);
    return false;
}

bool CPacketSearch::SearchForward(SPacketHeader& header) {
    std::int64_t chunkOffset = m_reader.GetPosition();
    const std::int64_t fileSize = m_reader.GetFileSize();
    std::uint8_t chunk[kChunkSize];
    bool afterDollar = false; // the byte before the present one is a dollar sign
    while (const std::size_t count = m_reader.Read(chunk, kChunkSize)) {
        if (!std::memchr(chunk, '$', count)) {
            afterDollar = false;
            const std::int64_t passed = PassForward(m_reader, m_reader.GetPosition());
            m_reader.Advance(passed);
            chunkOffset += static_cast<std::int64_t>(count) + passed;
            continue;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const bool dollar = chunk[i] == '$';
            if (dollar && afterDollar) {
                const std::int64_t position = chunkOffset + static_cast<std::int64_t>(i) - 1;
                SPacketHeader candidate;
                // Candidates only move on: where one no longer fits into the file, no later one does.
                if (!m_reader.ReadRecord(position, candidate)) return false;
                if (IsPacket(position, candidate, fileSize)) {
                    header = candidate;
                    return m_reader.Seek(position);
                }
                m_reader.Seek(chunkOffset);
            }
            afterDollar = dollar;
        }
        // After a rejected candidate the pointer is at this chunk's start, so that the next read gives
        // the same bytes under an offset one chunk further on. Readers of these files have always searched
        // like this, and which packet a search lands on is part of their behaviour.
        chunkOffset += static_cast<std::int64_t>(count);
    }
    return false;
}

bool CPacketSearch::IsPacket(std::int64_t position, const SPacketHeader& header,
                             std::int64_t fileSize) const {
    SPacketTrailer trailer;
    return header.Check() && position + header.size <= fileSize &&
           m_reader.Probe(position + header.size - kPacketTrailerSize, &trailer, sizeof trailer) &&
           trailer.Matches(header);
}

} // namespace Persistance_Xpf
