#include "dataaccess/index_store.h"

#include "xpf/layout.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

namespace {

constexpr char kMagic[8] = {'V', 'N', 'I', 'N', 'D', 'E', 'X', '1'};
constexpr std::uint64_t kHeadSeed = 0x56'4E'49'48;
constexpr std::string_view kExtension = ".vnindex";
constexpr std::string_view kBeside = ".new-";
constexpr std::int64_t kMostTable = std::int64_t{16} << 20; // bytes

struct SHead {
    char magic[8];
    std::uint64_t layouts; // sum over the layouts that the images were made by
    SFileState state;      // of the indexed file
    std::int64_t dataStart;
    std::int64_t covered;
    std::uint64_t seed;    // of the pages; differs from file to file
    std::int64_t size;     // of the whole index file
    std::int64_t tableSize;
    std::uint64_t tableSum;
    std::uint64_t moreGaps;
    std::uint32_t kind, samples, gaps, places, channels, unused;
};
static_assert(std::is_trivially_copyable_v<SHead> && sizeof(SHead) < CIndexPages::kRoom);

struct SPlaceRow {
    std::int64_t position;
    std::uint64_t channel;
};
struct SLevelRow {
    std::int64_t offset;
    std::uint64_t count;
};
struct SChannelRow {
    std::uint32_t number, type, recordSize, orderly;
    SLevelRow levels[kIndexLevels];
};

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
    return SumIndexBytes({reinterpret_cast<const std::uint8_t*>(words.data()), words.size() * sizeof words[0]},
                         sizeof(SIndexHead));
}

std::uint64_t GetSeed(const SHead& head, std::size_t channel, std::size_t level) {
    return head.seed + ((std::uint64_t{channel} * kIndexLevels + level) << 32);
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
    explicit CIndexWriter(int handle) : m_handle(handle) { m_bytes.reserve(kBuffer + CIndexPages::kPage); }

    void Write(std::span<const std::uint8_t> bytes) {
        m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
        if (m_bytes.size() >= kBuffer) Flush();
    }
    bool Flush() {
        std::size_t at = 0;
        while (m_good && at < m_bytes.size()) {
            const ssize_t put = write(m_handle, m_bytes.data() + at, m_bytes.size() - at);
            if (put < 0 && errno == EINTR) continue;
            m_good = put > 0;
            if (m_good) at += static_cast<std::size_t>(put);
        }
        m_bytes.clear();
        return m_good;
    }

  private:
    static constexpr std::size_t kBuffer = std::size_t{1} << 20;

    int m_handle;
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

bool WriteIndex(int handle, const CFileIndex& index, const SFileState& state) {
    SHead head{};
    std::memcpy(head.magic, kMagic, sizeof kMagic);
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
        Append(table, SPlaceRow{position, channel}), ++head.places;
    // Two files hardly have the same rows: pages of the one do not pass in the other.
    head.seed = SumIndexBytes(table, static_cast<std::uint64_t>(state.changed) ^ state.identity.number);
    const auto rows = index.GetChannels().size();
    head.tableSize = static_cast<std::int64_t>(table.size() + rows * sizeof(SChannelRow));
    std::int64_t offset = static_cast<std::int64_t>(CIndexPages::kPage) + RoundUp(head.tableSize);
    for (const auto& [number, channel] : index.GetChannels()) {
        SChannelRow row{number, channel.GetPacketType(), channel.GetForm().recordSize, channel.IsOrderly(), {}};
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

    CIndexWriter writer(handle);
    CIndexPages::Page page{};
    std::memcpy(page.data(), &head, sizeof head);
    CIndexPages::Seal(page, kHeadSeed);
    writer.Write(page);
    table.resize(static_cast<std::size_t>(RoundUp(head.tableSize)));
    writer.Write(table);
    std::size_t place = 0;
    for (const auto& [number, channel] : index.GetChannels()) {
        for (std::size_t level = 0; level < kIndexLevels; ++level)
            if (!WriteLevel(writer, channel, level, GetSeed(head, place, level))) return false;
        ++place;
    }
    return writer.Flush();
}

bool ReadHead(const CIndexPages& pages, SHead& head) {
    CIndexPages::Page page;
    if (!pages.ReadPage(0, kHeadSeed, page)) return false;
    std::memcpy(&head, page.data(), sizeof head);
    return std::memcmp(head.magic, kMagic, sizeof kMagic) == 0 && head.layouts == SumLayouts() &&
           head.size == pages.GetSize() && head.tableSize >= 0 && head.tableSize <= kMostTable &&
           head.covered >= head.dataStart;
}

// Levels fit each other and lie within the file.
bool CheckLevels(const SChannelRow& row, const SHead& head) {
    for (std::size_t level = 0; level < kIndexLevels; ++level) {
        const auto& [offset, count] = row.levels[level];
        if (level > 0 && count != row.levels[level - 1].count / kIndexFan) return false;
        if (count > static_cast<std::uint64_t>(head.size) || offset < 0 || offset > head.size) return false;
        const auto bytes = CountPages(count, row.recordSize) * static_cast<std::int64_t>(CIndexPages::kPage);
        if (bytes > head.size - offset) return false;
    }
    return row.levels[kIndexLevels - 1].count < kIndexFan;
}

bool RestoreChannel(CChannelIndex& channel, const SChannelRow& row, const SHead& head, std::size_t place,
                    const std::shared_ptr<const CIndexPages>& pages, std::int64_t mostLoaded) {
    if (row.type != channel.GetPacketType() || row.recordSize != channel.GetForm().recordSize ||
        !CheckLevels(row, head))
        return false;
    if (row.orderly == 0) channel.SetDisorderly();
    std::int64_t loaded = 0;
    for (std::size_t level = kIndexLevels; level-- > 0;) {
        const auto& [offset, count] = row.levels[level];
        loaded += static_cast<std::int64_t>(count * row.recordSize);
        if (!channel.Keep(level, {pages, offset, count, GetSeed(head, place, level)}, loaded <= mostLoaded))
            return false;
    }
    return true;
}

std::shared_ptr<CFileIndex> ReadIndex(const std::shared_ptr<const CIndexPages>& pages, CXpfFile& file,
                                      EFileKind kind, const SFileState& state, std::int64_t mostLoaded) {
    SHead head;
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
        const auto row = reader.Take<SPlaceRow>();
        index->AddFirstPlace(static_cast<std::uint16_t>(row.channel), row.position);
    }
    if (head.channels != index->GetChannels().size()) return nullptr;
    for (std::size_t place = 0; place < head.channels; ++place) {
        const auto row = reader.Take<SChannelRow>();
        CChannelIndex* channel = index->GetChannel(static_cast<std::uint16_t>(row.number));
        if (!channel || !RestoreChannel(*channel, row, head, place, pages, mostLoaded)) return nullptr;
    }
    if (!reader.IsWhole()) return nullptr;
    index->Restore(std::move(samples), std::move(gaps), head.moreGaps);
    index->SetCovered(head.covered);
    index->SetKept(pages);
    return index;
}

// Held by one program at a time, as long as the object lives.
class CFolderLock {
  public:
    explicit CFolderLock(const std::filesystem::path& folder)
        : m_handle(open((folder / "lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        m_isHeld = m_handle >= 0 && flock(m_handle, LOCK_EX | LOCK_NB) == 0;
    }
    ~CFolderLock() {
        if (m_handle >= 0) close(m_handle);
    }
    CFolderLock(const CFolderLock&) = delete;
    CFolderLock& operator=(const CFolderLock&) = delete;
    bool IsHeld() const { return m_isHeld; }

  private:
    int m_handle;
    bool m_isHeld = false;
};

} // namespace

std::filesystem::path CIndexStore::GetUsualFolder() {
    const char* cache = std::getenv("XDG_CACHE_HOME");
    if (cache && *cache == '/') return std::filesystem::path(cache) / "varne-nav";
    const char* home = std::getenv("HOME");
    if (home && *home == '/') return std::filesystem::path(home) / ".cache" / "varne-nav";
    return {};
}

std::filesystem::path CIndexStore::GetPlace(const SFileIdentity& identity) const {
    char name[40];
    std::snprintf(name, sizeof name, "%016llx-%016llx", static_cast<unsigned long long>(identity.device),
                  static_cast<unsigned long long>(identity.number));
    return m_folder / (name + std::string(kExtension));
}

std::shared_ptr<CFileIndex> CIndexStore::Load(CXpfFile& file, EFileKind kind,
                                              const std::filesystem::path& path) const {
    const auto state = LookAtState(path);
    if (m_folder.empty() || !state) return nullptr;
    const auto pages = CIndexPages::Open(GetPlace(state->identity));
    if (!pages) return nullptr;
    auto index = ReadIndex(pages, file, kind, *state, m_loaded);
    if (index && index->Fits(file, path)) {
        pages->Touch();
        return index;
    }
    Remove(state->identity);
    return nullptr;
}

bool CIndexStore::Save(const CFileIndex& index, const SFileState& state) const {
    if (m_folder.empty()) return false;
    std::error_code error;
    std::filesystem::create_directories(m_folder, error);
    std::string name = (m_folder / (std::string(kBeside) + "XXXXXX")).string();
    const int handle = mkostemp(name.data(), O_CLOEXEC);
    if (handle < 0) return false;
    bool done = WriteIndex(handle, index, state);
    done = lseek(handle, 0, SEEK_END) <= static_cast<off_t>(m_most) && done;
    done = close(handle) == 0 && done;
    done = done && std::rename(name.c_str(), GetPlace(index.GetIdentity()).c_str()) == 0;
    if (!done) std::remove(name.c_str());
    if (done) MakeRoom();
    return done;
}

void CIndexStore::Remove(const SFileIdentity& identity) const {
    std::error_code error;
    std::filesystem::remove(GetPlace(identity), error);
}

// Removes what was used least lately, and what a program that was killed has left. Another program that does
// the same at the moment does it for both.
void CIndexStore::MakeRoom() const {
    struct SEntry {
        std::filesystem::file_time_type used;
        std::filesystem::path path;
        std::uint64_t size;
    };
    const CFolderLock lock(m_folder);
    if (!lock.IsHeld()) return;
    std::vector<SEntry> entries;
    std::uint64_t total = 0;
    std::error_code error;
    for (const auto& found : std::filesystem::directory_iterator(m_folder, error)) {
        std::error_code gone;
        const SEntry entry{found.last_write_time(gone), found.path(), found.file_size(gone)};
        if (gone) continue;
        if (entry.path.extension() == kExtension) {
            entries.push_back(entry);
            total += entry.size;
        } else if (entry.path.filename().string().starts_with(kBeside) &&
                   entry.used + std::chrono::hours(1) < std::filesystem::file_time_type::clock::now()) {
            std::filesystem::remove(entry.path, gone);
        }
    }
    std::ranges::sort(entries, {}, &SEntry::used);
    for (const SEntry& entry : entries) {
        if (total <= m_most) break;
        if (std::filesystem::remove(entry.path, error)) total -= entry.size;
    }
}

} // namespace Application_Tarvel
