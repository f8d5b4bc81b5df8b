// What a file says of its own packets, read with the header and never changed.
#pragma once

#include "xpf/layout.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Persistance_Xpf {

class CXpfFieldDefinition {
  public:
    std::string name;        // up to 30 bytes
    std::uint8_t typeCode;   // EFieldType, or a code that this system does not know
    std::uint32_t count;     // elements
    std::string description; // up to 64 bytes
    std::uint8_t nature;
};

class CXpfPacketDefinition {
  public:
    std::uint16_t type = 0;
    std::uint32_t version = 0;
    std::vector<CXpfFieldDefinition> fields;
};

} // namespace Persistance_Xpf
