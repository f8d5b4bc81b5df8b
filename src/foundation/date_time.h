// Absolute instants and signed lengths of time, both counted in ticks of 100 nanoseconds.
//
// Both carry a validity status that spreads through arithmetic: a refused calendar value or an overflow makes
// every later result invalid instead of giving a wrong date. Nothing here throws. Plain values, usable from
// any thread.
#pragma once

#include <cstdint>
#include <string>

namespace Outils_Temps {

inline constexpr std::int64_t kTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
inline constexpr std::int64_t kTicksPerHour = 60 * kTicksPerMinute;
inline constexpr std::int64_t kTicksPerDay = 24 * kTicksPerHour;

inline constexpr std::int32_t kStatusValid = 0;
inline constexpr std::int32_t kStatusInvalid = -1;

// A signed length of time; also the date of a packet, as the time elapsed on the recording's own clock.
class CDateTimeSpan {
  public:
    // Zero and valid.
    constexpr CDateTimeSpan() = default;
    explicit constexpr CDateTimeSpan(std::int64_t ticks, std::int32_t status = kStatusValid)
        : m_ticks(ticks), m_status(status) {}

    static constexpr CDateTimeSpan Invalid() { return CDateTimeSpan(0, kStatusInvalid); }
    static CDateTimeSpan FromSeconds(double seconds);

    constexpr std::int64_t GetTicks() const { return m_ticks; }
    constexpr std::int32_t GetStatus() const { return m_status; }
    constexpr bool IsValid() const { return m_status == kStatusValid; }

    // The length from its parts, each signed; makes the span valid. Parts beyond the 64-bit tick range make
    // it invalid.
    void SetDuration(std::int64_t days, std::int64_t hours, std::int64_t minutes, std::int64_t seconds,
                     std::int64_t ticks);
    // The length from seconds, rounded half away from zero to a tick. NaN and values beyond the tick range
    // make the span invalid.
    void SetFromSeconds(double seconds);

    // The hour within the day, the minute within the hour and the second within the minute (with its
    // fraction), each in the sign of the span.
    int GetHours() const { return static_cast<int>(m_ticks / kTicksPerHour % 24); }
    int GetMinutes() const { return static_cast<int>(m_ticks / kTicksPerMinute % 60); }
    double GetSeconds() const;
    // Whole days, in the sign of the span.
    std::int64_t GetDays() const { return m_ticks / kTicksPerDay; }
    // The whole length in seconds; whole seconds and fraction are converted apart to keep the fraction's
    // precision.
    double GetTotalSeconds() const;

    CDateTimeSpan& operator+=(CDateTimeSpan other);
    CDateTimeSpan& operator-=(CDateTimeSpan other);
    friend CDateTimeSpan operator+(CDateTimeSpan left, CDateTimeSpan right) { return left += right; }
    friend CDateTimeSpan operator-(CDateTimeSpan left, CDateTimeSpan right) { return left -= right; }

    // Equal ticks and equal status.
    friend constexpr bool operator==(CDateTimeSpan, CDateTimeSpan) = default;
    // False in every direction when either side is invalid.
    friend constexpr bool operator<(CDateTimeSpan a, CDateTimeSpan b) {
        return Valid(a, b) && a.m_ticks < b.m_ticks;
    }
    friend constexpr bool operator<=(CDateTimeSpan a, CDateTimeSpan b) {
        return Valid(a, b) && a.m_ticks <= b.m_ticks;
    }
    friend constexpr bool operator>(CDateTimeSpan a, CDateTimeSpan b) { return b < a; }
    friend constexpr bool operator>=(CDateTimeSpan a, CDateTimeSpan b) { return b <= a; }

    // Signed decimal seconds with seven decimals, "-0.5000000". The status is not shown.
    std::string ToText() const;

  private:
    static constexpr bool Valid(CDateTimeSpan a, CDateTimeSpan b) { return a.IsValid() && b.IsValid(); }

    std::int64_t m_ticks = 0;
    std::int32_t m_status = kStatusValid;
};

// The fields of a calendar date and time of day, UTC, proleptic Gregorian.
struct CalendarFields {
    int year = 0;
    int month = 0;     // 1 to 12
    int day = 0;       // 1 to 31
    int dayOfWeek = 0; // 0 Sunday to 6 Saturday
    int hour = 0;
    int minute = 0;
    int second = 0;
    std::int32_t ticks = 0; // within the second, 0 to 9999999
};

// An absolute UTC instant: ticks since 1601-01-01 00:00:00.
class CDateTime {
  public:
    // Tick 0, valid; what is to start unset is built with Invalid().
    constexpr CDateTime() = default;
    explicit constexpr CDateTime(std::uint64_t ticks, std::int32_t status = kStatusValid)
        : m_ticks(ticks), m_status(status) {}

    static constexpr CDateTime Invalid() { return CDateTime(0, kStatusInvalid); }
    // The system clock's present instant.
    static CDateTime Now();

    constexpr std::uint64_t GetTicks() const { return m_ticks; }
    constexpr std::int32_t GetStatus() const { return m_status; }
    constexpr bool IsValid() const { return m_status == kStatusValid; }

    // The date from calendar fields plus `ticks`. Fields that name no instant (month 13, day 32, second 60, a
    // year outside 1601 to 30827) make the status invalid and leave the ticks as they are.
    void SetDateTime(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                     std::uint16_t minute, std::uint16_t second, std::int64_t ticks);

    // One calendar field, -1 if the date is invalid or beyond the calendar's range.
    int GetYear() const;
    int GetMonth() const;
    int GetDay() const;
    // All fields at once; false as above, and `fields` is left alone.
    bool GetCalendar(CalendarFields& fields) const;

    // An overflow or an invalid operand makes the status invalid; an invalid operand leaves the ticks
    // untouched.
    CDateTime& operator+=(CDateTimeSpan span);
    CDateTime& operator-=(CDateTimeSpan span);
    friend CDateTime operator+(CDateTime date, CDateTimeSpan span) { return date += span; }
    friend CDateTime operator-(CDateTime date, CDateTimeSpan span) { return date -= span; }
    // The time from `other` to this; invalid when the distance exceeds 9223372036854775806 ticks.
    friend CDateTimeSpan operator-(CDateTime left, CDateTime right);

    friend constexpr bool operator==(CDateTime, CDateTime) = default;
    friend constexpr bool operator<(CDateTime a, CDateTime b) { return Valid(a, b) && a.m_ticks < b.m_ticks; }
    friend constexpr bool operator<=(CDateTime a, CDateTime b) {
        return Valid(a, b) && a.m_ticks <= b.m_ticks;
    }
    friend constexpr bool operator>(CDateTime a, CDateTime b) { return b < a; }
    friend constexpr bool operator>=(CDateTime a, CDateTime b) { return b <= a; }

  private:
    static constexpr bool Valid(CDateTime a, CDateTime b) { return a.IsValid() && b.IsValid(); }

    std::uint64_t m_ticks = 0;
    std::int32_t m_status = kStatusValid;
};

} // namespace Outils_Temps
