// The settings of the program: one row per key, and the constants by which code names them.
//
//     bool expert = configuration.Get(Cnf<"general/expertMode">);
//     configuration.Set(Cnf<"view1D/cursor/width">, 2.0);
//
// The path of a key is looked up and its type is taken from the row while compiling: a key that has no row,
// or a value of another type, does not compile.
#pragma once

#include "config/schema_rows.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>

namespace Outils_Configuration {

// A colour as settings hold it: alpha, red, green and blue from the highest byte down.
struct SColor {
    std::uint32_t argb = 0xFF000000;
    friend constexpr bool operator==(SColor, SColor) = default;
};

// What a caller gets for each kind of value, in the order of the kinds; text is UTF-8, a character one UTF-16
// unit.
using ValueTypes = std::tuple<std::string, std::int32_t, bool, char16_t, double, SColor, EStartMode,
                              EAppearance, EGpsAltitudeMode, EClockDriftCompensation, ESimulationTimeMode,
                              EDateNotation, ESpanNotation, EAngleNotation>;
template <EKind kind>
using TValueOf = std::tuple_element_t<static_cast<std::size_t>(kind), ValueTypes>;
static_assert(std::is_same_v<TValueOf<EKind::color>, SColor> &&
              std::is_same_v<TValueOf<EKind::angleNotation>, EAngleNotation>);

// The words of an enumeration in the order of their numbers; empty for any other kind.
constexpr std::span<const std::string_view> WordsOf(EKind kind) {
    switch (kind) {
    case EKind::startMode: return kStartModeWords;
    case EKind::appearance: return kAppearanceWords;
    case EKind::gpsAltitudeMode: return kGpsAltitudeModeWords;
    case EKind::clockDriftCompensation: return kClockDriftCompensationWords;
    case EKind::simulationTimeMode: return kSimulationTimeModeWords;
    case EKind::dateNotation: return kDateNotationWords;
    case EKind::spanNotation: return kSpanNotationWords;
    case EKind::angleNotation: return kAngleNotationWords;
    default: return {};
    }
}

// A key of any type: its row in kSchema. A plain value, fit for other constexpr tables.
struct SKey {
    std::size_t row;
};

// A key whose value is a `Value`.
template <class Value>
struct TKey : SKey {};

// A string literal as a template argument.
template <std::size_t size>
struct SKeyPath {
    char text[size]{};
    consteval SKeyPath(const char (&literal)[size]) {
        for (std::size_t i = 0; i < size; ++i) text[i] = literal[i];
    }
    constexpr std::string_view View() const { return {text, size - 1}; }
};

// The row of "section/key"; ends the compilation when there is none.
consteval std::size_t RowOf(std::string_view path) {
    for (std::size_t row = 0; row < std::size(kSchema); ++row) {
        const std::string_view section = kSchema[row].section;
        const std::string_view key = kSchema[row].key;
        if (path.size() == section.size() + 1 + key.size() && path.starts_with(section) &&
            path[section.size()] == '/' && path.ends_with(key))
            return row;
    }
    throw "no setting has this path";
}

template <SKeyPath path>
inline constexpr TKey<TValueOf<kSchema[RowOf(path.View())].kind>> Cnf{RowOf(path.View())};

} // namespace Outils_Configuration
