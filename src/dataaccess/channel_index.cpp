// The records of one channel, and the way through them.
#include "dataaccess/file_index.h"
#include "dataaccess/packet_extremes.h"

#include <vector>

namespace Application_Tarvel {

bool CChannelIndex::Append(const std::uint8_t* record) {
    m_made[0].Append(record);
    for (std::size_t level = 0; level + 1 < kIndexLevels && GetCount(level) % kIndexFan == 0; ++level)
        if (!MakeParent(level)) return false;
    return true;
}

// Of the last records of the level.
bool CChannelIndex::MakeParent(std::size_t level) {
    CIndexCursor cursor(*this);
    CPacketExtremes extremes;
    if (!extremes.Prepare(m_packetType)) return false;
    std::vector<std::uint8_t> parent(m_form.recordSize + SIndexForm::kReach);
    const std::size_t first = GetCount(level) - kIndexFan;
    SIndexHead head;
    for (std::size_t i = first; i < first + kIndexFan; ++i) {
        const std::uint8_t* record = cursor.Get(level, i);
        if (!record) return false;
        const std::uint8_t* images[] = {m_form.GetMinimum(record), m_form.GetMaximum(record)};
        if (i == first) {
            head = LoadIndexHead(record);
            extremes.Begin(images[0]);
        } else {
            JoinIndexHeads(head, LoadIndexHead(record));
        }
        extremes.Include(images);
    }
    std::memcpy(parent.data(), &head, sizeof head);
    extremes.Finish(m_form.GetMinimum(parent.data()), m_form.GetMaximum(parent.data()));
    m_made[level + 1].Append(parent.data());
    return true;
}

bool CChannelIndex::Keep(std::size_t level, const SKeptRecords& records, bool loads) {
    m_kept[level] = records;
    if (!loads) return true;
    CIndexCursor cursor(*this);
    for (std::size_t i = 0; i < records.count; ++i) {
        const std::uint8_t* record = cursor.Get(level, i);
        if (!record) return false;
        m_made[level].Append(record);
    }
    m_kept[level] = {};
    return true;
}

std::optional<SIndexHead> CIndexCursor::GetHead(std::size_t level, std::size_t i) {
    const std::uint8_t* record = Get(level, i);
    if (!record) return std::nullopt;
    const SIndexHead head = LoadIndexHead(record);
    return head.IsSound() ? std::optional(head) : std::nullopt;
}

const std::uint8_t* CIndexCursor::GetKept(std::size_t level, std::size_t i) {
    const SKeptRecords& kept = m_index.m_kept[level];
    const std::uint32_t size = m_index.GetForm().recordSize;
    const std::size_t perPage = SKeptRecords::GetPerPage(size), number = i / perPage;
    auto& page = m_pages[level];
    if (!page) page = std::make_unique<SPage>();
    if (page->number != number) {
        page->number = SIZE_MAX;
        const auto offset = kept.offset + static_cast<std::int64_t>(number * CIndexPages::kPage);
        if (!kept.pages->ReadPage(offset, kept.seed + number, page->bytes)) return nullptr;
        page->number = number;
    }
    return page->bytes.data() + (i % perPage) * size;
}

// A record is before when the first block below it is, so that each level narrows the search in the next.
template <class Predicate>
std::optional<std::size_t> CIndexCursor::FindLast(Predicate&& isBefore) {
    std::size_t level = kIndexLevels - 1;
    while (level > 0 && GetCount(level) == 0) --level;
    std::size_t low = 0, high = GetCount(level);
    bool isWhole = true; // the search goes to the end of the level, which may grow meanwhile
    for (;; --level) {
        const std::size_t end = high;
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            const auto head = GetHead(level, middle);
            if (!head) return std::nullopt;
            if (isBefore(*head))
                low = middle + 1;
            else
                high = middle;
        }
        if (low == 0) return std::nullopt;
        if (level == 0) return low - 1;
        // Blocks that lie under no record of this level follow its last one.
        isWhole = isWhole && low == end;
        high = isWhole ? GetCount(level - 1) : low * kIndexFan;
        low = (low - 1) * kIndexFan;
    }
}

std::size_t CIndexCursor::FindPosition(std::int64_t position) {
    const auto before = FindLast([&](const SIndexHead& head) { return head.position < position; });
    return before ? *before + 1 : 0;
}

std::optional<std::size_t> CIndexCursor::FindDate(std::int64_t date) {
    return FindLast([&](const SIndexHead& head) { return head.minimumDate <= date; });
}

} // namespace Application_Tarvel
