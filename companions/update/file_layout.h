// What a packet file of any layout says of itself.
#pragma once

#include "xpf/layout.h"
#include "xpf/records.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace MiseANiveau {

// A field as the file describes it.
struct SOwnField {
    std::string name;
    std::uint8_t type = 0;    // EFieldType, or a code that this system does not know
    std::uint32_t count = 0;  // elements
    std::uint32_t offset = 0; // bytes, in the payload
};

struct SOwnDefinition {
    std::uint16_t type = 0;
    std::uint32_t version = 0;
    std::vector<SOwnField> fields;
    std::uint64_t payloadSize = 0; // bytes
    bool readable = true;          // every field has a known type and lies within a packet's size
};

struct SOwnChannel {
    std::uint16_t number = 0;
    std::string name;
    std::uint16_t packetType = 0;
};

enum class ELayout {
    current,    // nothing to do
    former,     // can be brought up to date
    newer,      // a version above the one of this system
    unknown,    // a channel that no layout has
    damaged,    // cut, or it contradicts itself
    foreign,    // no packet file
    unreadable, // no regular file, or no right to read it
};

struct SFileLayout {
    ELayout state = ELayout::unreadable;
    std::string culprit; // the channel that is not known
    Persistance_Xpf::EFileKind kind{};
    std::vector<SOwnChannel> channels;       // in file order
    std::vector<SOwnDefinition> definitions; // in file order
    std::int64_t dataStart = 0;              // position of the first packet

    const SOwnDefinition* FindDefinition(std::uint16_t packetType) const;
};

// Reads the header. The kind of the file follows from its channels.
SFileLayout ReadFileLayout(const std::filesystem::path& path);

} // namespace MiseANiveau
