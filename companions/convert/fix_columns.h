// The columns of post-processed GPS text, found by the titles and the units of its header.
#pragma once

#include "convert/calendar.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace Conversion {

enum class EFixColumn : std::uint8_t {
    ignored,
    week,    // of GPS
    gpsTime, // seconds of the week, or of the day after a date
    utcTime,
    date,
    utcStamp, // date and time, one or two words
    gpsStamp, // the same, or week and seconds of the week
    latitude,
    longitude,
    heightEllipsoid,
    heightSea,
    undulation,
    deviationNorth,
    deviationEast,
    deviationUp,
    signedRootCovariance, // north and east: the root of the covariance, with its sign
    quality
};
inline constexpr std::size_t kFixColumnCount = static_cast<std::size_t>(EFixColumn::quality) + 1;

struct SFixColumn {
    EFixColumn column = EFixColumn::ignored;
    unsigned words = 1;  // of a value: three for degrees, minutes and seconds
    double factor = 1.0; // from the unit of the column to metres
};

struct SFixLayout {
    std::vector<SFixColumn> columns;
    char separator = ' ';
    EDayOrder dayOrder = EDayOrder::dayFirst;
    unsigned wordsOfAngles = 0; // 0: as many as the lines turn out to have

    bool Has(EFixColumn column) const;
    // Words of a whole line.
    std::size_t CountWords() const;
};

// Reads a line of titles; empty when it is none, as it does not name both latitude and longitude.
std::optional<SFixLayout> MakeFixLayout(std::string_view titles);
// Adds what the line of units below the titles says, "(deg)" under "Latitude". False when the line is none.
bool AddUnits(SFixLayout& layout, std::string_view titles, std::string_view units);
// Gives latitude and longitude as many words as a line with this count of words must have. False when that
// cannot be.
bool FitAngles(SFixLayout& layout, std::size_t words);

} // namespace Conversion
