// The classes of each packet type: one row a decoded type.
#pragma once

#include "xpf/channel.h"
#include "xpf/packet.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Persistance_Xpf {

struct SPacketClass {
    std::uint16_t type;
    std::unique_ptr<CXpfPacket> (*createPacket)();
    std::unique_ptr<CXpfChannel> (*createChannel)(CXpfFile& file, std::uint16_t number, std::string name,
                                                  std::string description);
};

// Null for a type that is not decoded.
const SPacketClass* FindPacketClass(std::uint16_t type);

} // namespace Persistance_Xpf
