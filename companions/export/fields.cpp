#include "export/fields.h"

#include "export/export_file.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Exportation {

using namespace Persistance_Xpf;
using namespace Outils_Valeurs;

namespace {

struct SNatureUnits {
    std::uint8_t nature;
    std::string_view symbol; // of the base unit
    std::span<const SUnitRow> units;
};

constexpr SNatureUnits kNatureUnits[] = {
    {natureLatitude, "°", Units::kAngle},
    {natureLongitude, "°", Units::kAngle},
    {naturePositionStdDev, "m", Units::kDistance},
    {naturePositionCrossVariance, "m²", Units::kCrossvariance},
    {natureLinearSpeed, "m/s", Units::kSpeed},
    {natureLinearSpeedStdDev, "m/s", Units::kSpeed},
    {natureLinearAcceleration, "m/s2", Units::kAcceleration},
    {natureLinearAccelerationStdDev, "m/s2", Units::kAcceleration},
    {natureAngularSpeed, "rad/s", Units::kAngularSpeed},
    {natureAngularSpeedStdDev, "rad/s", Units::kAngularSpeed},
    {natureTemperature, "°C", {}},
    {natureSoundVelocity, "m/s", Units::kSpeed},
    {natureAltitude, "m", Units::kDistance},
    {natureImmersion, "m", Units::kDistance},
    {natureAltitudeStdDev, "m", Units::kDistance},
    {natureAttitude, "°", Units::kAngle},
    {natureAttitudeStdDev, "°", Units::kAngle},
    {natureDistance, "m", Units::kDistance},
    {natureDistanceStdDev, "m", Units::kDistance},
    {natureTimeLength, "s", Units::kSpan},
    {natureScaleFactor, "", Units::kScaleFactor},
    {natureTimeDrift, "s", Units::kTimeDrift},
    {natureRawFog, "0.001 arcsec", Units::kRawFog},
    {natureRawAcc, "1e-7 m/s", Units::kRawAcc},
};

const SNatureUnits* FindNature(std::uint8_t nature) {
    for (const SNatureUnits& row : kNatureUnits)
        if (row.nature == nature) return &row;
    return nullptr;
}

template <class T>
double Get(const std::uint8_t* bytes) {
    return static_cast<double>(Outils::Load<T>(bytes));
}

template <class T>
char* Format(const std::uint8_t* bytes, char* out) {
    const T value = Outils::Load<T>(bytes);
    if constexpr (std::is_floating_point_v<T>)
        if (!std::isfinite(value)) return out;
    return std::to_chars(out, out + kWidestValue, value).ptr;
}

template <template <class> class Of>
consteval auto MakeByType() {
    return []<class... T>(std::tuple<T...>*) {
        return std::array{&Of<T>::Call...};
    }(static_cast<FieldElements*>(nullptr));
}
template <class T>
struct TGet {
    static double Call(const std::uint8_t* bytes) { return Get<T>(bytes); }
};
template <class T>
struct TFormat {
    static char* Call(const std::uint8_t* bytes, char* out) { return Format<T>(bytes, out); }
};
constexpr auto kGetByType = MakeByType<TGet>();
constexpr auto kFormatByType = MakeByType<TFormat>();

} // namespace

SFieldRef FindField(const SPacketLayout& layout, std::string_view name) {
    for (std::size_t i = 0; i < layout.fields.size(); ++i)
        if (layout.fields[i].name == name && layout.fields[i].count == 1)
            return {&layout.fields[i], layout.offsets[i]};
    return {};
}

SFieldRef FindPointField(const SPacketLayout& layout, std::string_view name, int point) {
    const SFieldRef field = FindField(layout, name);
    return field ? field : FindField(layout, std::string(name) + std::to_string(point));
}

double GetValue(const std::uint8_t* payload, SFieldRef field) {
    return kGetByType[static_cast<std::size_t>(field.row->type)](payload + field.offset);
}

std::string_view GetUnit(std::uint8_t nature) {
    const SNatureUnits* row = FindNature(nature);
    return row ? row->symbol : std::string_view();
}

std::span<const SUnitRow> GetUnits(std::uint8_t nature) {
    const SNatureUnits* row = FindNature(nature);
    return row ? row->units : std::span<const SUnitRow>();
}

bool IsAngle(std::uint8_t nature) { return nature == natureLongitude || nature == natureAttitude; }

std::string MakeHeading(const SFieldLayout& field) {
    const std::string_view unit = GetUnit(field.nature);
    return std::string(field.name) + (unit.empty() ? "" : " [" + std::string(unit) + "]");
}

STrackFields FindTrackFields(const SPacketLayout& layout, int point) {
    const auto find = [&](std::string_view name) { return FindPointField(layout, name, point); };
    return {find("Latitude"),        find("Longitude"),      find("Altitude"),
            find("Std. dev. north"), find("Std. dev. east"), find("Std. dev. altitude"),
            find("Heading"),         find("Roll"),           find("Pitch"),
            find("Speed north"),     find("Speed east"),     find("Speed up"),
            find("Heave"),           find("Surge"),          find("Sway"),
            find("GPS mode")};
}

bool IsPosition(double latitude, double longitude) {
    return std::fabs(latitude) <= 90.0 && std::fabs(longitude) <= 360.0;
}

char* FormatValue(const std::uint8_t* payload, SFieldRef field, char* out) {
    return kFormatByType[static_cast<std::size_t>(field.row->type)](payload + field.offset, out);
}

char* FormatFixed(double value, int decimals, char* out) {
    if (!std::isfinite(value)) return out;
    return std::to_chars(out, out + kWidestValue, value, std::chars_format::fixed, decimals).ptr;
}

} // namespace Exportation
