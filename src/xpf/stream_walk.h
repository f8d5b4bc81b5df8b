// The walk over the packet stream of a file, packet by packet.
#pragma once

#include "xpf/file.h"

#include <array>
#include <span>

namespace Persistance_Xpf {

// How one step of a walk ended.
enum class EPacketRead {
    whole,  // a packet that passes the packet check
    torn,   // the file ends inside a packet: the writer may be at work, read again later
    damaged // the bytes here are no packet
};

// Goes on at the file pointer, and moves it past each packet that passes the packet check; on any other
// result the pointer stays, and the next step reads again. At the end of the file the result is `torn`. No
// system call and no copy for a packet. Keeps no place of its own: other operations on the file may come
// between two steps. Views are valid until the next operation on the file.
class CStreamWalk {
  public:
    // Packets as the places of their headers, with payload and trailer after each.
    using Run = std::span<const std::uint8_t* const>;

    // `file` must outlive the walk.
    explicit CStreamWalk(CXpfFile& file) : m_reader(*file.m_reader) {}

    // The next packet. A payload above 16 MiB is cut, far beyond anything that is decoded, so that no size in
    // a file can exhaust the memory.
    EPacketRead Next(SPacketHeader& header, std::span<const std::uint8_t>& payload);
    // Several packets at once, one at least when the result is `whole`. For scans that look into few packets,
    // and need not wait for each one's size to find the next. `run` is valid while the walk lives as well.
    EPacketRead NextRun(Run& run);
    // The payload of a packet of a run, cut as in Next.
    static std::span<const std::uint8_t> GetPayload(const std::uint8_t* packet);

  private:
    // Fills the run from the block, which is replaced first when it does not hold the next packet; the count.
    std::size_t TakeHeld();
    EPacketRead NextAnew(SPacketHeader& header, std::span<const std::uint8_t>& payload);
    EPacketRead NextHuge(const SPacketHeader& header, std::span<const std::uint8_t>& payload);

    CBlockReader& m_reader;
    std::array<const std::uint8_t*, 64> m_run;
};

} // namespace Persistance_Xpf
