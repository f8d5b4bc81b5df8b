// The reduction of a window with the help of an index: blocks that lie within a slice are taken whole, and
// packets are read only where slices meet and around their centres. The result is that of the walk.
#pragma once

#include "dataaccess/file_index.h"
#include "dataaccess/slice_collector.h"
#include "foundation/thread.h"
#include "xpf/channel_walk.h"
#include "xpf/date_probe.h"

#include <cstdint>
#include <vector>

namespace Application_Tarvel {

// Goes along with a walk and moves it over blocks. One thread.
class CIndexReduction {
  public:
    // All must outlive the object. `file` is the index of the file of the walk and fits it, `index` that of
    // its channel.
    CIndexReduction(const CFileIndex& file, const CChannelIndex& index, Persistance_Xpf::CChannelWalk& walk,
                    CSliceCollector& collector, const Outils::CEvent& cancel);

    // Before each step of the walk: takes the blocks at its place that need not be read, and bounds the step
    // where the next ones begin. Near the end of an index that grows it waits for the scan, which reads the
    // same bytes for all channels, and not at all once the event is set.
    void Advance();
    // The file has not given a packet that the index says it has: a representative is missing.
    bool HasLost() const { return m_hasLost; }

  private:
    bool FindBlock(std::int64_t place);
    bool TakeBlocks();
    void PrepareRead(const SIndexHead& head, std::int64_t size);
    bool WaitForMore();
    std::int64_t FindNext(std::size_t block, std::int64_t lastPosition);

    const CFileIndex& m_file;
    CIndexCursor m_cursor;
    Persistance_Xpf::CChannelWalk& m_walk;
    CSliceCollector& m_collector;
    const Outils::CEvent& m_cancel;
    std::size_t m_block = 0; // where the last search has ended
    int m_readBlocks = 0;    // in a row
    Persistance_Xpf::CDateProbe m_probe;
    bool m_isOff = false; // a record could not be read: the walk goes on by itself
    bool m_hasLost = false;
    std::vector<std::uint8_t> m_record; // of the block at hand, and room behind it
    std::size_t m_seenCount = SIZE_MAX; // blocks of the channel
    std::int64_t m_seenAt = 0;          // how far the scan was when they were last more
    bool m_follows = true;              // the scan has not been waited for in vain
};

} // namespace Application_Tarvel
