// The layouts of each file kind as lists, for the room's own lookups.
#pragma once

#include "xpf/layout.h"

namespace Persistance_Xpf {

std::span<const SPacketLayout* const> GetTarinLayouts();
std::span<const SPacketLayout* const> GetTaroutLayouts();

// The version of a packet type that a file of this kind must carry; null for a type that the kind does not
// know.
const std::uint32_t* FindExpectedVersion(EFileKind kind, std::uint16_t type);

} // namespace Persistance_Xpf
