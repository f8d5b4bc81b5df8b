#include "foundation/date_time.h"

#include <chrono>
#include <cmath>
#include <cstdio>

namespace Outils_Temps {

namespace {

// The two ends of the int64 range as doubles: any double strictly between them converts without overflow.
constexpr double kTickLimit = 9223372036854775808.0;

constexpr auto kEpoch = std::chrono::sys_days{std::chrono::year{1601} / 1 / 1};

// Signed sums as the hardware makes them: the callers test afterwards whether the result moved the right way.
std::int64_t WrappingAdd(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

std::int64_t WrappingSubtract(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) - static_cast<std::uint64_t>(b));
}

} // namespace

CDateTimeSpan CDateTimeSpan::FromSeconds(double seconds) {
    CDateTimeSpan span;
    span.SetFromSeconds(seconds);
    return span;
}

void CDateTimeSpan::SetDuration(std::int64_t days, std::int64_t hours, std::int64_t minutes,
                                std::int64_t seconds, std::int64_t ticks) {
    std::int64_t total = days;
    const bool overflow = __builtin_mul_overflow(total, std::int64_t{24}, &total) ||
                          __builtin_add_overflow(total, hours, &total) ||
                          __builtin_mul_overflow(total, std::int64_t{60}, &total) ||
                          __builtin_add_overflow(total, minutes, &total) ||
                          __builtin_mul_overflow(total, std::int64_t{60}, &total) ||
                          __builtin_add_overflow(total, seconds, &total) ||
                          __builtin_mul_overflow(total, kTicksPerSecond, &total) ||
                          __builtin_add_overflow(total, ticks, &total);
    m_status = overflow ? kStatusInvalid : kStatusValid;
    if (!overflow) m_ticks = total;
}

void CDateTimeSpan::SetFromSeconds(double seconds) {
    double ticks = seconds * 1e7;
    ticks += ticks > 0 ? 0.5 : -0.5;
    if (!(std::fabs(ticks) < kTickLimit)) {
        m_status = kStatusInvalid;
        return;
    }
    m_ticks = static_cast<std::int64_t>(ticks);
    m_status = kStatusValid;
}

double CDateTimeSpan::GetSeconds() const {
    return static_cast<double>(m_ticks % kTicksPerSecond) / 1e7 +
           static_cast<double>(m_ticks / kTicksPerSecond % 60);
}

double CDateTimeSpan::GetTotalSeconds() const {
    const std::int64_t seconds = m_ticks / kTicksPerSecond;
    return static_cast<double>(seconds) + static_cast<double>(m_ticks % kTicksPerSecond) / 1e7;
}

CDateTimeSpan& CDateTimeSpan::operator+=(CDateTimeSpan other) {
    if (!IsValid() || !other.IsValid()) {
        m_status = kStatusInvalid;
        return *this;
    }
    const std::int64_t former = m_ticks;
    m_ticks = WrappingAdd(m_ticks, other.m_ticks);
    if ((other.m_ticks > 0 && m_ticks < former) || (other.m_ticks < 0 && m_ticks > former))
        m_status = kStatusInvalid;
    return *this;
}

CDateTimeSpan& CDateTimeSpan::operator-=(CDateTimeSpan other) {
    if (!IsValid() || !other.IsValid()) {
        m_status = kStatusInvalid;
        return *this;
    }
    const std::int64_t former = m_ticks;
    m_ticks = WrappingSubtract(m_ticks, other.m_ticks);
    if ((other.m_ticks > 0 && m_ticks > former) || (other.m_ticks < 0 && m_ticks < former))
        m_status = kStatusInvalid;
    return *this;
}

std::string CDateTimeSpan::ToText() const {
    const bool negative = m_ticks < 0;
    const std::uint64_t magnitude =
        negative ? 0 - static_cast<std::uint64_t>(m_ticks) : static_cast<std::uint64_t>(m_ticks);
    char text[100];
    std::snprintf(text, sizeof text, "%s%llu.%07llu", negative ? "-" : "",
                  static_cast<unsigned long long>(magnitude / kTicksPerSecond),
                  static_cast<unsigned long long>(magnitude % kTicksPerSecond));
    return text;
}

CDateTime CDateTime::Now() {
    using namespace std::chrono;
    using Ticks = duration<std::int64_t, std::ratio<1, kTicksPerSecond>>;
    // The offset is added in ticks: in nanoseconds the distance from the epoch would overflow.
    const auto unixTicks = duration_cast<Ticks>(system_clock::now().time_since_epoch());
    const Ticks offset = sys_days{} - kEpoch;
    return CDateTime(static_cast<std::uint64_t>((unixTicks + offset).count()));
}

void CDateTime::SetDateTime(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour,
                            std::uint16_t minute, std::uint16_t second, std::int64_t ticks) {
    using namespace std::chrono;
    const year_month_day date{std::chrono::year{year}, std::chrono::month{month}, std::chrono::day{day}};
    // The calendar types hold 8-bit months and days, so the range is tested on the arguments themselves.
    if (year < 1601 || year > 30827 || month > 12 || day > 31 || !date.ok() || hour > 23 || minute > 59 ||
        second > 59) {
        m_status = kStatusInvalid;
        return;
    }
    const auto days = static_cast<std::uint64_t>((sys_days{date} - kEpoch).count());
    m_ticks = days * kTicksPerDay + hour * static_cast<std::uint64_t>(kTicksPerHour) +
              minute * static_cast<std::uint64_t>(kTicksPerMinute) +
              second * static_cast<std::uint64_t>(kTicksPerSecond) + static_cast<std::uint64_t>(ticks);
    m_status = kStatusValid;
}

bool CDateTime::GetCalendar(CalendarFields& fields) const {
    using namespace std::chrono;
    if (!IsValid() || m_ticks > static_cast<std::uint64_t>(INT64_MAX)) return false;
    const auto ticks = static_cast<std::int64_t>(m_ticks);
    const sys_days day = kEpoch + days{ticks / kTicksPerDay};
    const year_month_day date{day};
    const std::int64_t inDay = ticks % kTicksPerDay;
    fields.year = int{date.year()};
    fields.month = static_cast<int>(unsigned{date.month()});
    fields.day = static_cast<int>(unsigned{date.day()});
    fields.dayOfWeek = static_cast<int>(weekday{day}.c_encoding());
    fields.hour = static_cast<int>(inDay / kTicksPerHour);
    fields.minute = static_cast<int>(inDay / kTicksPerMinute % 60);
    fields.second = static_cast<int>(inDay / kTicksPerSecond % 60);
    fields.ticks = static_cast<std::int32_t>(inDay % kTicksPerSecond);
    return true;
}

int CDateTime::GetYear() const {
    CalendarFields fields;
    return GetCalendar(fields) ? fields.year : -1;
}

int CDateTime::GetMonth() const {
    CalendarFields fields;
    return GetCalendar(fields) ? fields.month : -1;
}

int CDateTime::GetDay() const {
    CalendarFields fields;
    return GetCalendar(fields) ? fields.day : -1;
}

CDateTime& CDateTime::operator+=(CDateTimeSpan span) {
    if (!IsValid() || !span.IsValid()) {
        m_status = kStatusInvalid;
        return *this;
    }
    const std::uint64_t former = m_ticks;
    m_ticks += static_cast<std::uint64_t>(span.GetTicks());
    if ((span.GetTicks() > 0 && m_ticks < former) || (span.GetTicks() < 0 && m_ticks > former))
        m_status = kStatusInvalid;
    return *this;
}

CDateTime& CDateTime::operator-=(CDateTimeSpan span) {
    if (!IsValid() || !span.IsValid()) {
        m_status = kStatusInvalid;
        return *this;
    }
    const std::uint64_t former = m_ticks;
    m_ticks -= static_cast<std::uint64_t>(span.GetTicks());
    if ((span.GetTicks() > 0 && m_ticks > former) || (span.GetTicks() < 0 && m_ticks < former))
        m_status = kStatusInvalid;
    return *this;
}

CDateTimeSpan operator-(CDateTime left, CDateTime right) {
    if (!left.IsValid() || !right.IsValid()) return CDateTimeSpan::Invalid();
    const bool negative = right.m_ticks > left.m_ticks;
    const std::uint64_t magnitude = negative ? right.m_ticks - left.m_ticks : left.m_ticks - right.m_ticks;
    if (magnitude > 9223372036854775806u) return CDateTimeSpan::Invalid();
    const auto ticks = static_cast<std::int64_t>(magnitude);
    return CDateTimeSpan(negative ? -ticks : ticks);
}

} // namespace Outils_Temps
