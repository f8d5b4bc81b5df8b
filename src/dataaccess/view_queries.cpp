#include "dataaccess/view_queries.h"

#include "dataaccess/file_indexes.h"
#include "dataaccess/index_reduction.h"
#include "dataaccess/slice_collector.h"
#include "xpf/channel_walk.h"

namespace Application_Tarvel {

using namespace Persistance_Xpf;

EQueryEnd CTrvDataQuery::Execute() {
    // The opening ends with the query too, and so does a read that has to search the whole file.
    const auto file = OpenXpfFile(m_address.path, m_address.kind, &m_cancel).file;
    m_error = EError::noFile;
    EQueryEnd end = file ? SearchIn(*file) : EQueryEnd::failed;
    if (end == EQueryEnd::failed && m_cancel.IsSet()) end = EQueryEnd::cancelled;
    if (file) ForgetReplaced(*file);
    return end;
}

EQueryEnd CTrvDataQuery::SearchIn(CXpfFile& file) {
    CXpfChannel* channel = file.FindChannelByNumber(m_address.channel);
    m_error = EError::noChannel;
    if (!channel) return EQueryEnd::failed;
    auto packet = channel->CreatePacket();
    if (!packet || !packet->HasDate()) return EQueryEnd::failed;
    m_index = m_address.indexes ? m_address.indexes->Find(m_address.path) : nullptr;
    if (m_index && !m_index->Fits(file, m_address.path)) m_index = nullptr;

    m_error = EError::damaged; // also when the memory does not hold the result
    const EQueryEnd end =
        Search(*channel, std::unique_ptr<CXpfDatedPacket>(static_cast<CXpfDatedPacket*>(packet.release())));
    if (end == EQueryEnd::done)
        m_error = EError::none;
    else if (!channel->GetFirst().IsKnown())
        m_error = EError::noPackets;
    return end;
}

// A file that was replaced while it was read has left things in the cache that are not true of the new one,
// perhaps after the owner of the cache had them removed.
void CTrvDataQuery::ForgetReplaced(const CXpfFile& file) const {
    if (m_address.cache && !file.IsAt(m_address.path)) m_address.cache->InvalidateFile(m_address.path);
}

std::optional<EQueryEnd> CTrvDataQuery::FindNeighbours(CXpfChannel& channel, CXpfDatedPacket& packet,
                                                       CDateTimeSpan date, SDateBracket& bracket) const {
    SDateSearch search = MakeSearch(false);
    search.cache = nullptr;
    switch (SearchDate(channel, packet, date, search, bracket)) {
    case EDateSearch::cancelled: return EQueryEnd::cancelled;
    case EDateSearch::failed: return EQueryEnd::failed;
    default: return std::nullopt;
    }
}

EQueryEnd CTrvViewValueDataQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    switch (SearchDate(channel, *packet, m_time, MakeSearch(false), m_bracket)) {
    case EDateSearch::outside: return EQueryEnd::done;
    case EDateSearch::failed: return EQueryEnd::failed;
    case EDateSearch::cancelled: return EQueryEnd::cancelled;
    case EDateSearch::found: break;
    }
    packet->Clear(); // the search has read into it, and a short packet does not fill it
    SPacketHeader header;
    if (!channel.SeekPacketNumber(PickNearer(m_bracket, m_time)) || !channel.ReadNextPacket(*packet, &header))
        return EQueryEnd::failed;
    m_place = {header.number, channel.GetPrevious(), packet->GetPacketDate()};
    m_packet = std::move(packet);
    return EQueryEnd::done;
}

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

EQueryEnd CTrvView1DDataQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    if (m_window.slice.GetTicks() <= 0) return EQueryEnd::failed;
    bool empty = false;
    switch (SeekStart(channel, *packet, empty)) {
    case EDateSearch::failed: return EQueryEnd::failed;
    case EDateSearch::cancelled: return EQueryEnd::cancelled;
    default: break;
    }
    if (empty) return EQueryEnd::done;

    const CXpfFilePosition start = channel.GetCurrent();
    const std::uint32_t size = packet->GetPayloadSize();
    const CChannelIndex* index = GetIndex() ? GetIndex()->GetChannel(channel.GetNumber()) : nullptr;
    if (const auto end = Reduce(channel, size, index)) return *end;
    CChannelWalk(channel, size).MoveTo(start.Get());
    if (m_hasParted) m_onPart({}); // takes back what was handed over
    return *Reduce(channel, size, nullptr);
}

std::optional<EQueryEnd> CTrvView1DDataQuery::Reduce(CXpfChannel& channel, std::uint32_t payloadSize,
                                                     const CChannelIndex* index) {
    SReducedSeries series;
    CSliceCollector collector(m_window, channel, payloadSize, series);
    CChannelWalk walk(channel, payloadSize);
    std::optional<CIndexReduction> blocks;
    if (index) blocks.emplace(*GetIndex(), *index, walk, collector, m_cancel);
    auto nextPart = std::chrono::steady_clock::now() + m_partInterval;
    for (;;) {
        if (blocks) blocks->Advance();
        const auto payloads = walk.Next([&collector] { collector.Settle(); });
        // After the read: an interrupted read is no end of the file.
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        if (payloads.empty() || !collector.Add(payloads)) break;
        if (!m_onPart || series.representatives.empty()) continue;
        if (const auto now = std::chrono::steady_clock::now(); now >= nextPart) {
            nextPart = now + m_partInterval;
            m_hasParted = true;
            m_onPart(collector.TakeFinished());
        }
    }
    // The end of the file closes the slice at hand as the window's end does.
    collector.Flush();
    if (blocks && blocks->HasLost()) return std::nullopt;
    m_series = std::move(series);
    return EQueryEnd::done;
}

} // namespace Application_Tarvel
