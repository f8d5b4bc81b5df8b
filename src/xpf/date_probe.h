// Finds the packet nearest to a date within a short stretch of a file whose packets are known to follow each
// other by date, without reading the stretch.
#pragma once

#include "xpf/channel_walk.h"

#include <cstdint>
#include <vector>

namespace Persistance_Xpf {

class CDateProbe {
  public:
    // Packets of one channel: dates grow from each to the next, and links lead from each to the next.
    struct SStretch {
        std::int64_t first; // places of the first and the last packet
        std::int64_t last;
        std::int64_t firstDate;
        std::int64_t lastDate;
        std::uint32_t count;
    };

    // `walk` is one along the channel, and must outlive the probe.
    explicit CDateProbe(const CChannelWalk& walk) : m_walk(walk) {}

    // The payload of the packet nearest to the date, the earlier one on a tie. Null when a few reads do not
    // come upon it. Valid until the next call. REQUIRES: the date lies between those of the stretch.
    const std::uint8_t* FindNearest(const SStretch& stretch, std::int64_t date);

  private:
    // The first packet of the channel in the bytes at hand; their count when there is none.
    std::size_t FindPacket() const;
    // Narrows the stretch; the payload if it is between two packets that follow each other.
    const std::uint8_t* Follow(std::int64_t position, std::int64_t date, SStretch& stretch) const;

    const CChannelWalk& m_walk;
    std::vector<std::uint8_t> m_bytes;
};

} // namespace Persistance_Xpf
