// What the analysis of a packet file has learned of its content: for each channel blocks of packets with
// place, dates, numbers and the extremes of every numeric field, and levels of four blocks above, so that any
// stretch of a recording of any size is known from a few records.
//
// One thread builds it (CIndexBuilder) while other threads read it without a lock: records are added and
// never changed.
#pragma once

#include "dataaccess/index_pages.h"
#include "dataaccess/index_records.h"
#include "foundation/date_time.h"
#include "xpf/file.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

namespace Application_Tarvel {

// The records of one channel: those that come from a kept file first, those made since after them.
class CChannelIndex {
  public:
    CChannelIndex(std::uint16_t number, std::uint16_t packetType, std::uint32_t payloadSize);

    std::uint16_t GetNumber() const { return m_number; }
    std::uint16_t GetPacketType() const { return m_packetType; }
    const SIndexForm& GetForm() const { return m_form; }
    // Of a level; any thread.
    std::size_t GetCount(std::size_t level) const { return m_kept[level].count + m_made[level].GetCount(); }
    // Whether all packets seen so far follow each other by dates, numbers, links and back links, and have the
    // size of their type: a search by date then has one answer whichever way it goes.
    bool IsOrderly() const { return m_orderly.load(std::memory_order_acquire); }
    // Bytes of memory.
    std::size_t GetBytes() const;

    // The builder's side. Appends a block, and the records of the levels above that it completes. False when
    // a kept record that is needed for it cannot be read.
    bool Append(const std::uint8_t* record);
    void SetDisorderly() { m_orderly.store(false, std::memory_order_release); }
    // Before anything is appended: the records of a level in a kept file. `loads` copies them into the
    // memory.
    bool Keep(std::size_t level, const SKeptRecords& records, bool loads);

  private:
    friend class CIndexCursor;

    bool MakeParent(std::size_t level);

    std::uint16_t m_number;
    std::uint16_t m_packetType;
    SIndexForm m_form;
    std::array<SKeptRecords, kIndexLevels> m_kept;
    std::deque<CIndexRecords> m_made; // by level
    std::atomic<bool> m_orderly{true};
};

// Reads the records of one channel; holds one page of a kept file for each level. One thread.
class CIndexCursor {
  public:
    // `index` must outlive the cursor.
    explicit CIndexCursor(const CChannelIndex& index) : m_index(index) {}

    const CChannelIndex& GetIndex() const { return m_index; }
    std::size_t GetCount(std::size_t level) const { return m_index.GetCount(level); }
    // Null when the kept record cannot be read. Valid until the next call for the same level.
    // REQUIRES: i < GetCount(level).
    const std::uint8_t* Get(std::size_t level, std::size_t i) {
        const SKeptRecords& kept = m_index.m_kept[level];
        if (i >= kept.count) return m_index.m_made[level].Get(i - kept.count);
        return GetKept(level, i);
    }
    std::optional<SIndexHead> GetHead(std::size_t level, std::size_t i);

    // The first block that begins at or after the position; the count of blocks when there is none.
    std::size_t FindPosition(std::int64_t position);
    // The last block whose first packet is not after the date; none when there is no such block.
    // REQUIRES: an orderly channel.
    std::optional<std::size_t> FindDate(std::int64_t date);

  private:
    struct SPage {
        CIndexPages::Page bytes;
        std::size_t number = SIZE_MAX;
    };
    const std::uint8_t* GetKept(std::size_t level, std::size_t i);
    // The last block for which `isBefore` is true; it must be true for all blocks before that one.
    template <class Predicate>
    std::optional<std::size_t> FindLast(Predicate&& isBefore);

    const CChannelIndex& m_index;
    std::array<std::unique_ptr<SPage>, kIndexLevels> m_pages;
};

// Bytes of a file that are no packets.
struct SIndexGap {
    std::int64_t position = 0;
    std::int64_t size = 0;
};

// A packet by which a file is known again: a sum over what no writer changes of it. Position 0 is the header.
struct SIndexSample {
    std::int64_t position = 0;
    std::uint64_t sum = 0;
};
std::uint64_t SumPacket(std::span<const std::uint8_t> packet);

// Which file an index is of. The system gives a number again once its file is gone.
struct SFileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0;

    bool operator==(const SFileIdentity&) const = default;
};

// How a file looks without reading it.
struct SFileState {
    SFileIdentity identity;
    std::int64_t size = 0;
    std::int64_t changed = 0; // nanoseconds

    bool operator==(const SFileState&) const = default;
};
std::optional<SFileState> LookAtState(const std::filesystem::path& path);

class CFileIndex {
  public:
    // More gaps than these are only counted.
    static constexpr std::size_t kGapsKept = 1000;

    // An empty index of this file, with the channels of its header.
    CFileIndex(Persistance_Xpf::CXpfFile& file, Persistance_Xpf::EFileKind kind,
               const SFileIdentity& identity);

    const SFileIdentity& GetIdentity() const { return m_identity; }
    Persistance_Xpf::EFileKind GetKind() const { return m_kind; }
    std::int64_t GetDataStart() const { return m_dataStart; }
    // Null for a channel that the file does not have, or that is not decoded. Any thread.
    const CChannelIndex* GetChannel(std::uint16_t number) const;
    CChannelIndex* GetChannel(std::uint16_t number);
    const std::map<std::uint16_t, CChannelIndex>& GetChannels() const { return m_channels; }
    // The stream up to this byte has been walked. The last blocks of a channel may not be made yet.
    std::int64_t GetCovered() const { return m_covered.load(std::memory_order_acquire); }
    std::size_t GetBytes() const;

    // Whether the open file is the one of the index, and holds what the index was made of as far as the
    // header and the samples show. A look at the state of the file is enough while that is the one that was
    // seen last. Moves the file pointer. Any thread.
    bool Fits(Persistance_Xpf::CXpfFile& file, const std::filesystem::path& path) const;

    // Gaps in the order of the file, and how many there are beyond them.
    std::vector<SIndexGap> GetGaps() const;
    std::uint64_t GetMoreGaps() const;
    bool HasGaps() const { return m_hasGaps.load(std::memory_order_acquire); }
    // The place of the first packet of every channel met, also of those that are not decoded.
    std::map<std::uint16_t, std::int64_t> GetFirstPlaces() const;

    // The builder's side.
    void SetCovered(std::int64_t position) { m_covered.store(position, std::memory_order_release); }
    void AddGap(const SIndexGap& gap);
    void AddFirstPlace(std::uint16_t channel, std::int64_t position);
    // The sample replaces the last one of a tail. True when every second one has been dropped.
    bool AddSample(const SIndexSample& sample, bool isTail = false);
    std::vector<SIndexSample> GetSamples() const;
    // The samples and gaps of a kept file.
    void Restore(std::vector<SIndexSample> samples, std::vector<SIndexGap> gaps, std::uint64_t moreGaps);
    // The file has been found to fit in this state.
    void Settle(const SFileState& state) const;
    void SetKept(std::shared_ptr<const CIndexPages> pages) { m_pages = std::move(pages); }
    bool IsDamaged() const { return m_pages && m_pages->IsDamaged(); }

    // While a scan adds to the index, a query can wait for it instead of reading the same bytes itself.
    void BeginGrowth() { m_growing.store(true, std::memory_order_release); }
    void EndGrowth();
    bool IsGrowing() const { return m_growing.load(std::memory_order_acquire); }
    void ReportGrowth() { m_growth.notify_all(); }
    // Until more is covered, the growth ends, or the time is over.
    void WaitForGrowth(std::int64_t covered, std::chrono::milliseconds time) const;

  private:
    const Persistance_Xpf::EFileKind m_kind;
    const SFileIdentity m_identity;
    const std::int64_t m_dataStart;
    std::map<std::uint16_t, CChannelIndex> m_channels; // never changes after construction
    std::shared_ptr<const CIndexPages> m_pages;        // null for an index that was made here
    std::atomic<std::int64_t> m_covered;
    std::atomic<bool> m_hasGaps{false};
    std::atomic<bool> m_growing{false};
    mutable std::condition_variable m_growth;

    mutable std::mutex m_mutex; // guards what follows
    std::vector<SIndexGap> m_gaps;
    std::uint64_t m_moreGaps = 0;
    std::map<std::uint16_t, std::int64_t> m_firstPlaces;
    mutable std::optional<SFileState> m_settled;
    std::vector<SIndexSample> m_samples;
    bool m_hasTail = false; // the last sample is one of a tail
};

} // namespace Application_Tarvel
