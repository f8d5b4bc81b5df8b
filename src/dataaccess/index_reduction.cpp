#include "dataaccess/index_reduction.h"

#include <algorithm>
#include <cstring>

namespace Application_Tarvel {

namespace {

// Packets that lie farther apart are read one by one along their links: a read of its own costs about what it
// takes to copy so many bytes.
constexpr std::int64_t kApart = 2048;
constexpr std::int64_t kLargestRead = std::int64_t{256} << 10;
// After so many blocks in a row that are read the reader's own way of reading ahead serves better.
constexpr int kLoneBlocks = 3;

// A walk that is so many bytes ahead of a scan does not wait for it.
constexpr std::int64_t kAhead = std::int64_t{32} << 20;

CSliceCollector::SBlock MakeBlock(const SIndexForm& form, const SIndexHead& head,
                                  const std::uint8_t* record) {
    return {head.minimumDate,       head.maximumDate,  head.Has(indexOrdered | indexDistinct),
            head.position,          head.lastPosition, form.GetMinimum(record),
            form.GetMaximum(record)};
}

} // namespace

CIndexReduction::CIndexReduction(const CFileIndex& file, const CChannelIndex& index,
                                 Persistance_Xpf::CChannelWalk& walk, CSliceCollector& collector,
                                 const Outils::CEvent& cancel)
    : m_file(file), m_cursor(index), m_walk(walk), m_collector(collector), m_cancel(cancel), m_probe(walk) {
    m_collector.SetReader([this](std::int64_t place, std::uint8_t* payload) {
        const bool done = m_walk.ReadPayload(place, payload);
        m_hasLost = m_hasLost || !done;
        return done;
    });
}

void CIndexReduction::Advance() {
    do {
        while (TakeBlocks()) m_readBlocks = 0;
    } while (m_block >= m_cursor.GetCount(0) && WaitForMore());
    const std::int64_t place = m_walk.GetPlace();
    std::int64_t limit = INT64_MAX;
    if (!m_isOff && m_block < m_cursor.GetCount(0)) {
        const auto head = m_cursor.GetHead(0, m_block);
        if (!head) {
            m_isOff = true;
        } else if (head->position > place) {
            limit = head->position;
        } else if (m_block + 1 < m_cursor.GetCount(0)) {
            if (const auto next = m_cursor.GetHead(0, m_block + 1)) limit = next->position;
            if (limit > place && limit != INT64_MAX) PrepareRead(*head, limit - place);
        }
    }
    m_walk.SetLimit(limit > place ? limit : INT64_MAX);
}

// The walk is going to read the packets of this block, which begins at its place, and which the next one
// follows so many bytes on.
void CIndexReduction::PrepareRead(const SIndexHead& head, std::int64_t size) {
    const bool isApart = size / head.count > kApart;
    m_walk.SetApart(isApart, std::min(size, kLargestRead));
    if (++m_readBlocks > kLoneBlocks || isApart || size > kLargestRead) return;
    m_collector.Settle();
    m_walk.Fetch(size);
}

// False when the walk had better go on by itself.
bool CIndexReduction::WaitForMore() {
    constexpr std::chrono::milliseconds kStep{10}; // a cancellation is seen as soon
    constexpr int kSteps = 20;
    const std::int64_t covered = m_file.GetCovered();
    // A channel with few packets is walked along its links sooner than the scan finds the next of them.
    constexpr std::int64_t kPatience = std::int64_t{16} << 20;
    if (const std::size_t count = m_cursor.GetCount(0); count != m_seenCount) {
        m_seenCount = count;
        m_seenAt = covered;
    }
    if (covered > m_seenAt + kPatience) m_follows = false;
    for (int step = 0; step < kSteps; ++step) {
        if (m_isOff || !m_follows || m_cancel.IsSet() || !m_file.IsGrowing()) return false;
        if (m_walk.GetPlace() > covered + kAhead) return false;
        m_file.WaitForGrowth(covered, kStep);
        if (m_file.GetCovered() > covered) return true;
    }
    m_follows = false;
    return false;
}

// Whether a block begins at the place; m_block is then that block, and otherwise the next one.
bool CIndexReduction::FindBlock(std::int64_t place) {
    constexpr int kSteps = 4; // a walk mostly comes to one of the next blocks
    for (int step = 0; step < kSteps && m_block < m_cursor.GetCount(0); ++step) {
        const auto head = m_cursor.GetHead(0, m_block);
        if (!head) return false;
        if (head->position == place) return true;
        if (head->position > place) {
            if (m_block == 0) return false;
            const auto before = m_cursor.GetHead(0, m_block - 1);
            if (before && before->position < place) return false;
            break;
        }
        ++m_block;
    }
    m_block = m_cursor.FindPosition(place);
    if (m_block >= m_cursor.GetCount(0)) return false;
    const auto head = m_cursor.GetHead(0, m_block);
    return head && head->position == place;
}

// Takes the largest block that begins at the place of the walk and lies within the slice at hand.
bool CIndexReduction::TakeBlocks() {
    const std::int64_t place = m_walk.GetPlace();
    if (m_isOff || place == 0 || !FindBlock(place)) return false;
    const SIndexForm& form = m_cursor.GetIndex().GetForm();
    std::size_t taken = kIndexLevels, size = 1;
    std::int64_t last = 0;
    bool isAround = false;
    for (std::size_t level = 0; level < kIndexLevels; ++level, size *= kIndexFan) {
        const std::size_t number = m_block / size;
        if (m_block % size != 0 || number >= m_cursor.GetCount(level)) break;
        const std::uint8_t* record = m_cursor.Get(level, number);
        if (!record) break;
        const SIndexHead head = LoadIndexHead(record);
        if (!head.IsSound() || head.position != place || !head.Has(indexLeads)) break;
        const auto fit = m_collector.FindFit(MakeBlock(form, head, record));
        isAround = level == 0 && fit == CSliceCollector::EFit::around;
        if (fit != CSliceCollector::EFit::inside && !isAround) break;
        taken = level;
        last = head.lastPosition;
        if (isAround) break;
    }
    if (taken == kIndexLevels) return false;
    size = std::size_t{1} << (2 * taken);
    const std::int64_t goesOn = FindNext(m_block + size, last);
    // Again: the last look may have been at another page.
    const std::uint8_t* record = m_cursor.Get(taken, m_block / size);
    if (goesOn <= place || !record) return false;
    m_collector.Settle();
    const SIndexHead head = LoadIndexHead(record);
    // Vectors reach beyond the record, where the scan may be writing the next one.
    m_record.resize(form.recordSize + SIndexForm::kReach);
    std::memcpy(m_record.data(), record, form.recordSize);
    const auto block = MakeBlock(form, head, m_record.data());
    if (!isAround) {
        m_collector.AddBlock(block);
    } else {
        const Persistance_Xpf::CDateProbe::SStretch stretch{head.position, head.lastPosition,
                                                            head.minimumDate, head.maximumDate, head.count};
        const std::uint8_t* payload = m_probe.FindNearest(stretch, m_collector.GetCentre());
        if (!payload) return false;
        m_collector.AddBlock(block, Outils::Load<std::int64_t>(payload), payload);
    }
    m_walk.MoveTo(goesOn);
    m_block += size;
    return true;
}

// Where a walk comes to after the block before this one. Where the index does not say so, the walk reads the
// last packet of that block, once more: what it adds to a slice it adds but once.
std::int64_t CIndexReduction::FindNext(std::size_t block, std::int64_t lastPosition) {
    if (block >= m_cursor.GetCount(0)) return lastPosition;
    const auto head = m_cursor.GetHead(0, block);
    return head && head->Has(indexEntered) ? head->position : lastPosition;
}

} // namespace Application_Tarvel
