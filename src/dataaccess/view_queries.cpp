#include "dataaccess/view_queries.h"

#include "dataaccess/packet_extremes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

bool CTrvDataQuery::Execute(bool& wasCancelled) {
    bool outdated = false;
    const auto file = OpenXpfFile(m_address.path, m_address.kind, outdated);
    m_error = EError::noFile;
    if (!file) return false;
    CXpfChannel* channel = file->FindChannelByNumber(m_address.channel);
    m_error = EError::noChannel;
    if (!channel) return false;
    auto packet = channel->CreatePacket();
    if (!packet || !packet->HasDate()) return false;

    m_error = EError::damaged; // also when no memory is left for what is found
    // One read may have to search the whole file; it is to end with the query.
    file->SetInterrupt(&m_cancel);
    const bool success =
        Search(*channel, std::unique_ptr<CXpfDatedPacket>(static_cast<CXpfDatedPacket*>(packet.release())),
               wasCancelled);
    if (!success && m_cancel.IsSet()) wasCancelled = true;
    if (success)
        m_error = EError::none;
    else
        m_error = channel->GetFirst().IsKnown() ? EError::damaged : EError::noPackets;
    ForgetReplaced(*file);
    return success;
}

// A file that was replaced while it was read has left things in the cache that are not true of the new one,
// perhaps after the owner of the cache had them removed.
void CTrvDataQuery::ForgetReplaced(const CXpfFile& file) const {
    if (m_address.cache && !file.IsAt(m_address.path)) m_address.cache->InvalidateFile(m_address.path);
}

bool CTrvViewValueDataQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet,
                                    bool& wasCancelled) {
    SDateBracket bracket;
    switch (SearchDate(channel, *packet, m_time, MakeSearch(false), bracket)) {
    case EDateSearch::outside: return true;
    case EDateSearch::failed: return false;
    case EDateSearch::cancelled: wasCancelled = true; return false;
    case EDateSearch::found: break;
    }
    packet->Clear(); // of what the search has read, where the packet is a short one
    if (!channel.SeekPacketNumber(PickNearer(bracket, m_time)) || !channel.ReadNextPacket(*packet))
        return false;
    m_packet = std::move(packet);
    return true;
}

namespace {

// Collects the slices of one walk, one packet of each kind per slice. Add runs once per packet of the window.
class CSliceCollector {
  public:
    CSliceCollector(const SWindow& window, const CXpfChannel& channel, std::uint32_t payloadSize,
                    SReducedSeries& series)
        : m_window(window),
          m_channel(channel),
          m_size(payloadSize),
          m_series(series),
          m_collects(window.collectExtremum &&
                     m_extremes.Prepare(static_cast<std::uint16_t>(channel.GetPacketType()))) {}

    // `payload` stands in its packet, with header and trailer around it. Returns the packet's date in ticks.
    std::int64_t Add(const std::uint8_t* payload) {
        std::int64_t date;
        std::memcpy(&date, payload, sizeof date);
        if (date < m_sliceStart || date >= m_sliceEnd || !m_representative) {
            Flush();
            Begin(payload, date);
            return date;
        }
        const std::uint64_t distance = DistanceToCentre(date);
        if (distance < m_distance) {
            m_distance = distance;
            m_candidate = payload;
        }
        if (m_collects) m_extremes.Include(payload);
        return date;
    }

    // Copies what is kept as a place in the reader's block: to be called before the block moves.
    void Settle() {
        if (m_candidate) std::memcpy(m_representative->GetPayload(), m_candidate, m_size);
        m_candidate = nullptr;
        if (m_collects) m_extremes.Settle();
    }

    // Appends the slice at hand.
    void Flush() {
        if (!m_representative) return;
        Settle();
        m_series.representatives.push_back(std::move(m_representative));
        if (!m_collects) return;
        m_extremes.Finish(m_minimum->GetPayload(), m_maximum->GetPayload());
        m_series.minima.push_back(std::move(m_minimum));
        m_series.maxima.push_back(std::move(m_maximum));
    }

  private:
    void Begin(const std::uint8_t* payload, std::int64_t date) {
        const std::int64_t start = m_window.start.GetTicks(), slice = m_window.slice.GetTicks();
        std::int64_t elapsed = 0;
        const bool before = __builtin_sub_overflow(date, start, &elapsed) || elapsed < 0;
        const std::int64_t index = before ? 0 : elapsed / slice;
        // All that lies before the window belongs to its first slice. Ends beyond the tick range are its
        // ends.
        m_sliceStart = index == 0 ? std::numeric_limits<std::int64_t>::min() : start + index * slice;
        if (__builtin_add_overflow(start + index * slice, slice, &m_sliceEnd))
            m_sliceEnd = std::numeric_limits<std::int64_t>::max();
        m_centre = static_cast<std::uint64_t>(start + index * slice) + static_cast<std::uint64_t>(slice / 2);
        m_representative = Clone(payload);
        m_distance = DistanceToCentre(date);
        if (!m_collects) return;
        m_minimum = Clone(payload);
        m_maximum = Clone(payload);
        m_extremes.Begin(payload);
    }

    std::uint64_t DistanceToCentre(std::int64_t date) const {
        const auto ticks = static_cast<std::uint64_t>(date);
        return date >= static_cast<std::int64_t>(m_centre) ? ticks - m_centre : m_centre - ticks;
    }

    std::unique_ptr<CXpfPacket> Clone(const std::uint8_t* payload) const {
        auto copy = m_channel.CreatePacket();
        std::memcpy(copy->GetPayload(), payload, m_size);
        return copy;
    }

    const SWindow& m_window;
    const CXpfChannel& m_channel;
    std::uint32_t m_size;
    SReducedSeries& m_series;
    CPacketExtremes m_extremes;
    bool m_collects;
    std::unique_ptr<CXpfPacket> m_representative;
    // The packet nearer to the centre that takes the representative's place. On the way to the centre every
    // packet is nearer than the one before, so that a copy of each would cost more than the rest of the work.
    const std::uint8_t* m_candidate = nullptr;
    std::unique_ptr<CXpfPacket> m_minimum;
    std::unique_ptr<CXpfPacket> m_maximum;
    std::int64_t m_sliceStart = 0;
    std::int64_t m_sliceEnd = 0;
    std::uint64_t m_centre = 0;
    std::uint64_t m_distance = 0; // of the representative's date to the centre
};

// In time order a window cannot have more slices than fit into it. Dates that jump back begin slices anew,
// and in a damaged file each packet could: the memory for that is limited.
std::size_t FindMostSlices(const SWindow& window) {
    constexpr std::size_t kJumps = 1 << 16;
    std::int64_t length = 0;
    if (__builtin_sub_overflow(window.end.GetTicks(), window.start.GetTicks(), &length))
        length = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::size_t>(std::max<std::int64_t>(length, 0) / window.slice.GetTicks()) + kJumps;
}

// The payload of each packet of a walk: in place in the reader's block when the packet has the size of its
// type, as nearly all have; else copied as CXpfChannel::ReadNextPacket does.
class CPayloadWalk {
  public:
    CPayloadWalk(CXpfChannel& channel, std::uint32_t payloadSize)
        : m_channel(channel), m_size(payloadSize), m_copy(kPacketOverhead + payloadSize) {}

    // Null at the end of the walk. Valid until `beforeMove` is called, which happens within a later call.
    template <class BeforeMove>
    const std::uint8_t* Next(BeforeMove&& beforeMove) {
        if (m_next == m_count) {
            m_next = 0;
            m_count = m_channel.ViewHeldPackets(m_size, m_run);
        }
        if (m_next < m_count) return m_run[m_next++];
        beforeMove();
        if (const std::uint8_t* payload = m_channel.ViewNextPacket(m_size)) return payload;
        std::uint32_t sizeRead = 0;
        std::uint8_t* payload = m_copy.data() + kPacketHeaderSize;
        std::memset(payload, 0, m_size); // what a short packet does not fill
        return m_channel.ReadNextPacket(sizeRead, nullptr, payload, m_size) ? payload : nullptr;
    }

  private:
    CXpfChannel& m_channel;
    std::uint32_t m_size;
    std::vector<std::uint8_t> m_copy;          // room for header and trailer around the payload
    std::array<const std::uint8_t*, 32> m_run; // in the reader's block, not yet given out from m_next on
    std::size_t m_next = 0, m_count = 0;
};

} // namespace

EDateSearch CTrvView1DDataQuery::SeekStart(CXpfChannel& channel, CXpfDatedPacket& packet, bool& empty) {
    SDateBracket bracket;
    const EDateSearch end = SearchDate(channel, packet, m_window.start, MakeSearch(true), bracket);
    if (end == EDateSearch::outside) {
        // A window that lies wholly before or after the data is empty; one that only begins before it is not.
        empty = m_window.start > bracket.upperDate || m_window.end < bracket.lowerDate;
        return empty || channel.SeekFirstPacket(nullptr) ? EDateSearch::found : EDateSearch::failed;
    }
    if (end != EDateSearch::found) return end;
    const std::uint32_t number =
        m_window.start == bracket.upperDate ? bracket.upperNumber : bracket.lowerNumber;
    return channel.SeekPacketNumber(number) ? EDateSearch::found : EDateSearch::failed;
}

bool CTrvView1DDataQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet,
                                 bool& wasCancelled) {
    if (m_window.slice.GetTicks() <= 0) return false;
    bool empty = false;
    switch (SeekStart(channel, *packet, empty)) {
    case EDateSearch::failed: return false;
    case EDateSearch::cancelled: wasCancelled = true; return false;
    default: break;
    }
    if (empty) return true;

    SReducedSeries series;
    CSliceCollector collector(m_window, channel, packet->GetPayloadSize(), series);
    CPayloadWalk walk(channel, packet->GetPayloadSize());
    const std::size_t mostSlices = FindMostSlices(m_window);
    for (;;) {
        const std::uint8_t* payload = walk.Next([&collector] { collector.Settle(); });
        // Asked behind the read: one that was interrupted is no end of the file.
        if (m_cancel.IsSet()) {
            wasCancelled = true;
            return false;
        }
        if (!payload || collector.Add(payload) >= m_window.end.GetTicks()) break;
        if (series.representatives.size() > mostSlices) break;
    }
    // The end of the file closes the slice at hand as the window's end does.
    collector.Flush();
    m_series = std::move(series);
    return true;
}

} // namespace Application_Tarvel
