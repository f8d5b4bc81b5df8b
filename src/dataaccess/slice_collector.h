// The reduction of a walk through a time window to one packet per slice.
#pragma once

#include "dataaccess/packet_extremes.h"
#include "dataaccess/view_queries.h"

#include <functional>
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
    // A block of packets that the walk leaves out, because an index has what it adds to the slice at hand.
    struct SBlock {
        std::int64_t minimumDate;
        std::int64_t maximumDate;
        // Dates grow from packet to packet: the packets of these two dates are the first and the last one.
        bool isDistinct;
        std::int64_t first; // places of those two
        std::int64_t last;
        const std::uint8_t* minimum; // images of the extremes within packets, without a date
        const std::uint8_t* maximum;
    };
    enum class EFit {
        outside, // has to be walked: it does not lie in the slice at hand, or its dates are in no order
        inside,
        around // lies around the centre of the slice, so that one of its inner packets is the nearest
    };
    EFit FindFit(const SBlock& block) const;
    // REQUIRES: FindFit has answered inside.
    void AddBlock(const SBlock& block);
    // The same for one that lies around the centre, of which this is the packet nearest to it.
    void AddBlock(const SBlock& block, std::int64_t date, const std::uint8_t* payload);
    // Of the slice at hand, in ticks.
    std::int64_t GetCentre() const { return m_centre; }
    // Reads the payload of the packet at a place that AddBlock was given, for a representative that lies in a
    // block. False when the file does not give it; the representative is then the one before.
    using Reader = std::function<bool(std::int64_t place, std::uint8_t* payload)>;
    void SetReader(Reader reader) { m_reader = std::move(reader); }

    // Copies what is kept as a place in the reader's block: to be called before the block moves.
    void Settle();
    // Appends the slice at hand.
    void Flush();
    // Takes the slices that are complete out of the series, which goes on with those after them.
    SReducedSeries TakeFinished();

  private:
    // Of the packets of a block to the centre, and whether it is the one of the last packet.
    struct SDistance {
        std::uint64_t least;
        bool isLast;
    };
    SDistance FindDistance(const SBlock& block) const;
    void AddExtremes(const SBlock& block);
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
    std::int64_t m_candidatePlace = 0; // of one in a block instead; 0 is none
    Reader m_reader;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_minimum;
    std::unique_ptr<Persistance_Xpf::CXpfPacket> m_maximum;
    std::int64_t m_sliceStart = 0;
    std::int64_t m_sliceEnd = 0;
    std::int64_t m_centre = 0;
    std::uint64_t m_distance = 0; // of the representative's date to the centre
};

} // namespace Application_Tarvel
