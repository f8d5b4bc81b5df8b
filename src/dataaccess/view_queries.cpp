#include "dataaccess/view_queries.h"

#include "dataaccess/packet_extremes.h"

#include <cstring>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

bool CTrvDataQuery::Execute(bool& wasCancelled) {
    bool outdated = false;
    const auto file = OpenXpfFile(m_address.path, m_address.kind, outdated);
    if (!file) return false;
    CXpfChannel* channel = file->FindChannelByNumber(m_address.channel);
    if (!channel) return false;
    auto packet = channel->CreatePacket();
    if (!packet || !packet->HasDate()) return false;
    return Search(*channel, std::unique_ptr<CXpfDatedPacket>(static_cast<CXpfDatedPacket*>(packet.release())),
                  wasCancelled);
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
    if (!channel.SeekPacketNumber(PickNearer(bracket, m_time)) || !channel.ReadNextPacket(*packet))
        return false;
    m_packet = std::move(packet);
    return true;
}

namespace {

// Collects the slices of one walk, one packet of each kind per slice.
class CSliceCollector {
  public:
    CSliceCollector(const SWindow& window, const CXpfChannel& channel, const CXpfDatedPacket& packet,
                    SReducedSeries& series)
        : m_window(window),
          m_channel(channel),
          m_extremes(packet),
          m_size(packet.GetPayloadSize()),
          m_series(series) {}

    void Add(CXpfDatedPacket& packet) {
        const std::int64_t date = packet.GetPacketDate().GetTicks();
        const std::int64_t index = GetSliceIndex(date);
        if (!m_representative || index != m_index) {
            Flush();
            Begin(packet, date, index);
            return;
        }
        const std::uint64_t distance = DistanceToCentre(date);
        if (distance < m_distance) {
            m_distance = distance;
            Copy(*m_representative, packet);
        }
        if (m_minimum)
            m_extremes.Include(packet.GetPayload(), m_minimum->GetPayload(), m_maximum->GetPayload());
    }

    // Appends the slice at hand.
    void Flush() {
        if (!m_representative) return;
        m_series.representatives.push_back(std::move(m_representative));
        if (!m_minimum) return;
        m_series.minima.push_back(std::move(m_minimum));
        m_series.maxima.push_back(std::move(m_maximum));
    }

  private:
    void Begin(CXpfDatedPacket& packet, std::int64_t date, std::int64_t index) {
        m_index = index;
        // Modulo 2^64 on purpose: a window at the very end of the tick range must not overflow.
        m_centre = static_cast<std::uint64_t>(m_window.start.GetTicks()) +
                   static_cast<std::uint64_t>(index) * static_cast<std::uint64_t>(m_window.slice.GetTicks()) +
                   static_cast<std::uint64_t>(m_window.slice.GetTicks() / 2);
        m_representative = Clone(packet);
        m_distance = DistanceToCentre(date);
        if (!m_window.collectExtremum) return;
        m_minimum = Clone(packet);
        m_maximum = Clone(packet);
    }

    std::int64_t GetSliceIndex(std::int64_t date) const {
        std::int64_t elapsed = 0;
        if (__builtin_sub_overflow(date, m_window.start.GetTicks(), &elapsed) || elapsed < 0) return 0;
        return elapsed / m_window.slice.GetTicks();
    }

    std::uint64_t DistanceToCentre(std::int64_t date) const {
        const auto ticks = static_cast<std::uint64_t>(date);
        return date >= static_cast<std::int64_t>(m_centre) ? ticks - m_centre : m_centre - ticks;
    }

    std::unique_ptr<CXpfPacket> Clone(CXpfPacket& packet) const {
        auto copy = m_channel.CreatePacket();
        Copy(*copy, packet);
        return copy;
    }

    void Copy(CXpfPacket& to, CXpfPacket& from) const {
        std::memcpy(to.GetPayload(), from.GetPayload(), m_size);
    }

    const SWindow& m_window;
    const CXpfChannel& m_channel;
    CPacketExtremes m_extremes;
    std::uint32_t m_size;
    SReducedSeries& m_series;
    std::unique_ptr<CXpfPacket> m_representative;
    std::unique_ptr<CXpfPacket> m_minimum;
    std::unique_ptr<CXpfPacket> m_maximum;
    std::int64_t m_index = 0;
    std::uint64_t m_centre = 0;
    std::uint64_t m_distance = 0; // of the representative's date to the centre
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
    CSliceCollector collector(m_window, channel, *packet, series);
    for (;;) {
        if (m_cancel.IsSet()) {
            wasCancelled = true;
            return false;
        }
        if (!channel.ReadNextPacket(*packet)) break;
        collector.Add(*packet);
        if (packet->GetPacketDate() >= m_window.end) break;
    }
    // The end of the file closes the slice at hand as the window's end does.
    collector.Flush();
    m_series = std::move(series);
    return true;
}

} // namespace Application_Tarvel
