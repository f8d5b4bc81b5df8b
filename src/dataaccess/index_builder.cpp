#include "dataaccess/index_builder.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Outils::Load;

namespace {

// A block of a channel whose packets are far between holds at least so many: a walk along their links reads
// each of them by itself, and a record is about as long as three packets.
constexpr std::uint32_t kLeastPackets = 16;
// Records may take so many parts in a thousand of the stream, with what the levels above add, and so many
// bytes in any case: small files get the finest blocks.
constexpr std::int64_t kShare = 18;
constexpr std::int64_t kFreeRecords = std::int64_t{256} << 10;
// What the levels above add: a third.
constexpr std::int64_t WithLevels(std::int64_t bytes) { return bytes * 4 / 3; }

constexpr std::int64_t kFirstSampleStep = std::int64_t{64} << 10;
constexpr std::size_t kMostChannels = 200;
// A channel all of whose blocks have these is orderly.
constexpr std::uint32_t kOrderly = indexLeads | indexEntered | indexOrdered | indexChained;

constexpr std::size_t kDateOffset = kPacketHeaderSize;
constexpr std::size_t kLargestTail = std::size_t{64} << 10;

std::uint32_t LoadNumber(const std::uint8_t* packet) {
    return LoadWord(packet + offsetof(SPacketHeader, number));
}
std::uint32_t LoadBackLink(const std::uint8_t* packet) {
    return LoadWord(packet + offsetof(SPacketHeader, backLink));
}
std::uint32_t LoadForwardLink(const std::uint8_t* packet) {
    return LoadWord(packet + offsetof(SPacketHeader, forwardLink));
}

} // namespace

CIndexBuilder::SChannel::SChannel(CChannelIndex& channel, std::uint32_t size)
    : index(channel), packetSize(size), record(channel.GetForm().recordSize + SIndexForm::kReach) {
    extremes.Prepare(channel.GetPacketType());
}

CIndexBuilder::CIndexBuilder(std::shared_ptr<CFileIndex> index)
    : m_index(std::move(index)),
      m_slots(65536, kUnknown),
      m_frontier(m_index->GetCovered()),
      m_whole(m_frontier),
      m_start(m_index->GetDataStart()),
      m_nextSample(m_frontier),
      m_sampleStep(std::max(kFirstSampleStep, (m_frontier - m_start) / 32)) {
    for (const auto& [number, place] : m_index->GetFirstPlaces()) MeetChannel(number, place);
    const auto gaps = m_index->GetGaps();
    // Beyond those that were kept nothing is known of the others.
    if (m_index->GetMoreGaps() == 0)
        m_whole = gaps.empty() ? m_start : gaps.back().position + gaps.back().size;
}

std::unique_ptr<CIndexBuilder> CIndexBuilder::MakePart(std::shared_ptr<CFileIndex> index) {
    auto part = std::make_unique<CIndexBuilder>(std::move(index));
    part->m_isPart = true;
    part->m_start = part->m_whole = part->m_frontier;
    return part;
}

// The last packet of a channel as the last block has it.
void CIndexBuilder::RestoreLast(SChannel& channel) {
    CIndexCursor cursor(channel.index);
    const std::size_t count = cursor.GetCount(0);
    if (count == 0) return;
    const auto head = cursor.GetHead(0, count - 1);
    if (!head) return;
    channel.lastPosition = head->lastPosition;
    channel.lastNumber = head->lastNumber;
    channel.lastDate = head->maximumDate;
    m_recordBytes += WithLevels(static_cast<std::int64_t>(count) * channel.index.GetForm().recordSize);
}

bool CIndexBuilder::Begin(CXpfFile& file, const std::filesystem::path& path, const SFileState* since) {
    const auto state = LookAtState(path);
    if (!state || !m_index->Fits(file, path)) return false;
    m_state = since ? *since : *state;
    for (const auto& channel : m_channels) {
        SPacketHeader header;
        if (channel->lastPosition == 0 || !file.Seek(channel->lastPosition)) continue;
        if (file.Read(&header, sizeof header) == sizeof header) channel->lastLink = header.forwardLink;
    }
    m_index->BeginGrowth();
    return true;
}

void CIndexBuilder::End() {
    if (!m_tail.empty()) m_index->AddSample({m_tailPosition, SumPacket(m_tail)}, true);
    m_index->EndGrowth();
}

void CIndexBuilder::Take(std::int64_t position, std::span<const std::uint8_t* const> packets) {
    if (packets.empty()) return;
    const std::uint8_t* const first = packets.front();
    const std::int64_t begin = position;
    while (!packets.empty() && begin + (packets.front() - first) < m_frontier) packets = packets.subspan(1);
    while (!packets.empty()) {
        const auto run = packets.first(std::min(packets.size(), kRun));
        packets = packets.subspan(run.size());
        TakeRun(begin + (run.front() - first), run);
    }
}

void CIndexBuilder::TakeRun(std::int64_t position, std::span<const std::uint8_t* const> packets) {
    const std::uint8_t* const first = packets.front();
    for (const std::uint8_t* packet : packets) {
        const std::uint16_t number = static_cast<std::uint16_t>(LoadWord(packet) >> 16);
        if (m_slots[number] == kUnknown) MeetChannel(number, position + (packet - first));
        const std::uint8_t slot = m_slots[number];
        if (slot == kIgnored) continue;
        SChannel& channel = *m_channels[slot];
        channel.run[channel.held++] = packet;
    }
    for (const auto& channel : m_channels)
        if (channel->held > 0) AddRun(*channel, position, first);
    const std::int64_t last = position + (packets.back() - first);
    if (last >= m_nextSample) AddSample(last, packets.back());
    RememberTail(last, packets.back());
    m_frontier = last + LoadPacketSize(packets.back());
    m_index->SetCovered(m_frontier);
    for (const auto& channel : m_channels) CloseWhenFull(*channel);
}

void CIndexBuilder::MeetChannel(std::uint16_t number, std::int64_t position) {
    m_index->AddFirstPlace(number, position);
    m_slots[number] = kIgnored;
    CChannelIndex* index = m_index->GetChannel(number);
    if (!index || m_channels.size() >= kMostChannels) return;
    m_slots[number] = static_cast<std::uint8_t>(m_channels.size());
    m_channels.push_back(std::make_unique<SChannel>(*index, index->GetForm().payloadSize + kPacketOverhead));
    RestoreLast(*m_channels.back());
}

// Whether a walk that stands on the last packet comes to this one next: along the link, or without one packet
// by packet.
bool CIndexBuilder::IsLedTo(const SChannel& channel, std::int64_t position) const {
    if (channel.lastPosition == 0) return true;
    if (channel.lastLink == 0) return channel.lastPosition >= m_whole;
    return position - channel.lastPosition == channel.lastLink;
}

// What holds of the step from the last packet to the first one of a block.
std::uint32_t CIndexBuilder::FindJointFlags(const SChannel& channel, const SIndexHead& head,
                                            std::uint32_t backLink) const {
    const bool isFirst = channel.lastPosition == 0;
    if (isFirst && m_isPart) return kAllIndexFlags; // seen to when the part is joined
    std::uint32_t flags = kAllIndexFlags;
    if (!IsLedTo(channel, head.position)) flags &= ~std::uint32_t{indexEntered};
    if (!isFirst && head.minimumDate < channel.lastDate) flags &= ~std::uint32_t{indexOrdered};
    if (!isFirst && head.minimumDate <= channel.lastDate) flags &= ~std::uint32_t{indexDistinct};
    if (head.firstNumber != channel.lastNumber + 1 ||
        (!isFirst && backLink != head.position - channel.lastPosition))
        flags &= ~std::uint32_t{indexChained};
    return flags;
}

// Opens a block with its first packet, and the flags of the step to it.
void CIndexBuilder::BeginBlock(SChannel& channel, std::int64_t position, const std::uint8_t* packet) {
    const auto date = Load<std::int64_t>(packet + kDateOffset);
    const std::uint32_t number = LoadNumber(packet);
    channel.block = {position, position, date, date, number, number, 0, 0};
    channel.block.flags = FindJointFlags(channel, channel.block, LoadBackLink(packet));
    if (channel.lastPosition == 0) channel.firstBackLink = LoadBackLink(packet);
}

// All packets of a channel in a run. Apart from the first one of a block they are looked at without a branch.
void CIndexBuilder::AddRun(SChannel& channel, std::int64_t position, const std::uint8_t* first) {
    const std::size_t count = std::exchange(channel.held, 0);
    const auto packets = std::span(channel.run).first(count);
    bool usual = true;
    for (const std::uint8_t* packet : packets) usual &= LoadPacketSize(packet) == channel.packetSize;
    SIndexHead& block = channel.block;
    if (!usual) return AddOddRun(channel, packets, position, first);

    std::size_t i = 0;
    if (block.count == 0) {
        const std::int64_t place = position + (packets[0] - first);
        BeginBlock(channel, place, packets[0]);
        channel.extremes.Begin(packets[0] + kPacketHeaderSize);
        channel.lastPosition = place;
        channel.lastDate = block.minimumDate;
        channel.lastNumber = block.firstNumber;
        channel.lastLink = LoadForwardLink(packets[0]);
        i = 1;
    }
    bool leads = true, ordered = true, distinct = true, chained = true;
    std::int64_t place = channel.lastPosition, date = channel.lastDate;
    std::int64_t least = block.minimumDate, greatest = block.maximumDate;
    std::uint32_t number = channel.lastNumber, link = channel.lastLink;
    // Without a gap after the last packet a walk comes to the next one also where there is no link.
    const bool steps = place >= m_whole;
    for (std::size_t k = i; k < count; ++k) {
        const std::uint8_t* packet = packets[k];
        const std::int64_t here = position + (packet - first), distance = here - place;
        const auto next = Load<std::int64_t>(packet + kDateOffset);
        leads &= (link == distance) | ((link == 0) & steps);
        chained &= (LoadNumber(packet) == number + 1) & (LoadBackLink(packet) == distance);
        ordered &= next >= date;
        distinct &= next > date;
        least = std::min(least, next);
        greatest = std::max(greatest, next);
        number = LoadNumber(packet);
        link = LoadForwardLink(packet);
        place = here;
        date = next;
    }
    std::array<const std::uint8_t*, kRun> payloads;
    for (std::size_t k = i; k < count; ++k) payloads[k] = packets[k] + kPacketHeaderSize;
    channel.extremes.Include(std::span(payloads).subspan(i, count - i));
    channel.lastPosition = block.lastPosition = place;
    channel.lastDate = date;
    channel.lastNumber = block.lastNumber = number;
    channel.lastLink = link;
    block.minimumDate = least;
    block.maximumDate = greatest;
    block.count += static_cast<std::uint32_t>(count);
    block.flags &= (leads ? kAllIndexFlags : ~indexLeads) & (ordered ? kAllIndexFlags : ~indexOrdered) &
                   (distinct ? kAllIndexFlags : ~indexDistinct) & (chained ? kAllIndexFlags : ~indexChained);
    if (!block.Has(kOrderly)) channel.index.SetDisorderly();
}

// Of a run with a packet whose size is not that of its type only places and numbers are kept: a walk reads
// the block itself.
void CIndexBuilder::AddOddRun(SChannel& channel, std::span<const std::uint8_t* const> packets,
                              std::int64_t position, const std::uint8_t* first) {
    SIndexHead& block = channel.block;
    channel.index.SetDisorderly();
    for (const std::uint8_t* packet : packets) {
        const std::int64_t place = position + (packet - first);
        if (block.count == 0) BeginBlock(channel, place, packet);
        ++block.count;
        block.flags &= indexEntered;
        channel.lastPosition = block.lastPosition = place;
        channel.lastNumber = block.lastNumber = LoadNumber(packet);
        channel.lastLink = LoadForwardLink(packet);
        channel.lastDate = INT64_MAX; // whatever follows is out of order
    }
}

void CIndexBuilder::CloseWhenFull(SChannel& channel) {
    const SIndexHead& block = channel.block;
    if (block.count == 0 || m_frontier - block.position < kBlock) return;
    if (block.count < kLeastPackets) return;
    const std::int64_t bytes = WithLevels(channel.index.GetForm().recordSize);
    const std::int64_t share = (m_frontier - m_start) / 1000 * kShare;
    if (m_recordBytes + bytes > std::max(kFreeRecords, share)) return;
    CloseBlock(channel);
}

void CIndexBuilder::CloseBlock(SChannel& channel) {
    SIndexHead& block = channel.block;
    if (block.count == 0 || m_failed) return; // after a record that is missing, all others have other places
    const SIndexForm& form = channel.index.GetForm();
    std::uint8_t* record = channel.record.data();
    std::memcpy(record, &block, sizeof block);
    if (block.Has(indexLeads))
        channel.extremes.Finish(form.GetMinimum(record), form.GetMaximum(record));
    else
        std::memset(record + sizeof block, 0, form.recordSize - sizeof block);
    if (!channel.index.Append(record)) m_failed = true;
    m_recordBytes += WithLevels(form.recordSize);
    block = {};
}

void CIndexBuilder::CloseBlocks() {
    for (const auto& channel : m_channels) CloseBlock(*channel);
}

CIndexBuilder::SChannel* CIndexBuilder::FindChannel(std::uint16_t number) {
    const std::uint8_t slot = m_slots[number];
    return slot == kUnknown || slot == kIgnored ? nullptr : m_channels[slot].get();
}

bool CIndexBuilder::Join(CIndexBuilder& part) {
    part.CloseBlocks();
    if (part.m_start != m_frontier || part.HasFailed() || part.m_index->HasGaps()) return false;
    CloseBlocks();
    for (const auto& [number, place] : part.m_index->GetFirstPlaces())
        if (m_slots[number] == kUnknown) MeetChannel(number, place);
    for (const auto& channel : part.m_channels)
        if (SChannel* own = FindChannel(channel->index.GetNumber())) JoinChannel(*own, *channel);
    for (const SIndexSample& sample : part.m_index->GetSamples())
        if (sample.position > m_frontier && m_index->AddSample(sample)) m_sampleStep *= 2;
    m_frontier = part.m_frontier;
    m_nextSample = std::max(m_nextSample, m_frontier);
    m_tail = std::move(part.m_tail);
    m_tailPosition = part.m_tailPosition;
    part.m_tail.clear();
    m_index->SetCovered(m_frontier);
    m_index->ReportGrowth();
    return !m_failed;
}

void CIndexBuilder::JoinChannel(SChannel& channel, SChannel& part) {
    CIndexCursor cursor(part.index);
    const std::uint32_t size = channel.index.GetForm().recordSize;
    for (std::size_t i = 0; i < cursor.GetCount(0) && !m_failed; ++i) {
        std::memcpy(channel.record.data(), cursor.Get(0, i), size);
        if (i == 0) {
            SIndexHead head = LoadIndexHead(channel.record.data());
            head.flags &= FindJointFlags(channel, head, part.firstBackLink);
            std::memcpy(channel.record.data(), &head, sizeof head);
            if (!head.Has(kOrderly)) channel.index.SetDisorderly();
        }
        m_failed = !channel.index.Append(channel.record.data());
        m_recordBytes += WithLevels(size);
    }
    if (cursor.GetCount(0) == 0) return;
    if (!part.index.IsOrderly()) channel.index.SetDisorderly();
    channel.lastPosition = part.lastPosition;
    channel.lastDate = part.lastDate;
    channel.lastNumber = part.lastNumber;
    channel.lastLink = part.lastLink;
}

void CIndexBuilder::SkipTo(std::int64_t end) {
    m_index->AddGap({m_frontier, end - m_frontier});
    m_frontier = m_whole = end;
    m_index->SetCovered(end);
}

void CIndexBuilder::AddSample(std::int64_t position, const std::uint8_t* packet) {
    const std::size_t size = std::min<std::size_t>(LoadPacketSize(packet), kLargestTail);
    if (m_index->AddSample({position, SumPacket({packet, size})})) m_sampleStep *= 2;
    m_nextSample = position + m_sampleStep;
    m_index->ReportGrowth();
}

void CIndexBuilder::RememberTail(std::int64_t position, const std::uint8_t* packet) {
    const std::size_t size = std::min<std::size_t>(LoadPacketSize(packet), kLargestTail);
    m_tail.assign(packet, packet + size);
    m_tailPosition = position;
}

} // namespace Application_Tarvel
