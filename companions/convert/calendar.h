// Dates of foreign recordings: calendar days, times of day and GPS time as ticks of 100 ns since 1601-01-01
// UTC.
#pragma once

#include "foundation/date_time.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Conversion {

using Outils_Temps::kTicksPerDay;
using Outils_Temps::kTicksPerSecond;

// A date in ticks; of a record's absolute UTC date, or of a time within a day.
using Ticks = std::int64_t;

// Days from 1601-01-01 to the date. Empty for a date that no calendar has or outside 1970 to 2199, where no
// recording lies.
std::optional<std::int64_t> MakeDay(int year, int month, int day);

// GPS week and seconds of the week as GPS time, not yet as UTC. Empty outside the years of MakeDay.
std::optional<Ticks> MakeGpsTime(std::int64_t week, Ticks timeOfWeek);
// How many seconds GPS time is ahead of UTC at this GPS time.
int GetLeapSeconds(Ticks gpsTime);

inline constexpr Ticks kTicksPerEra =
    1024 * 7 * kTicksPerDay; // until the ten bits of the GPS week begin again

// "hhmmss" with or without a fraction, 000000 to 240000; second 60 is the first of the next minute.
std::optional<Ticks> ParseCompactTime(std::string_view text);
// "hh:mm:ss" or "hh:mm", the seconds with or without a fraction after a point or a comma.
std::optional<Ticks> ParseTime(std::string_view text);

enum class EDayOrder : std::uint8_t { dayFirst, monthFirst };

// A day of four digits of the year and two of month and day, with "-", "/" or "." between, the year first or
// last. `order` says what comes first when the year is last.
std::optional<Ticks> ParseDay(std::string_view text, EDayOrder order = EDayOrder::dayFirst);
// A day, then perhaps "T" or blanks, a time and "Z".
std::optional<Ticks> ParseDate(std::string_view text, EDayOrder order = EDayOrder::dayFirst);

} // namespace Conversion
