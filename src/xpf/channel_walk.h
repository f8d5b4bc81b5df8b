// The walk along the packets of one channel, for reductions of many packets.
#pragma once

#include "xpf/channel.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace Persistance_Xpf {

// Goes on at the channel's current position and moves it as CXpfChannel::ReadNextPacket does. Packets of the
// usual size are given where they lie in the reader's block, which costs no copy; all others are copied.
class CChannelWalk {
  public:
    // Payloads, each with its header before it and its trailer after it.
    using Run = std::span<const std::uint8_t* const>;

    // `payloadSize`: bytes, of the channel's type. `channel` must outlive the walk.
    CChannelWalk(CXpfChannel& channel, std::uint32_t payloadSize);

    // The next packets; none at the end of the walk. What a short packet does not fill is zero, and what a
    // long one has more is left out. Earlier runs stay valid until the block moves: `beforeMove` is called
    // before that, within a later call, and by its caller before MoveTo or Fetch. No other operation on the
    // file may come between.
    template <class BeforeMove>
    Run Next(BeforeMove&& beforeMove) {
        if (const std::size_t count = TakeHeld()) return {m_run.data(), count};
        beforeMove();
        m_run[0] = ViewNext();
        if (!m_run[0]) m_run[0] = CopyNext();
        return {m_run.data(), m_run[0] ? std::size_t{1} : 0};
    }

    // Where the walk goes on, in bytes; 0 is not known.
    std::int64_t GetPlace() const { return m_channel.GetCurrent().Get(); }
    // Goes on at another packet of the channel.
    void MoveTo(std::int64_t position);
    // Runs end before packets at or after this place, unless it is the first packet of a run.
    void SetLimit(std::int64_t position) { m_limit = position; }
    // Reads so many bytes from the walk's place on at once; at most 1 MiB.
    void Fetch(std::int64_t size);
    // Whether the packets lie so far apart that each is to be read by itself; then so many bytes from the
    // walk's place on are going to be read.
    void SetApart(bool isApart, std::int64_t size);
    // The payload of the packet at a place, without moving the block. False when the file does not give it,
    // or it is no packet of the usual size.
    bool ReadPayload(std::int64_t position, std::uint8_t* payload) const;

    std::uint16_t GetChannelNumber() const { return m_channel.GetNumber(); }
    // Bytes of a packet of the usual size.
    std::uint32_t GetPacketSize() const { return m_size + kPacketOverhead; }
    // Bytes of the file without moving the block; false when it does not have them.
    bool Probe(std::int64_t position, std::span<std::uint8_t> bytes) const;

  private:
    // As many packets as need no read from the file; the count.
    std::size_t TakeHeld();
    // The next packet in the block, which may be replaced; null for one that has to be copied.
    const std::uint8_t* ViewNext();
    const std::uint8_t* CopyNext();

    CXpfChannel& m_channel;
    std::uint32_t m_size;
    std::int64_t m_limit = INT64_MAX;
    std::vector<std::uint8_t> m_copy; // room for header and trailer around the payload
    std::array<const std::uint8_t*, 64> m_run;
};

} // namespace Persistance_Xpf
