// Packets at places all over a file, one read for each, without a scan from one to the next.
#pragma once

#include "xpf/channel.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace Persistance_Xpf {

class CPacketSampler {
  public:
    // `channel` must outlive the sampler. `payloadSize`: bytes, of the channel's type. `blockSize`: bytes
    // read at a place, the room in which a packet of the channel is looked for.
    CPacketSampler(CXpfChannel& channel, std::uint32_t payloadSize, std::size_t blockSize);

    // Calls `take` with the position and the payload of the first whole packet of the channel at or after
    // each place, in the order of the places; not for places without one in their block, and once for a
    // packet that several places lead to. False from it ends the sampling, and so does the interrupt of the
    // file. What a short packet does not fill is zero. Memory of the system's cache that the reads have taken
    // is given back, so that a scan that follows meets the file as it was.
    using Take = std::function<bool(std::int64_t position, const std::uint8_t* payload)>;
    void Sample(std::span<const std::int64_t> places, const Take& take);

  private:
    // Where the reads of a few places are under way together.
    struct SRead {
        std::int64_t place;
        std::size_t size;
        bool wasCached;
    };
    static constexpr std::size_t kTogether = 32;

    void Read(std::span<const std::int64_t> places);
    const std::uint8_t* FindPacket(const std::uint8_t* bytes, std::size_t size, std::size_t& at);

    CXpfChannel& m_channel;
    std::uint32_t m_size;
    std::size_t m_blockSize;
    std::unique_ptr<std::uint8_t[]> m_blocks;
    std::vector<std::uint8_t> m_payload;
    std::vector<SRead> m_reads;
};

} // namespace Persistance_Xpf
