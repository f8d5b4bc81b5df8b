#include "xpf/date_probe.h"

#include "xpf/records.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace Persistance_Xpf {

namespace {

constexpr int kMostReads = 4;
constexpr std::int64_t kLargestRead = std::int64_t{64} << 10;

std::int64_t LoadDate(const std::uint8_t* packet) {
    std::int64_t date;
    std::memcpy(&date, packet + kPacketHeaderSize, sizeof date);
    return date;
}

} // namespace

const std::uint8_t* CDateProbe::FindNearest(const SStretch& stretch, std::int64_t date) {
    SStretch rest = stretch;
    const auto size = static_cast<std::int64_t>(m_walk.GetPacketSize());
    const std::int64_t spacing =
        (stretch.last - stretch.first) / std::max<std::int64_t>(stretch.count - 1, 1);
    for (int read = 0; read < kMostReads; ++read) {
        const double part = (static_cast<double>(date) - static_cast<double>(rest.firstDate)) /
                            (static_cast<double>(rest.lastDate) - static_cast<double>(rest.firstDate));
        const auto estimate =
            rest.first + static_cast<std::int64_t>(part * static_cast<double>(rest.last - rest.first));
        // Room for the packets on both sides, and for the one that the first byte cuts.
        const std::int64_t room = (read + 1) * (2 * spacing + size);
        const std::int64_t begin = std::max(rest.first, estimate - room);
        const std::int64_t end = std::min(rest.last + size, estimate + room);
        if (end - begin < size || end - begin > kLargestRead) return nullptr;
        m_bytes.resize(static_cast<std::size_t>(end - begin));
        if (!m_walk.Probe(begin, m_bytes)) return nullptr;
        if (const std::uint8_t* payload = Follow(begin, date, rest)) return payload;
        if (rest.lastDate <= rest.firstDate) return nullptr;
    }
    return nullptr;
}

std::size_t CDateProbe::FindPacket() const {
    const std::uint32_t size = m_walk.GetPacketSize();
    const std::uint64_t begin =
        0x2424 | std::uint64_t{m_walk.GetChannelNumber()} << 16 | std::uint64_t{size} << 32;
    const std::string_view bytes(reinterpret_cast<const char*>(m_bytes.data()), m_bytes.size());
    const std::string_view wanted(reinterpret_cast<const char*>(&begin), sizeof begin);
    for (std::size_t at = bytes.find(wanted); at != bytes.npos; at = bytes.find(wanted, at + 1)) {
        if (at + size > bytes.size()) break;
        if (TrailerBytesMatch(m_bytes.data() + at, m_bytes.data() + at + size - kPacketTrailerSize))
            return at;
    }
    return bytes.size();
}

// Along the links through the bytes at hand, which begin at `position`.
const std::uint8_t* CDateProbe::Follow(std::int64_t position, std::int64_t date, SStretch& stretch) const {
    const std::uint32_t size = m_walk.GetPacketSize();
    const std::uint64_t begin =
        0x2424 | std::uint64_t{m_walk.GetChannelNumber()} << 16 | std::uint64_t{size} << 32;
    const std::uint8_t* before = nullptr;
    for (std::size_t at = FindPacket(); at + size <= m_bytes.size();) {
        const std::uint8_t* packet = m_bytes.data() + at;
        if (LoadLongWord(packet) != begin) return nullptr;
        const std::int64_t here = LoadDate(packet);
        if (here >= date) {
            if (before) {
                // Both lie in the stretch, so that no difference exceeds its length.
                const bool isNearer = here - date < date - LoadDate(before);
                return (isNearer ? packet : before) + kPacketHeaderSize;
            }
            stretch.last = position + static_cast<std::int64_t>(at);
            stretch.lastDate = here;
            return here == date ? packet + kPacketHeaderSize : nullptr;
        }
        before = packet;
        stretch.first = position + static_cast<std::int64_t>(at);
        stretch.firstDate = here;
        const std::uint32_t link = LoadWord(packet + offsetof(SPacketHeader, forwardLink));
        if (link < size) return nullptr;
        at += link;
    }
    return nullptr;
}

} // namespace Persistance_Xpf
