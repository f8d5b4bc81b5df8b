// The units in which quantities are shown. A value v in the internal unit is B * v / A in a unit; the factors
// are kept as two numbers, as the quotient would round otherwise.
#pragma once

#include <numbers>
#include <span>
#include <string_view>

namespace Outils_Valeurs {

struct SUnitRow {
    std::string_view name;
    std::string_view symbol;
    double A;
    double B;
};

namespace Units {
using std::numbers::pi;

// clang-format off
// The nautical mile is the last, so that the quantities without it take the rows before it.
inline constexpr SUnitRow kDistance[] = {
    {"meter", "m", 1, 1},
    {"centimeter", "cm", 1, 100},
    {"kilometer", "km", 1000, 1},
    {"inch", "in", 2.54, 100},
    {"foot", "ft", 30.48, 100},
    {"mile", "mi", 1609.344, 1},
    {"yard", "yd", 91.44, 100},
    {"nautical mile", "nm", 1852, 1},
};
inline constexpr std::span<const SUnitRow> kLength = std::span<const SUnitRow>(kDistance).first(7);
inline constexpr SUnitRow kTime[] = {
    {"second", "s", 1, 1},
};
inline constexpr SUnitRow kAngle[] = {
    {"degree", "°", 1, 1},
    {"radian", "rad", 180, pi},
};
inline constexpr SUnitRow kSpeed[] = {
    {"meter per second", "m/s", 1, 1},
    {"knot", "kt", 1852, 3600},
};
inline constexpr SUnitRow kAcceleration[] = {
    {"meter per square second", "m/s2", 1, 1},
    {"feet per square second", "ft/s2", 30.48, 100},
};
inline constexpr SUnitRow kAngularSpeed[] = {
    {"radian per second", "rad/s", 1, 1},
    {"degree per hour", "°/h", pi, 648000},
};
inline constexpr SUnitRow kCrossvariance[] = {
    {"square meter", "m²", 1, 1},
};
inline constexpr SUnitRow kScaleFactor[] = {
    {"percent", "%", 1, 100},
};
inline constexpr SUnitRow kTimeDrift[] = {
    {"microsecond", "µs", 1, 1000000},
    {"milisecond", "ms", 1, 1000},
    {"second", "s", 1, 1},
};
inline constexpr SUnitRow kRawFog[] = {
    {"radian", "rad", 648000000, pi},
    {"miliradian", "mrad", 648000, pi},
    {"microradian", "µrad", 648, pi},
    {"degree", "°", 3600000, 1},
};
inline constexpr SUnitRow kRawAcc[] = {
    {"meter per second", "m/s", 10000000, 1},
    {"millimeter per second", "mm/s", 10000, 1},
    {"micrometer per second", "µm/s", 10, 1},
};
inline constexpr SUnitRow kSpan[] = {
    {"milisecond", "ms", 1, 1000},
    {"second", "s", 1, 1},
    {"minute", "min", 60, 1},
    {"hour", "h", 3600, 1},
};
// clang-format on

} // namespace Units
} // namespace Outils_Valeurs
