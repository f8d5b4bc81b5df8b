// Smallest and greatest value of every numeric field over a run of packets of one type.
#pragma once

#include "xpf/packet.h"

#include <cstdint>
#include <vector>

namespace Application_Tarvel {

// Knows where the numeric fields of a packet type stand; compares in each field's own type. The date takes no
// part.
class CPacketExtremes {
  public:
    // `packet` gives the type; it is not kept.
    explicit CPacketExtremes(const Persistance_Xpf::CXpfPacket& packet);

    // Lowers the fields of `minimum` and raises those of `maximum` to take in `packet`. The three are
    // payloads of the type. A value that is not a number never replaces one that is.
    void Include(const std::uint8_t* packet, std::uint8_t* minimum, std::uint8_t* maximum) const;

  private:
    struct SRun { // neighbouring elements of one type
        Persistance_Xpf::EFieldType type;
        std::uint32_t offset;
        std::uint32_t count;
    };
    std::vector<SRun> m_runs;
};

} // namespace Application_Tarvel
