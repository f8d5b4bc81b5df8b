// The status fields: virtual fields taken from the bits of a packet's field.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace Persistance_Xpf {

struct SStatusLiteral {
    std::uint32_t bits; // the value of the masked bits that means this literal
    std::string_view name;
    std::string_view description;
};

struct SStatusField {
    std::string_view name;
    std::string_view description;
    std::uint8_t field; // the field that holds the bits, counted from the packet type's first status field
    std::uint8_t shift;
    std::uint32_t mask; // after the shift
    std::span<const SStatusLiteral> literals;
};

struct SStatusTable {
    std::uint16_t packetType;
    std::uint32_t firstField; // index of the field that rows count from
    std::span<const SStatusField> fields;
};

// Null for a type without status fields.
const SStatusTable* FindStatusTable(std::uint16_t packetType);

} // namespace Persistance_Xpf
