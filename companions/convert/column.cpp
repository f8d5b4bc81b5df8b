#include "convert/column.h"

#include "convert/fields.h"
#include "foundation/text.h"
#include "values/units.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

namespace Conversion {
namespace {

using namespace Persistance_Xpf;
using Outils_Valeurs::SUnitRow;
namespace Units = Outils_Valeurs::Units;

constexpr SUnitRow kNoUnit[] = {{"", "", 1, 1}};
constexpr SUnitRow kVelocity[] = {{"meter per second", "m/s", 1, 1}};

std::span<const SUnitRow> GetUnits(std::uint8_t nature) {
    switch (nature) {
    case natureLatitude:
    case natureLongitude:
    case natureAttitude:
    case natureAttitudeStdDev: return Units::kAngle;
    case naturePositionStdDev:
    case natureAltitude:
    case natureImmersion:
    case natureAltitudeStdDev:
    case natureDistance:
    case natureDistanceStdDev: return Units::kDistance;
    case naturePositionCrossVariance: return Units::kCrossvariance;
    case natureLinearSpeed:
    case natureLinearSpeedStdDev: return Units::kSpeed;
    case natureSoundVelocity: return kVelocity;
    case natureTimeLength: return Units::kSpan;
    default: return kNoUnit;
    }
}

// The symbols that a keyboard has.
constexpr std::array<std::array<std::string_view, 2>, 2> kAliases{{{"deg", "°"}, {"m2", "m²"}}};

std::optional<double> FindFactor(const SFieldLayout& field, std::string_view symbol) {
    for (const auto& [alias, own] : kAliases)
        if (symbol == alias) symbol = own;
    // Some fields carry no nature although they are lengths, as their names say.
    const bool isLength = field.nature == natureUnknown && field.type != EFieldType::u16;
    const std::span<const SUnitRow> units = isLength ? Units::kDistance : GetUnits(field.nature);
    const auto found = std::ranges::find(units, symbol, &SUnitRow::symbol);
    if (found == units.end()) return std::nullopt;
    return found->A / found->B;
}

template <class T>
bool Fits(double value) {
    return value >= std::numeric_limits<T>::min() && value <= std::numeric_limits<T>::max() &&
           value == std::floor(value);
}

} // namespace

std::optional<SColumn> MakeColumn(const SPacketLayout& layout, std::string_view title) {
    const std::size_t bracket = title.find('[');
    const std::string_view name = Trim(title.substr(0, bracket));
    SColumn column;
    for (std::size_t i = 0; i < layout.fields.size(); ++i)
        if (Outils_Texte::EqualsNoCase(layout.fields[i].name, name))
            column = {&layout.fields[i], {layout.offsets[i], layout.fields[i].type}, 1};
    if (!column.field || bracket == std::string_view::npos) return column;
    title.remove_prefix(bracket + 1);
    const auto factor = FindFactor(*column.field, Trim(title.substr(0, title.find(']'))));
    if (!factor) return std::nullopt;
    column.factor = *factor;
    return column;
}

bool Holds(const SFieldLayout& field, double value) {
    if (field.nature == natureLatitude) return std::abs(value) <= 90;
    if (field.nature == natureLongitude) return std::abs(value) <= 360;
    switch (field.type) {
    case EFieldType::u8: return Fits<std::uint8_t>(value);
    case EFieldType::u16: return Fits<std::uint16_t>(value);
    case EFieldType::u32: return Fits<std::uint32_t>(value);
    case EFieldType::i8: return Fits<std::int8_t>(value);
    case EFieldType::i16: return Fits<std::int16_t>(value);
    case EFieldType::i32: return Fits<std::int32_t>(value);
    case EFieldType::f32: return std::abs(value) <= std::numeric_limits<float>::max();
    default: return true;
    }
}

} // namespace Conversion
