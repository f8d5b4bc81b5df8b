// The reduction of a walk through a time window to one packet per slice.
#pragma once

#include "dataaccess/packet_extremes.h"
#include "dataaccess/view_queries.h"

#include <span>

namespace Application_Tarvel {

// Collects the slices of one walk: of each the packet nearest to its centre, and the extremes if wanted.
class CSliceCollector {
  public:
    // All three must outlive the collector; `payloadSize` in bytes.
    CSliceCollector(const SWindow& window, const Persistance_Xpf::CXpfChannel& channel,
                    std::uint32_t payloadSize, SReducedSeries& series);

    // Takes in the next packets of the walk, each standing in its packet with header and trailer around it.
    // False once one at or beyond the window's end has been taken, or there are more slices than memory is
    // meant for. The packets in the reader's block have to stay until Settle.
    bool Add(std::span<const std::uint8_t* const> payloads);
    // Copies what is kept as a place in the reader's block: to be called before the block moves.
    void Settle();
    // Appends the slice at hand.
    void Flush();
    // Takes the slices that are complete out of the series, which goes on with those after them.
    SReducedSeries TakeFinished();

  private:
    std::size_t AddToSlice(std::span<const std::uint8_t* const> payloads);
    void Begin(const std::uint8_t* payload, std::int64_t date);
    std::unique_ptr<Persistance_Xpf::CXpfPacket> Clone(const std::uint8_t* payload) const;

    const SWindow& m_window;
    const Persistance_Xpf::CXpfChannel& m_channel;
    std::uint32_t m_size;
    SReducedSeries& m_series;
    CPacketExtremes m_extremes;
    bool m_collects;
    std::size_t m_mostSlices; // still to come
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_representative;
    // The packet nearer to the centre that takes the representative's place. On the way to the centre every
    // packet is nearer than the one before, so that a copy of each would cost more than the rest of the work.
    const std::uint8_t* m_candidate = nullptr;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_minimum;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_maximum;
    std::int64_t m_sliceStart = 0;
    std::int64_t m_sliceEnd = 0;
    std::int64_t m_centre = 0;
    std::uint64_t m_distance = 0; // of the representative's date to the centre
};

} // namespace Application_Tarvel
