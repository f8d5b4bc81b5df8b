// The fields of packets as exports see them: found by name, read as numbers, with the unit of their nature.
#pragma once

#include "foundation/bytes.h"
#include "values/units.h"
#include "xpf/layout.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Exportation {

// Where a scalar field lies in the payload.
struct SFieldRef {
    const Persistance_Xpf::SFieldLayout* row = nullptr; // null: no such field
    std::uint32_t offset = 0;

    explicit operator bool() const { return row != nullptr; }
};

// A field of exactly this name; null when the layout has none or it holds several elements.
SFieldRef FindField(const Persistance_Xpf::SPacketLayout& layout, std::string_view name);
// The same, or the field with the number of the point behind the name: "Latitude" finds "Latitude2".
SFieldRef FindPointField(const Persistance_Xpf::SPacketLayout& layout, std::string_view name, int point);

// Any scalar as a 64-bit float; a date as its tick count. REQUIRES: the field is there.
double GetValue(const std::uint8_t* payload, SFieldRef field);

// The symbol of the base unit of a nature; empty when it has none.
std::string_view GetUnit(std::uint8_t nature);
// The units into which values of a nature convert; empty when it has none.
std::span<const Outils_Valeurs::SUnitRow> GetUnits(std::uint8_t nature);
// Whether values of a nature wrap at 360 degrees.
bool IsAngle(std::uint8_t nature);

// "Depth [m]": the name of a field with its base unit.
std::string MakeHeading(const Persistance_Xpf::SFieldLayout& field);

// What exports to maps take from the packets of a channel that has positions.
struct STrackFields {
    SFieldRef latitude, longitude, altitude;
    SFieldRef deviationNorth, deviationEast, deviationAltitude;
    SFieldRef heading, roll, pitch;
    SFieldRef speedNorth, speedEast, speedUp;
    SFieldRef heave, surge, sway;
    SFieldRef mode; // of a GPS

    bool HasPosition() const { return latitude && longitude && altitude; }
};
// `point`: 0 to 3, of the positions of a result.
STrackFields FindTrackFields(const Persistance_Xpf::SPacketLayout& layout, int point);

// Whether a position can be shown: finite, latitude within ±90 and longitude within ±360 degrees.
bool IsPosition(double latitude, double longitude);

// Shortest text that reads back to the stored value; nothing for NaN and infinities. Returns the end.
// REQUIRES: kWidestValue characters at `out`.
char* FormatValue(const std::uint8_t* payload, SFieldRef field, char* out);
// The same with this many decimals.
char* FormatFixed(double value, int decimals, char* out);

} // namespace Exportation
