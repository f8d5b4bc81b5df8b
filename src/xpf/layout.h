// The packet types and channels as the system knows them at compile time: one row a field, one row a packet
// type (packet_types.inc), one row a channel. Decoder, dictionary, exports, recording writer and tests all
// read these rows.
#pragma once

#include "foundation/text_id.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace Persistance_Xpf {

// The codes are those of the field records in a file: never change.
enum class EFieldType : std::uint8_t {
    u8 = 0,
    u16 = 1,
    u32 = 2,
    i8 = 3,
    i16 = 4,
    i32 = 5,
    f32 = 6,
    f64 = 7,
    date = 8
};

// The stored type of one element, in the order of the codes; a date is its tick count.
using FieldElements = std::tuple<std::uint8_t, std::uint16_t, std::uint32_t, std::int8_t, std::int16_t,
                                 std::int32_t, float, double, std::int64_t>;
template <EFieldType Type>
using FieldElement = std::tuple_element_t<static_cast<std::size_t>(Type), FieldElements>;

// The code of an element's type.
template <class Element>
constexpr EFieldType GetFieldType() {
    return []<class... T>(std::tuple<T...>*) {
        constexpr bool is[] = {std::is_same_v<T, Element>...};
        return static_cast<EFieldType>(std::find(std::begin(is), std::end(is), true) - std::begin(is));
    }(static_cast<FieldElements*>(nullptr));
}

// Bytes of one element; 0 for a code that no type has.
constexpr std::uint32_t GetWidth(EFieldType type) {
    constexpr auto widths = []<class... T>(std::tuple<T...>*) {
        return std::array{static_cast<std::uint8_t>(sizeof(T))...};
    }(static_cast<FieldElements*>(nullptr));
    const auto code = static_cast<std::size_t>(type);
    return code < widths.size() ? widths[code] : 0;
}

// The physical kind of a field. The numbers are those in files; the labels are the numbered texts 771 +
// nature.
enum ENature : std::uint8_t {
    natureUnknown = 0,
    natureLatitude,
    natureLongitude,
    naturePositionStdDev,
    naturePositionCrossVariance,
    natureLinearSpeed,
    natureLinearSpeedStdDev,
    natureLinearAcceleration,
    natureLinearAccelerationStdDev,
    natureAngularSpeed,
    natureAngularSpeedStdDev,
    natureTemperature,
    natureSoundVelocity,
    natureAltitude,
    natureImmersion,
    natureAltitudeStdDev,
    natureAttitude,
    natureAttitudeStdDev,
    natureDistance,
    natureDistanceStdDev,
    natureTimeLength,
    natureScaleFactor,
    natureEnumeration,
    natureTimeDrift,
    natureRawFog,
    natureRawAcc,
    natureCount
};

struct SFieldLayout {
    std::string_view name; // at most 30 bytes: the name in the file, in text output and in the views
    EFieldType type;
    std::uint8_t nature;
    std::uint32_t count = 1; // elements; 1 for a scalar
};

inline constexpr std::size_t kMaximumFields = 80;

// One packet type: its fields in order, without alignment between them.
struct SPacketLayout {
    std::uint16_t type;    // packet type code
    std::uint32_t version; // the version that a current file carries
    std::span<const SFieldLayout> fields;
    std::array<std::uint16_t, kMaximumFields> offsets{}; // of each field in the payload
    std::uint32_t payloadSize = 0;

    constexpr SPacketLayout(std::uint16_t typeCode, std::uint32_t currentVersion,
                            std::span<const SFieldLayout> rows)
        : type(typeCode), version(currentVersion), fields(rows) {
        for (std::size_t i = 0; i < fields.size(); ++i) {
            offsets[i] = static_cast<std::uint16_t>(payloadSize);
            payloadSize += GetWidth(fields[i].type) * fields[i].count;
        }
    }

    // The index of a field by its name; in a constant expression an unknown name does not compile.
    constexpr std::uint32_t IndexOf(std::string_view name) const {
        for (std::uint32_t i = 0; i < fields.size(); ++i)
            if (fields[i].name == name) return i;
        throw "no field of this name";
    }
    constexpr std::uint32_t OffsetOf(std::string_view name) const { return offsets[IndexOf(name)]; }
};

enum EPacketType : std::uint16_t {
#define PACKET_TYPE(code, kind, name, packetClass) type##name = code,
#define UNDECODED_TYPE(code, kind, name) type##name = code,
#include "xpf/packet_types.inc"
};

enum class EFileKind : std::uint8_t { tarin, tarout };

// The layout of a decoded packet type; null for all others. The constexpr rows are in tarin_layouts.h and
// tarout_layouts.h.
const SPacketLayout* FindPacketLayout(std::uint16_t type);
// The layout of any packet type of a file kind, also of the internal states of the engine, which are
// described in a file and never decoded; null for a type that the kind does not have.
const SPacketLayout* FindDescribedLayout(EFileKind kind, std::uint16_t type);

// The channel of a result that holds the navigation.
inline constexpr std::string_view kResultChannel = "MORVEX_STD";

struct SChannelLayout {
    std::string_view name; // the 16-byte key of the channel record
    std::uint16_t packetType;
    EFileKind kind;
    Outils_Texte::EText label;    // number of the display text
    std::string_view description; // in the channel records that this system writes
};

// The 26 channels, input file first.
std::span<const SChannelLayout> GetChannelLayouts();
// Null for an unknown name.
const SChannelLayout* FindChannelLayout(std::string_view name);
// The display text of a channel; empty for an unknown name.
std::string_view GetChannelLabel(std::string_view name);

} // namespace Persistance_Xpf
