// The reduction of a window with the help of an index: blocks that lie within a slice are taken whole, and
// packets are read only where slices meet and around their centres. The result is that of the walk.
#pragma once

#include "dataaccess/file_index.h"
#include "dataaccess/slice_collector.h"
#include "xpf/channel_walk.h"

#include <cstdint>
#include <memory>

namespace Application_Tarvel {

// Goes along with a walk and moves it over blocks. One thread.
class CIndexReduction {
  public:
    // All must outlive the object. `index` is of the file of the channel and fits it.
    CIndexReduction(const CChannelIndex& index, Persistance_Xpf::CXpfChannel& channel,
                    Persistance_Xpf::CChannelWalk& walk, CSliceCollector& collector)
        : m_cursor(index), m_channel(channel), m_walk(walk), m_collector(collector) {}

    // Before each step of the walk: takes the blocks at its place that need not be read, and bounds the step
    // where the next ones begin.
    void Advance();

  private:
    bool TakeBlocks();
    std::uint64_t TakeLargest(std::size_t block);

    CIndexCursor m_cursor;
    Persistance_Xpf::CXpfChannel& m_channel;
    Persistance_Xpf::CChannelWalk& m_walk;
    CSliceCollector& m_collector;
    std::size_t m_next = 0; // the first block that may begin at or after the walk's place
};

} // namespace Application_Tarvel
