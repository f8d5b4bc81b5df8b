#include "dataaccess/view_queries.h"

#include "dataaccess/slice_collector.h"

#include <array>
#include <cstring>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

bool CTrvDataQuery::Execute(bool& wasCancelled) {
    bool outdated = false;
    // The opening too is to end with the query, and one read that has to search the whole file.
    const auto file = OpenXpfFile(m_address.path, m_address.kind, outdated, &m_cancel);
    m_error = EError::noFile;
    const bool success = file && SearchIn(*file, wasCancelled);
    if (!success && m_cancel.IsSet()) wasCancelled = true;
    if (file) ForgetReplaced(*file);
    return success;
}

bool CTrvDataQuery::SearchIn(CXpfFile& file, bool& wasCancelled) {
    CXpfChannel* channel = file.FindChannelByNumber(m_address.channel);
    m_error = EError::noChannel;
    if (!channel) return false;
    auto packet = channel->CreatePacket();
    if (!packet || !packet->HasDate()) return false;

    m_error = EError::damaged; // also when no memory is left for what is found
    const bool success =
        Search(*channel, std::unique_ptr<CXpfDatedPacket>(static_cast<CXpfDatedPacket*>(packet.release())),
               wasCancelled);
    if (success)
        m_error = EError::none;
    else if (!channel->GetFirst().IsKnown())
        m_error = EError::noPackets;
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

// The payloads of a walk: in place in the reader's block where the packets have the size of their type, as
// nearly all have; else copied as CXpfChannel::ReadNextPacket does.
class CPayloadWalk {
  public:
    CPayloadWalk(CXpfChannel& channel, std::uint32_t payloadSize)
        : m_channel(channel), m_size(payloadSize), m_copy(kPacketOverhead + payloadSize) {}

    // The next packets, none at the end of the walk. Valid until `beforeMove` is called, which happens within
    // a later call.
    template <class BeforeMove>
    std::span<const std::uint8_t* const> Next(BeforeMove&& beforeMove) {
        if (const std::size_t count = m_channel.ViewHeldPackets(m_size, m_run)) return {m_run.data(), count};
        beforeMove();
        m_run[0] = m_channel.ViewNextPacket(m_size);
        if (!m_run[0]) m_run[0] = ReadNext();
        return {m_run.data(), m_run[0] ? std::size_t{1} : 0};
    }

  private:
    const std::uint8_t* ReadNext() {
        std::uint32_t sizeRead = 0;
        std::uint8_t* payload = m_copy.data() + kPacketHeaderSize;
        std::memset(payload, 0, m_size); // what a short packet does not fill
        return m_channel.ReadNextPacket(sizeRead, nullptr, payload, m_size) ? payload : nullptr;
    }

    CXpfChannel& m_channel;
    std::uint32_t m_size;
    std::vector<std::uint8_t> m_copy; // room for header and trailer around the payload
    std::array<const std::uint8_t*, 64> m_run;
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
    // The lower one first: a channel all of whose packets share one date is shown from its first packet on.
    const bool isUpper = m_window.start == bracket.upperDate && m_window.start != bracket.lowerDate;
    const std::uint32_t number = isUpper ? bracket.upperNumber : bracket.lowerNumber;
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
    for (;;) {
        const auto payloads = walk.Next([&collector] { collector.Settle(); });
        // Asked behind the read: one that was interrupted is no end of the file.
        if (m_cancel.IsSet()) {
            wasCancelled = true;
            return false;
        }
        if (payloads.empty() || !collector.Add(payloads)) break;
    }
    // The end of the file closes the slice at hand as the window's end does.
    collector.Flush();
    m_series = std::move(series);
    return true;
}

} // namespace Application_Tarvel
