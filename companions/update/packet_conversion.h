// Turns a packet of a former layout into one of the present layout, field by field.
#pragma once

#include "update/file_layout.h"

#include <span>
#include <vector>

namespace MiseANiveau {

// The plan for the packets of one type. Fields with a namesake are copied, a few that were renamed since
// under their new name; all others are zero.
class CPacketConversion {
  public:
    CPacketConversion(const SOwnDefinition& former, const Persistance_Xpf::SPacketLayout& present);

    // The payload in the present layout; valid until the next call. What a short payload does not hold is
    // zero.
    std::span<const std::uint8_t> Convert(std::span<const std::uint8_t> payload);

  private:
    struct SStep {
        std::uint32_t from, to; // bytes, in the payloads
        std::uint8_t fromType, toType;
        std::uint32_t count; // elements
    };
    std::vector<SStep> m_steps;
    std::vector<std::uint8_t> m_payload;
};

} // namespace MiseANiveau
