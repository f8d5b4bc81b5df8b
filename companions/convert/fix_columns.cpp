#include "convert/fix_columns.h"

#include "convert/fields.h"
#include "foundation/text.h"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace Conversion {
namespace {

using enum EFixColumn;

struct STitle {
    std::string_view title;
    EFixColumn column;
};
// Of the programs that write such texts; compared without case.
constexpr STitle kTitles[] = {
    {"Week", week},
    {"GPSWeek", week},
    {"GPSTime", gpsTime},
    {"GPSTimeWk", gpsTime},
    {"GPSSeconds", gpsTime},
    {"UTCTime", utcTime},
    {"UTCDate", date},
    {"GPSDate", date},
    {"Date", date},
    {"GPST", gpsStamp},
    {"UTC", utcStamp},
    {"Latitude", latitude},
    {"Lat", latitude},
    {"Longitude", longitude},
    {"Long", longitude},
    {"Lon", longitude},
    {"H-Ell", heightEllipsoid},
    {"HEll", heightEllipsoid},
    {"EllHeight", heightEllipsoid},
    {"Height", heightEllipsoid},
    {"H-MSL", heightSea},
    {"HMSL", heightSea},
    {"H-Ortho", heightSea},
    {"Undulation", undulation},
    {"Undul", undulation},
    {"SDNorth", deviationNorth},
    {"sdn", deviationNorth},
    {"SDEast", deviationEast},
    {"sde", deviationEast},
    {"SDHeight", deviationUp},
    {"SDUp", deviationUp},
    {"sdu", deviationUp},
    {"sdne", signedRootCovariance},
    {"Q", quality},
};

struct SLengthUnit {
    std::string_view symbol;
    double metres;
};
constexpr SLengthUnit kLengths[] = {{"m", 1}, {"cm", 0.01}, {"mm", 0.001}, {"ft", 0.3048}, {"feet", 0.3048}};

constexpr bool IsLength(EFixColumn column) { return column >= heightEllipsoid && column <= deviationUp; }
constexpr bool IsAngle(EFixColumn column) { return column == latitude || column == longitude; }

struct SWord {
    std::string_view text;
    std::size_t begin;
};

std::vector<SWord> SplitTitles(std::string_view line, char separator) {
    std::vector<SWord> words;
    for (std::size_t i = 0; i < line.size();) {
        const auto isGap = [&](char c) { return c == ' ' || c == '\t' || c == separator; };
        while (i < line.size() && isGap(line[i])) ++i;
        const std::size_t begin = i;
        while (i < line.size() && !isGap(line[i])) ++i;
        if (i > begin) words.push_back({line.substr(begin, i - begin), begin});
    }
    return words;
}

char FindSeparator(std::string_view titles) {
    for (const char separator : {',', ';'})
        if (titles.find(separator) != std::string_view::npos) return separator;
    return ' ';
}

void SetAngleWords(SFixLayout& layout, unsigned words) {
    layout.wordsOfAngles = words;
    for (SFixColumn& column : layout.columns)
        if (IsAngle(column.column)) column.words = words;
}

// What "deg", "D M S" or "d'"" says about latitude and longitude; 0 for other units.
unsigned CountAngleWords(std::string_view unit) {
    const auto has = [&](std::string_view any) { return unit.find_first_of(any) != std::string_view::npos; };
    if (!has("dD") || has("yY") || Outils_Texte::EqualsNoCase(unit, "dop")) return 0;
    if (has("\"") || (has("mM") && has("sS"))) return 3;
    return has("mM'") ? 2 : 1;
}

void TakeUnit(SFixLayout& layout, SFixColumn& column, std::string_view unit) {
    if (IsAngle(column.column)) {
        if (const unsigned words = CountAngleWords(unit)) SetAngleWords(layout, words);
    } else if (column.column == date) {
        if (Outils_Texte::EqualsNoCase(unit, "MDY")) layout.dayOrder = EDayOrder::monthFirst;
    } else if (IsLength(column.column)) {
        for (const SLengthUnit& length : kLengths)
            if (Outils_Texte::EqualsNoCase(unit, length.symbol)) column.factor = length.metres;
    }
}

} // namespace

bool SFixLayout::Has(EFixColumn column) const {
    return std::ranges::find(columns, column, &SFixColumn::column) != columns.end();
}

std::size_t SFixLayout::CountWords() const {
    std::size_t count = 0;
    for (const SFixColumn& column : columns) count += column.words;
    return count;
}

std::optional<SFixLayout> MakeFixLayout(std::string_view titles) {
    SFixLayout layout;
    if (titles.starts_with('%')) titles.remove_prefix(1);
    layout.separator = FindSeparator(titles);
    for (const SWord& word : SplitTitles(titles, layout.separator)) {
        const std::size_t bracket = word.text.find('(');
        SFixColumn column;
        for (const STitle& title : kTitles)
            if (Outils_Texte::EqualsNoCase(word.text.substr(0, bracket), title.title))
                column.column = title.column;
        column.words = column.column == gpsStamp || column.column == utcStamp ? 2 : 1;
        layout.columns.push_back(column);
        if (bracket == std::string_view::npos) continue;
        const std::string_view unit = word.text.substr(bracket + 1);
        TakeUnit(layout, layout.columns.back(), unit.substr(0, unit.find_last_of(')')));
    }
    if (!layout.Has(latitude) || !layout.Has(longitude)) return std::nullopt;
    if (layout.wordsOfAngles != 0) SetAngleWords(layout, layout.wordsOfAngles);
    return layout;
}

bool AddUnits(SFixLayout& layout, std::string_view titles, std::string_view units) {
    if (!Trim(units).starts_with('(')) return false;
    const std::vector<SWord> words = SplitTitles(titles, layout.separator);
    for (std::size_t begin = units.find('('); begin != std::string_view::npos;
         begin = units.find('(', begin + 1)) {
        const std::size_t end = units.find(')', begin);
        if (end == std::string_view::npos) break;
        // The title whose middle is nearest: the units are set below their titles.
        const auto distance = [&](const SWord& word) {
            return std::labs(static_cast<long>(2 * word.begin + word.text.size()) -
                             static_cast<long>(begin + end));
        };
        const auto nearest = std::ranges::min_element(words, {}, distance);
        const auto index = static_cast<std::size_t>(nearest - words.begin());
        if (index < layout.columns.size())
            TakeUnit(layout, layout.columns[index], Trim(units.substr(begin + 1, end - begin - 1)));
    }
    return true;
}

bool FitAngles(SFixLayout& layout, std::size_t words) {
    if (layout.wordsOfAngles != 0) return true;
    for (const unsigned perAngle : {1u, 2u, 3u}) {
        if (words != layout.columns.size() + 2 * (perAngle - 1)) continue;
        SetAngleWords(layout, perAngle);
        return true;
    }
    return false;
}

} // namespace Conversion
