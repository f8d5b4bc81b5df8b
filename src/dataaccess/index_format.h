// The form of a kept index file, all of it in the byte order of the machine:
//
//   head      one page: SIndexFileHead
//   table     samples, gaps, places and channels, one row after the other, filled up to whole pages; its sum
//             is in the head
//   records   the levels of the channels in the order of the table, each in pages of its own
//
// A page ends with its sum. The seed of a sum says which page of which file it is.
#pragma once

#include "dataaccess/file_index.h"
#include "dataaccess/index_pages.h"

#include <cstdint>
#include <type_traits>

namespace Application_Tarvel {

inline constexpr char kIndexMagic[8] = {'V', 'N', 'I', 'N', 'D', 'E', 'X', '1'};
inline constexpr std::uint64_t kIndexHeadSeed = 0x56'4E'49'48;

struct SIndexFileHead {
    char magic[8];
    std::uint64_t layouts; // sum over the layouts that the images were made by
    SFileState state;      // of the indexed file
    std::int64_t dataStart;
    std::int64_t covered;
    std::uint64_t seed; // of the pages; differs from file to file
    std::int64_t size;  // of the whole index file
    std::int64_t tableSize;
    std::uint64_t tableSum;
    std::uint64_t moreGaps;
    std::uint32_t kind, samples, gaps, places, channels, unused;
};
static_assert(std::is_trivially_copyable_v<SIndexFileHead> && sizeof(SIndexFileHead) < CIndexPages::kRoom);

struct SIndexPlaceRow {
    std::int64_t position;
    std::uint64_t channel;
};
struct SIndexLevelRow {
    std::int64_t offset;
    std::uint64_t count;
};
struct SIndexChannelRow {
    std::uint32_t number, type, recordSize, orderly;
    SIndexLevelRow levels[kIndexLevels];
};

// The seed of the first page of a level; `place` is that of the channel in the table.
inline std::uint64_t GetLevelSeed(const SIndexFileHead& head, std::size_t place, std::size_t level) {
    return head.seed + ((std::uint64_t{place} * kIndexLevels + level) << 32);
}

} // namespace Application_Tarvel
