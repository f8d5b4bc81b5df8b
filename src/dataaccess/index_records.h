// The records of a file index: one for each block of packets of a channel, and for each four records one
// record of the level above. A record is a head and two images, the least and the greatest value of every
// numeric field as they lie in a payload after its date.
#pragma once

#include "foundation/bytes.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>

namespace Application_Tarvel {

// Records of one level that make one of the level above.
inline constexpr std::size_t kIndexFan = 4; // two bits of a block's number
inline constexpr std::size_t kIndexLevels = 16;

// What holds for a whole block. Those that say "joint" include the step from the packet before the block.
enum EIndexFlag : std::uint32_t {
    indexLeads = 1,    // each packet but the last leads a walk to the next; all have the size of their type
    indexEntered = 2,  // the packet before the block leads a walk to it
    indexOrdered = 4,  // dates never go back, joint
    indexDistinct = 8, // dates grow with every packet, joint
    indexChained = 16  // numbers and back links follow each other, joint
};
inline constexpr std::uint32_t kAllIndexFlags = 31;

struct SIndexHead {
    std::int64_t position = 0;     // of the first packet, bytes
    std::int64_t lastPosition = 0; // of the last packet
    std::int64_t minimumDate = 0;  // ticks
    std::int64_t maximumDate = 0;
    std::uint32_t firstNumber = 0; // within the channel
    std::uint32_t lastNumber = 0;
    std::uint32_t count = 0; // packets; stays at its greatest value
    std::uint32_t flags = 0; // of EIndexFlag

    bool Has(std::uint32_t wanted) const { return (flags & wanted) == wanted; }
    // Whether it can be of any packets: a kept file may say anything.
    bool IsSound() const {
        constexpr std::int64_t kGreatest = std::int64_t{1} << 62;
        return count > 0 && position > 0 && position <= lastPosition && lastPosition < kGreatest;
    }
};
static_assert(sizeof(SIndexHead) == 48);

// Where the parts of a record lie. Vectors that read an image as part of a packet reach into the head before
// it and up to kReach bytes after the record.
struct SIndexForm {
    static constexpr std::uint32_t kDate = 8; // bytes of a payload that no image holds
    static constexpr std::uint32_t kReach = 16;

    std::uint32_t payloadSize = 0;
    std::uint32_t recordSize = 0;

    explicit SIndexForm(std::uint32_t payload)
        : payloadSize(std::max(payload, kDate)),
          recordSize((std::uint32_t{sizeof(SIndexHead)} + 2 * (payloadSize - kDate) + 7) / 8 * 8) {}

    // The two images, as payloads whose date is not there.
    template <class Byte>
    Byte* GetMinimum(Byte* record) const {
        return record + sizeof(SIndexHead) - kDate;
    }
    template <class Byte>
    Byte* GetMaximum(Byte* record) const {
        return GetMinimum(record) + (payloadSize - kDate);
    }
};

inline SIndexHead LoadIndexHead(const std::uint8_t* record) { return Outils::Load<SIndexHead>(record); }

// Adds the head of the block that follows.
inline void JoinIndexHeads(SIndexHead& first, const SIndexHead& next) {
    first.lastPosition = next.lastPosition;
    first.minimumDate = std::min(first.minimumDate, next.minimumDate);
    first.maximumDate = std::max(first.maximumDate, next.maximumDate);
    first.lastNumber = next.lastNumber;
    first.count = next.count > UINT32_MAX - first.count ? UINT32_MAX : first.count + next.count;
    const std::uint32_t entered = first.flags & indexEntered;
    first.flags &= next.flags;
    if (!(next.flags & indexEntered)) first.flags &= ~std::uint32_t{indexLeads};
    first.flags = (first.flags & ~std::uint32_t{indexEntered}) | entered;
}

// Records of one size that stay where they are: one thread appends, any threads read without a lock.
class CIndexRecords {
  public:
    explicit CIndexRecords(std::uint32_t recordSize) : m_size(recordSize) {}

    std::size_t GetCount() const { return m_count.load(std::memory_order_acquire); }
    // Valid while the object lives. REQUIRES: i < GetCount().
    const std::uint8_t* Get(std::size_t i) const {
        const std::size_t place = i + kFirst, segment = FindSegment(place);
        return m_segments[segment].get() + (place - (kFirst << segment)) * m_size;
    }
    void Append(const std::uint8_t* record);
    // Bytes that are in use.
    std::size_t GetBytes() const { return GetCount() * m_size; }

  private:
    static constexpr std::size_t kFirst = 64; // records of the first segment; each has twice as many
    static constexpr std::size_t kSegments = 40;

    static std::size_t FindSegment(std::size_t place) {
        return static_cast<std::size_t>(std::bit_width(place)) - 7;
    }

    std::uint32_t m_size;
    std::atomic<std::size_t> m_count{0};
    std::array<std::unique_ptr<std::uint8_t[]>, kSegments> m_segments;
};

} // namespace Application_Tarvel
