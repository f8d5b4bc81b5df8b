#include "dataaccess/index_file.h"

#include "dataaccess/index_format.h"
#include "foundation/unique_file.h"
#include "xpf/layout.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace Application_Tarvel {

using namespace Persistance_Xpf;
using Outils_Fichiers::CDescriptor;

namespace {

constexpr std::int64_t kMostTable = std::int64_t{16} << 20; // bytes

// What the images look like: an index of other layouts is of no use.
std::uint64_t SumLayouts() {
    std::vector<std::uint32_t> words;
    for (std::uint16_t type = 0; type < 64; ++type) {
        const SPacketLayout* layout = FindPacketLayout(type);
        if (!layout) continue;
        words.push_back(type);
        for (const SFieldLayout& field : layout->fields) {
            words.push_back(static_cast<std::uint32_t>(field.type));
            words.push_back(field.count);
        }
    }
    return SumIndexBytes(
        {reinterpret_cast<const std::uint8_t*>(words.data()), words.size() * sizeof words[0]},
        sizeof(SIndexHead));
}

std::int64_t CountPages(std::size_t records, std::uint32_t recordSize) {
    const std::size_t perPage = SKeptRecords::GetPerPage(recordSize);
    return static_cast<std::int64_t>((records + perPage - 1) / perPage);
}

constexpr std::int64_t RoundUp(std::int64_t size) {
    constexpr auto page = static_cast<std::int64_t>(CIndexPages::kPage);
    return (size + page - 1) / page * page;
}

// Written in order; any failure shows at the end.
class CIndexWriter {
  public:
    explicit CIndexWriter(const CDescriptor& file) : m_file(file) {
        m_bytes.reserve(kBuffer + CIndexPages::kPage);
    }

    void Write(std::span<const std::uint8_t> bytes) {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        if (m_bytes.size() >= kBuffer) Flush();
    }
    bool Flush() {
        m_good = m_good && Outils_Fichiers::WriteAll(m_file, m_bytes);
        m_bytes.clear();
        return m_good;
    }

  private:
    static constexpr std::size_t kBuffer = std::size_t{1} << 20;

    const CDescriptor& m_file;
    bool m_good = true;
    std::vector<std::uint8_t> m_bytes;
};

template <class Row>
void Append(std::vector<std::uint8_t>& table, const Row& row) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&row);
    table.insert(table.end(), bytes, bytes + sizeof row);
}

// The rows of a table, one after the other; all zero beyond its end.
class CTableReader {
  public:
    explicit CTableReader(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}

    template <class Row>
    Row Take() {
        Row row{};
        m_whole = m_whole && m_bytes.size() >= sizeof row;
        if (!m_whole) return row;
        std::memcpy(&row, m_bytes.data(), sizeof row);
        m_bytes = m_bytes.subspan(sizeof row);
        return row;
    }
    // Every row was there, and nothing after them.
    bool IsWhole() const { return m_whole && m_bytes.empty(); }

  private:
    std::span<const std::uint8_t> m_bytes;
    bool m_whole = true;
};

bool WriteLevel(CIndexWriter& writer, const CChannelIndex& channel, std::size_t level, std::uint64_t seed) {
    CIndexCursor cursor(channel);
    const std::uint32_t size = channel.GetForm().recordSize;
    const std::size_t perPage = SKeptRecords::GetPerPage(size), count = channel.GetCount(level);
    CIndexPages::Page page;
    for (std::size_t first = 0; first < count; first += perPage, ++seed) {
        page.fill(0);
        for (std::size_t i = first; i < std::min(count, first + perPage); ++i) {
            const std::uint8_t* record = cursor.Get(level, i);
            if (!record) return false;
            std::memcpy(page.data() + (i - first) * size, record, size);
        }
        CIndexPages::Seal(page, seed);
        writer.Write(page);
    }
    return true;
}

bool ReadHead(const CIndexPages& pages, SIndexFileHead& head) {
    CIndexPages::Page page;
    if (!pages.ReadPage(0, kIndexHeadSeed, page)) return false;
    std::memcpy(&head, page.data(), sizeof head);
    return std::memcmp(head.magic, kIndexMagic, sizeof kIndexMagic) == 0 && head.layouts == SumLayouts() &&
           head.size == pages.GetSize() && head.tableSize >= 0 && head.tableSize <= kMostTable &&
           head.covered >= head.dataStart;
}

// Levels fit each other and lie within the file.
bool CheckLevels(const SIndexChannelRow& row, const SIndexFileHead& head) {
    for (std::size_t level = 0; level < kIndexLevels; ++level) {
        const auto& [offset, count] = row.levels[level];
        if (level > 0 && count != row.levels[level - 1].count / kIndexFan) return false;
        if (count > static_cast<std::uint64_t>(head.size) || offset < 0 || offset > head.size) return false;
        const auto bytes = CountPages(count, row.recordSize) * static_cast<std::int64_t>(CIndexPages::kPage);
        if (bytes > head.size - offset) return false;
    }
    return row.levels[kIndexLevels - 1].count < kIndexFan;
}

bool RestoreChannel(CChannelIndex& channel, const SIndexChannelRow& row, const SIndexFileHead& head,
                    std::size_t place, const std::shared_ptr<const CIndexPages>& pages,
                    std::int64_t mostLoaded) {
    if (row.type != channel.GetPacketType() || row.recordSize != channel.GetForm().recordSize ||
        !CheckLevels(row, head))
        return false;
    if (row.orderly == 0) channel.SetDisorderly();
    std::int64_t loaded = 0;
    for (std::size_t level = kIndexLevels; level-- > 0;) {
        const auto& [offset, count] = row.levels[level];
        loaded += static_cast<std::int64_t>(count * row.recordSize);
        if (!channel.Keep(level, {pages, offset, count, GetLevelSeed(head, place, level)},
                          loaded <= mostLoaded))
            return false;
    }
    return true;
}

} // namespace

bool WriteIndexFile(const CDescriptor& file, const CFileIndex& index, const SFileState& state) {
    SIndexFileHead head{};
    std::memcpy(head.magic, kIndexMagic, sizeof kIndexMagic);
    head.layouts = SumLayouts();
    head.state = state;
    head.dataStart = index.GetDataStart();
    head.covered = index.GetCovered();
    head.kind = static_cast<std::uint32_t>(index.GetKind());
    head.moreGaps = index.GetMoreGaps();
    std::vector<std::uint8_t> table;
    for (const SIndexSample& sample : index.GetSamples()) Append(table, sample), ++head.samples;
    for (const SIndexGap& gap : index.GetGaps()) Append(table, gap), ++head.gaps;
    for (const auto& [channel, position] : index.GetFirstPlaces())
        Append(table, SIndexPlaceRow{position, channel}), ++head.places;
    // Two files hardly have the same rows: pages of the one do not pass in the other.
    head.seed = SumIndexBytes(table, static_cast<std::uint64_t>(state.changed) ^ state.identity.number);
    const auto rows = index.GetChannels().size();
    head.tableSize = static_cast<std::int64_t>(table.size() + rows * sizeof(SIndexChannelRow));
    std::int64_t offset = static_cast<std::int64_t>(CIndexPages::kPage) + RoundUp(head.tableSize);
    for (const auto& [number, channel] : index.GetChannels()) {
        SIndexChannelRow row{
            number, channel.GetPacketType(), channel.GetForm().recordSize, channel.IsOrderly(), {}};
        for (std::size_t level = 0; level < kIndexLevels; ++level) {
            row.levels[level] = {offset, channel.GetCount(level)};
            offset += CountPages(channel.GetCount(level), row.recordSize) *
                      static_cast<std::int64_t>(CIndexPages::kPage);
        }
        Append(table, row);
        ++head.channels;
    }
    head.size = offset;
    head.tableSum = SumIndexBytes(table, head.seed);
    if (head.tableSize > kMostTable) return false;

    CIndexWriter writer(file);
    CIndexPages::Page page{};
    std::memcpy(page.data(), &head, sizeof head);
    CIndexPages::Seal(page, kIndexHeadSeed);
    writer.Write(page);
    table.resize(static_cast<std::size_t>(RoundUp(head.tableSize)));
    writer.Write(table);
    std::size_t place = 0;
    for (const auto& [number, channel] : index.GetChannels()) {
        for (std::size_t level = 0; level < kIndexLevels; ++level)
            if (!WriteLevel(writer, channel, level, GetLevelSeed(head, place, level))) return false;
        ++place;
    }
    return writer.Flush();
}

std::shared_ptr<CFileIndex> ReadIndexFile(const std::shared_ptr<const CIndexPages>& pages, CXpfFile& file,
                                          EFileKind kind, const SFileState& state, std::int64_t mostLoaded) {
    SIndexFileHead head;
    if (!ReadHead(*pages, head) || head.state.identity != state.identity ||
        head.kind != static_cast<std::uint32_t>(kind) || head.dataStart != file.GetDataStart().Get())
        return nullptr;
    // A file that was written again and kept its length is another one; a longer one may have grown.
    if (head.state.size == state.size && head.state.changed != state.changed) return nullptr;
    std::vector<std::uint8_t> table(static_cast<std::size_t>(head.tableSize));
    if (!pages->Read(static_cast<std::int64_t>(CIndexPages::kPage), table) ||
        SumIndexBytes(table, head.seed) != head.tableSum)
        return nullptr;

    auto index = std::make_shared<CFileIndex>(file, kind, state.identity);
    CTableReader reader(table);
    std::vector<SIndexSample> samples;
    std::vector<SIndexGap> gaps;
    const auto mayHold = [&](std::uint32_t count) { return count <= table.size(); };
    if (!mayHold(head.samples) || !mayHold(head.gaps) || !mayHold(head.places)) return nullptr;
    for (std::uint32_t i = 0; i < head.samples; ++i) samples.push_back(reader.Take<SIndexSample>());
    for (std::uint32_t i = 0; i < head.gaps; ++i) gaps.push_back(reader.Take<SIndexGap>());
    for (std::uint32_t i = 0; i < head.places; ++i) {
        const auto row = reader.Take<SIndexPlaceRow>();
        index->AddFirstPlace(static_cast<std::uint16_t>(row.channel), row.position);
    }
    if (head.channels != index->GetChannels().size()) return nullptr;
    for (std::size_t place = 0; place < head.channels; ++place) {
        const auto row = reader.Take<SIndexChannelRow>();
        CChannelIndex* channel = index->GetChannel(static_cast<std::uint16_t>(row.number));
        if (!channel || !RestoreChannel(*channel, row, head, place, pages, mostLoaded)) return nullptr;
    }
    if (!reader.IsWhole()) return nullptr;
    index->Restore(std::move(samples), std::move(gaps), head.moreGaps);
    index->SetCovered(head.covered);
    index->SetKept(pages);
    return index;
}

} // namespace Application_Tarvel
