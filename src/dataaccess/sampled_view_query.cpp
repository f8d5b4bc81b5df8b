#include "dataaccess/sampled_view_query.h"

#include "dataaccess/file_index.h"
#include "xpf/packet_sampler.h"

#include <algorithm>
#include <cstring>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::size_t kSearchReads = 100; // for both ends of the window, with a reserve
constexpr std::size_t kMostPlaces = CTrvSampledViewQuery::kMostReads - kSearchReads;
// A search by number takes some reads.
constexpr std::size_t kReadsOfSearch = 5;
// Below so many packets a place the exact query reads along the links, and is there as soon.
constexpr std::uint32_t kFewPackets = 2;
constexpr std::size_t kSmallestBlock = 4096;
constexpr std::size_t kLargestBlock = std::size_t{64} << 10;

// The block that is likely to hold a packet of the channel, whole, wherever it begins.
std::size_t ChooseBlock(std::int64_t bytesBetween, std::uint32_t packetSize) {
    const std::int64_t wanted = 2 * (bytesBetween + packetSize);
    std::size_t block = kSmallestBlock;
    while (block <= kLargestBlock && static_cast<std::int64_t>(block) < wanted) block *= 2;
    return block;
}

} // namespace

EQueryEnd CTrvSampledViewQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    m_series = {};
    if (m_window.slice.GetTicks() <= 0) return EQueryEnd::failed;
    EQueryEnd end = EQueryEnd::done;
    const auto extent = FindExtent(channel, *packet, end);
    if (!extent) return end;
    // With an index the exact query is as soon.
    if (GetIndex() && GetIndex()->GetCovered() >= extent->end) return EQueryEnd::done;

    const std::int64_t bytes = extent->end - extent->begin;
    // What an index covers the exact query need not read.
    const bool isIndexed = GetIndex() && GetIndex()->GetChannel(channel.GetNumber());
    const std::int64_t unread =
        extent->end - std::max(extent->begin, isIndexed ? GetIndex()->GetCovered() : extent->begin);
    const std::uint32_t packets = extent->last - extent->first;
    const auto slices = static_cast<std::uint64_t>(
        std::max<std::int64_t>((m_window.end - m_window.start).GetTicks() / m_window.slice.GetTicks(), 1));
    const std::size_t count = std::min<std::uint64_t>(slices, kMostPlaces);
    if (unread < m_worthwhile || packets / kFewPackets < count) return EQueryEnd::done;
    const std::size_t block = ChooseBlock(bytes / packets, packet->GetPayloadSize() + kPacketOverhead);
    if (block <= kLargestBlock)
        SampleBytes(channel, packet->GetPayloadSize(), *extent, block, count);
    else
        SampleNumbers(channel, *extent, count / kReadsOfSearch);
    return m_cancel.IsSet() ? EQueryEnd::cancelled : EQueryEnd::done;
}

std::optional<CTrvSampledViewQuery::SExtent>
CTrvSampledViewQuery::FindExtent(CXpfChannel& channel, CXpfDatedPacket& packet, EQueryEnd& end) const {
    SExtent extent;
    for (const bool isStart : {true, false}) {
        const CDateTimeSpan date = isStart ? m_window.start : m_window.end;
        SDateBracket bracket;
        const EDateSearch found = SearchDate(channel, packet, date, MakeSearch(true), bracket);
        end = found == EDateSearch::cancelled ? EQueryEnd::cancelled
              : found == EDateSearch::failed  ? EQueryEnd::failed
                                              : EQueryEnd::done;
        if (end != EQueryEnd::done) return {};
        if (found == EDateSearch::outside && isStart == (date > bracket.upperDate)) return {};
        // Before or after all packets the extent begins or ends with them, as the bracket does.
        const std::uint32_t number = isStart ? bracket.lowerNumber : bracket.upperNumber;
        if (!channel.SeekPacketNumber(number)) return {};
        (isStart ? extent.begin : extent.end) = channel.GetCurrent().Get();
        (isStart ? extent.first : extent.last) = number;
    }
    if (extent.end <= extent.begin || extent.last <= extent.first) return {};
    return extent;
}

void CTrvSampledViewQuery::SampleBytes(CXpfChannel& channel, std::uint32_t payloadSize, const SExtent& extent,
                                       std::size_t block, std::size_t count) {
    constexpr std::int64_t kPage = 4096;
    // From the first to the last packet themselves, so that the curve reaches both edges; between them whole
    // pages where that leaves the places even.
    std::vector<std::int64_t> places = {extent.begin};
    const double step = static_cast<double>(extent.end - extent.begin) / static_cast<double>(count);
    const std::int64_t unit = step > 8 * kPage ? kPage : 1;
    for (std::size_t i = 1; i + 1 < count; ++i) {
        const auto place = extent.begin + static_cast<std::int64_t>(step * static_cast<double>(i));
        places.push_back(std::max(place / unit * unit, places.back()));
    }
    places.push_back(extent.end);
    CPacketSampler sampler(channel, payloadSize, block);
    sampler.Sample(places, [&](std::int64_t, const std::uint8_t* payload) {
        auto packet = channel.CreatePacket();
        std::memcpy(packet->GetPayload(), payload, payloadSize);
        Add(std::move(packet));
        return !m_cancel.IsSet();
    });
}

// For a channel whose packets lie so far apart that a block would seldom hold one.
void CTrvSampledViewQuery::SampleNumbers(CXpfChannel& channel, const SExtent& extent, std::size_t count) {
    const double step = static_cast<double>(extent.last - extent.first) / static_cast<double>(count);
    for (std::size_t i = 0; i <= count && !m_cancel.IsSet(); ++i) {
        const auto offset = static_cast<std::uint32_t>(step * static_cast<double>(i));
        auto packet = channel.CreatePacket();
        if (channel.SeekPacketNumber(extent.first + offset) && channel.ReadNextPacket(*packet))
            Add(std::move(packet));
    }
}

// The first and the last packet lie on the edges of the window or beyond them. What else lies outside has a
// date that is damaged.
void CTrvSampledViewQuery::Add(std::unique_ptr<CXpfPacket> packet) {
    const auto dateOf = [](const CXpfPacket& dated) {
        return static_cast<const CXpfDatedPacket&>(dated).GetPacketDate();
    };
    auto& packets = m_series.representatives;
    const bool isStray =
        !packets.empty() && (dateOf(*packet) < m_window.start || dateOf(*packets.back()) > m_window.end);
    if (!isStray) packets.push_back(std::move(packet));
}

} // namespace Application_Tarvel
