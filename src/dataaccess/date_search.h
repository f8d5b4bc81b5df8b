// Dates in packet files: the packet nearest to a date, found by bisection over packet numbers, and the last
// date.
#pragma once

#include "foundation/date_time.h"
#include "foundation/thread.h"
#include "xpf/channel.h"
#include "xpf/file_cache.h"
#include "xpf/packet.h"

#include <filesystem>
#include <optional>

namespace Application_Tarvel {

class CFileIndex;

enum class EDateSearch {
    found,
    outside, // the date lies before the first or after the last packet
    failed,  // an empty channel, or packet numbers that contradict each other
    cancelled
};

// Two packets, one at or before and one at or after the date sought.
struct SDateBracket {
    CDateTimeSpan lowerDate;
    CDateTimeSpan upperDate;
    std::uint32_t lowerNumber = 0;
    std::uint32_t upperNumber = 0;
};

// Where a search may look for help and leave what it learns.
struct SDateSearch {
    const std::filesystem::path& path; // the channel's file, by which the cache knows it
    CXpfFileCache* cache = nullptr;    // may be null
    bool feedsCache = false;           // every date read becomes a sample
    const Outils::CEvent& cancel;      // polled once per packet read
    const CFileIndex* index = nullptr; // of the channel's file, which it fits; may be null
};

// Narrows the bracket around `date` until its two packets are neighbours or one of them has exactly this
// date. With `found` the bracket is filled, with `outside` it holds the first and the last packet. An exact
// hit in the cache leaves the bracket at the first and the last packet. `packet` must be of the channel's
// type and is overwritten.
EDateSearch SearchDate(Persistance_Xpf::CXpfChannel& channel, Persistance_Xpf::CXpfDatedPacket& packet,
                       CDateTimeSpan date, const SDateSearch& search, SDateBracket& bracket);

// The number of the nearer of the two packets, the lower on a tie.
std::uint32_t PickNearer(const SDateBracket& bracket, CDateTimeSpan date);

// The date of the last navigation of a result, which may still grow; empty when it has none. `interrupt` ends
// the search.
std::optional<CDateTimeSpan> FindDateReached(const std::filesystem::path& result,
                                             const Outils::CEvent* interrupt = nullptr);

} // namespace Application_Tarvel
