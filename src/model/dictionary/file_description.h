// What a packet file says of itself: its channels and packet definitions as the header gives them, known
// to the system or not.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Metier_Tarvel_DataModel {

struct SChannelDescription {
    std::uint16_t number;
    std::string name;
    std::string description;
    std::uint16_t packetType;
};

struct SFieldDescription {
    std::string name;
    std::string description;
    std::uint8_t typeCode;
    std::uint32_t count;
    std::uint8_t nature;
};

struct SDefinitionDescription {
    std::uint16_t packetType;
    std::uint32_t version;
    std::size_t firstField; // in the flat list
    std::size_t fieldCount;
};

struct SFileDescription {
    std::vector<SChannelDescription> channels; // in file order
    std::vector<SDefinitionDescription> definitions;
    std::vector<SFieldDescription> fields;
};

// False when the file cannot be opened or its header ends early; `description` then has what stood before.
bool ReadFileDescription(const std::filesystem::path& path, SFileDescription& description);

} // namespace Metier_Tarvel_DataModel
