#include "dataaccess/slice_collector.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr std::int64_t kFirstTick = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLastTick = std::numeric_limits<std::int64_t>::max();

std::int64_t LoadDate(const std::uint8_t* payload) {
    std::int64_t date;
    std::memcpy(&date, payload, sizeof date);
    return date;
}

std::uint64_t Distance(std::int64_t a, std::int64_t b) {
    const auto x = static_cast<std::uint64_t>(a), y = static_cast<std::uint64_t>(b);
    return a >= b ? x - y : y - x;
}

// In time order a window cannot have more slices than fit into it. Dates that jump back begin slices again,
// and in a damaged file each packet could: the memory for that is limited.
std::size_t FindMostSlices(const SWindow& window) {
    constexpr std::size_t kJumps = 1 << 16;
    std::int64_t length = 0;
    if (__builtin_sub_overflow(window.end.GetTicks(), window.start.GetTicks(), &length)) length = kLastTick;
    return static_cast<std::size_t>(std::max<std::int64_t>(length, 0) / window.slice.GetTicks()) + kJumps;
}

} // namespace

CSliceCollector::CSliceCollector(const SWindow& window, const CXpfChannel& channel, std::uint32_t payloadSize,
                                 SReducedSeries& series)
    : m_window(window),
      m_channel(channel),
      m_size(payloadSize),
      m_series(series),
      m_collects(window.collectExtremum &&
                 m_extremes.Prepare(static_cast<std::uint16_t>(channel.GetPacketType()))),
      m_mostSlices(FindMostSlices(window)) {}

bool CSliceCollector::Add(std::span<const std::uint8_t* const> payloads) {
    const std::int64_t windowEnd = m_window.end.GetTicks();
    while (!payloads.empty()) {
        const std::size_t taken = m_representative ? AddToSlice(payloads) : 0;
        if (taken > 0 && LoadDate(payloads[taken - 1]) >= windowEnd) return false;
        if (taken == payloads.size()) break;
        const std::int64_t date = LoadDate(payloads[taken]);
        Flush();
        Begin(payloads[taken], date);
        if (date >= windowEnd || m_series.representatives.size() > m_mostSlices) return false;
        payloads = payloads.subspan(taken + 1);
    }
    return true;
}

// Runs through the packets that lie in the slice at hand, up to the first one at or beyond the window's end,
// which is taken in as well. The count.
std::size_t CSliceCollector::AddToSlice(std::span<const std::uint8_t* const> payloads) {
    const std::int64_t start = m_sliceStart, end = m_sliceEnd, centre = m_centre;
    const std::int64_t windowEnd = m_window.end.GetTicks();
    std::uint64_t nearest = m_distance;
    const std::uint8_t* candidate = m_candidate;
    std::size_t count = 0;
    while (count < payloads.size()) {
        const std::int64_t date = LoadDate(payloads[count]);
        if (date < start || date >= end) break;
        const std::uint64_t distance = Distance(date, centre);
        if (distance < nearest) {
            nearest = distance;
            candidate = payloads[count];
        }
        ++count;
        if (date >= windowEnd) break;
    }
    m_distance = nearest;
    if (candidate != m_candidate) m_candidatePlace = 0;
    m_candidate = candidate;
    if (m_collects) m_extremes.Include(payloads.first(count));
    return count;
}

// On one side of the centre the packet at the end of the block is the nearest; around it any may be.
CSliceCollector::SDistance CSliceCollector::FindDistance(const SBlock& block) const {
    if (block.maximumDate <= m_centre) return {Distance(block.maximumDate, m_centre), true};
    return {block.minimumDate >= m_centre ? Distance(block.minimumDate, m_centre) : 0, false};
}

CSliceCollector::EFit CSliceCollector::FindFit(const SBlock& block) const {
    if (!m_representative || block.minimumDate < m_sliceStart || block.maximumDate >= m_sliceEnd ||
        block.maximumDate >= m_window.end.GetTicks())
        return EFit::outside;
    if (FindDistance(block).least >= m_distance) return EFit::inside;
    if (!block.isDistinct) return EFit::outside;
    return block.minimumDate < m_centre && block.maximumDate > m_centre ? EFit::around : EFit::inside;
}

void CSliceCollector::AddBlock(const SBlock& block) {
    const SDistance distance = FindDistance(block);
    if (distance.least < m_distance) {
        m_distance = distance.least;
        m_candidatePlace = distance.isLast ? block.last : block.first;
        m_candidate = nullptr;
    }
    AddExtremes(block);
}

void CSliceCollector::AddBlock(const SBlock& block, std::int64_t date, const std::uint8_t* payload) {
    if (const std::uint64_t distance = Distance(date, m_centre); distance < m_distance) {
        m_distance = distance;
        m_candidatePlace = 0;
        m_candidate = nullptr;
        std::memcpy(m_representative->GetPayload(), payload, m_size);
    }
    AddExtremes(block);
}

void CSliceCollector::AddExtremes(const SBlock& block) {
    if (!m_collects) return;
    const std::uint8_t* images[] = {block.minimum, block.maximum};
    m_extremes.Include(images);
}

void CSliceCollector::Settle() {
    if (m_candidate) std::memcpy(m_representative->GetPayload(), m_candidate, m_size);
    m_candidate = nullptr;
}

void CSliceCollector::Flush() {
    if (!m_representative) return;
    Settle();
    if (m_candidatePlace != 0) m_reader(m_candidatePlace, m_representative->GetPayload());
    m_candidatePlace = 0;
    m_series.representatives.push_back(std::move(m_representative));
    if (!m_collects) return;
    m_extremes.Finish(m_minimum->GetPayload(), m_maximum->GetPayload());
    m_series.minima.push_back(std::move(m_minimum));
    m_series.maxima.push_back(std::move(m_maximum));
}

SReducedSeries CSliceCollector::TakeFinished() {
    m_mostSlices -= std::min(m_mostSlices, m_series.representatives.size());
    return std::exchange(m_series, {});
}

void CSliceCollector::Begin(const std::uint8_t* payload, std::int64_t date) {
    const std::int64_t start = m_window.start.GetTicks(), slice = m_window.slice.GetTicks();
    std::int64_t elapsed = 0;
    const bool before = __builtin_sub_overflow(date, start, &elapsed) || elapsed < 0;
    const std::int64_t index = before ? 0 : elapsed / slice;
    // All that lies before the window belongs to its first slice. Ends beyond the tick range are its ends.
    m_sliceStart = index == 0 ? kFirstTick : start + index * slice;
    if (__builtin_add_overflow(start + index * slice, slice, &m_sliceEnd)) m_sliceEnd = kLastTick;
    m_centre = static_cast<std::int64_t>(static_cast<std::uint64_t>(start + index * slice) +
                                         static_cast<std::uint64_t>(slice / 2));
    m_representative = Clone(payload);
    m_distance = Distance(date, m_centre);
    if (!m_collects) return;
    m_minimum = Clone(payload);
    m_maximum = Clone(payload);
    m_extremes.Begin(payload);
}

std::unique_ptr<CXpfPacket> CSliceCollector::Clone(const std::uint8_t* payload) const {
    auto copy = m_channel.CreatePacket();
    std::memcpy(copy->GetPayload(), payload, m_size);
    return copy;
}

} // namespace Application_Tarvel
