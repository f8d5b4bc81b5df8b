// The choices among the settings, and their words in the file.
//
// The numbers are the words' places and never change.
#pragma once

#include <cstdint>
#include <string_view>

namespace Outils_Configuration {

enum class EStartMode : std::int32_t { openLast, newEmpty, newWizard };
enum class EAppearance : std::int32_t { standard, blue, black, silver };
enum class EGpsAltitudeMode : std::int32_t { meanSeaLevel, ellipsoid };
enum class EClockDriftCompensation : std::int32_t { automatic, off, on };
enum class ESimulationTimeMode : std::int32_t { elapsedTime, utcTime };
// The last three are for programs: no setting chooses them, so they have no words.
enum class EDateNotation : std::int32_t {
    dayMonthYear,
    monthDayYear,
    yearMonthDay,
    unixTime,
    compact,
    secondsOfDay,
    secondsOfWeek,
};
enum class ESpanNotation : std::int32_t { dayHourMinuteSecond, totalElapsedTime };
enum class EAngleNotation : std::int32_t { degrees, degreesMinutes, degreesMinutesSeconds, nmea };

inline constexpr std::string_view kStartModeWords[] = {"openLast", "newEmpty", "newWizard"};
inline constexpr std::string_view kAppearanceWords[] = {"standard", "blue", "black", "silver"};
inline constexpr std::string_view kGpsAltitudeModeWords[] = {"meanSeaLevel", "ellipsoid"};
inline constexpr std::string_view kClockDriftCompensationWords[] = {"automatic", "off", "on"};
inline constexpr std::string_view kSimulationTimeModeWords[] = {"elapsedTime", "utcTime"};
inline constexpr std::string_view kDateNotationWords[] = {"dayMonthYear", "monthDayYear", "yearMonthDay",
                                                          "unixTime"};
inline constexpr std::string_view kSpanNotationWords[] = {"dayHourMinuteSecond", "totalElapsedTime"};
inline constexpr std::string_view kAngleNotationWords[] = {"degrees", "degreesMinutes",
                                                           "degreesMinutesSeconds", "nmea"};

} // namespace Outils_Configuration
