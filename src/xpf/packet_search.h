// Finds whole packets of any channel in a stream that is damaged, or entered at an arbitrary byte.
#pragma once

#include "xpf/records.h"

#include <cstdint>

namespace Persistance_Xpf {

class CBlockReader;

class CPacketSearch {
  public:
    // Starts at the reader's file pointer. `reader` must outlive the search.
    explicit CPacketSearch(CBlockReader& reader) : m_reader(reader) {}

    // The nearest whole packet before, or the first one at or after, the file pointer. On success the pointer
    // is on it and its header is copied; a failed backward search restores the pointer.
    bool SearchBackward(SPacketHeader& header);
    bool SearchForward(SPacketHeader& header);

  private:
    // Checks the header, and the trailer in the file against it. `fileSize` spares the look for a trailer
    // that would lie beyond it, as most sizes in damaged bytes do.
    bool IsPacket(std::int64_t position, const SPacketHeader& header, std::int64_t fileSize) const;

    CBlockReader& m_reader;
};

} // namespace Persistance_Xpf
