#include "foundation/date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

using namespace Outils_Temps;

namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t kUnsignedMax = std::numeric_limits<std::uint64_t>::max();

TEST(DateTime, CalendarFieldsGiveTicksAndBack) {
    const std::tuple<std::uint16_t, std::uint16_t, std::uint16_t, std::uint16_t, std::uint16_t, std::uint16_t,
                     std::int64_t, std::uint64_t, int>
        rows[] = {{1601, 1, 1, 0, 0, 0, 0, 0, 1},
                  {1970, 1, 1, 0, 0, 0, 0, 116444736000000000, 4},
                  {2000, 2, 29, 23, 59, 59, 9999999, 125963423999999999, 2},
                  {2026, 7, 14, 6, 30, 0, 5, 134284842000000005, 2},
                  {9999, 12, 31, 0, 0, 0, 0, 2650466880000000000, 5}};
    for (const auto& [year, month, day, hour, minute, second, ticks, expected, dayOfWeek] : rows) {
        CDateTime date = CDateTime::Invalid();
        date.SetDateTime(year, month, day, hour, minute, second, ticks);
        EXPECT_EQ(date, CDateTime(expected)) << year;
        CalendarFields back;
        ASSERT_TRUE(date.GetCalendar(back));
        EXPECT_EQ(back.dayOfWeek, dayOfWeek) << year;
        CDateTime again;
        again.SetDateTime(back.year, back.month, back.day, back.hour, back.minute, back.second, back.ticks);
        EXPECT_EQ(again, date) << year;
    }
}

TEST(DateTime, RefusedCalendarFieldsLeaveTheTicks) {
    const std::uint16_t rows[][6] = {{1600, 12, 31, 0, 0, 0}, {30828, 1, 1, 0, 0, 0},  {2024, 0, 1, 0, 0, 0},
                                     {2024, 13, 1, 0, 0, 0},  {2024, 257, 1, 0, 0, 0}, {2024, 1, 0, 0, 0, 0},
                                     {2024, 1, 32, 0, 0, 0},  {2024, 1, 257, 0, 0, 0}, {2023, 2, 29, 0, 0, 0},
                                     {2100, 2, 29, 0, 0, 0},  {2024, 4, 31, 0, 0, 0},  {2024, 1, 1, 24, 0, 0},
                                     {2024, 1, 1, 0, 60, 0},  {2024, 1, 1, 0, 0, 60}};
    for (const auto& row : rows) {
        CDateTime date(77);
        date.SetDateTime(row[0], row[1], row[2], row[3], row[4], row[5], 0);
        EXPECT_EQ(date, CDateTime(77, kStatusInvalid)) << row[0] << '-' << row[1] << '-' << row[2];
        EXPECT_EQ(date.GetYear(), -1);
    }
    EXPECT_EQ(CDateTime(kUnsignedMax).GetMonth(), -1); // beyond the calendar
}

TEST(DateTime, ArithmeticMarksOverflowAndSpreadsInvalidity) {
    const std::tuple<CDateTime, CDateTimeSpan, bool, bool> rows[] = {
        {CDateTime(5), CDateTimeSpan(0), true, true},
        {CDateTime(5), CDateTimeSpan(5), true, true},
        {CDateTime(5), CDateTimeSpan(6), true, false},
        {CDateTime(5), CDateTimeSpan(-6), false, true},
        {CDateTime(kUnsignedMax), CDateTimeSpan(1), false, true},
        {CDateTime(kUnsignedMax), CDateTimeSpan(-1), true, false},
        {CDateTime(0), CDateTimeSpan(kMin), false, true},
        {CDateTime(5), CDateTimeSpan::Invalid(), false, false},
        {CDateTime(5, kStatusInvalid), CDateTimeSpan(1), false, false}};
    for (const auto& [date, span, sumValid, differenceValid] : rows) {
        EXPECT_EQ((date + span).IsValid(), sumValid) << span.GetTicks();
        EXPECT_EQ((date - span).IsValid(), differenceValid) << span.GetTicks();
    }
    EXPECT_EQ(CDateTime(5, kStatusInvalid) + CDateTimeSpan(9), CDateTime(5, kStatusInvalid));
    EXPECT_EQ(CDateTime(5) + CDateTimeSpan(7), CDateTime(12));

    constexpr std::uint64_t limit = 9223372036854775806;
    EXPECT_EQ(CDateTime(limit) - CDateTime(0), CDateTimeSpan(static_cast<std::int64_t>(limit)));
    EXPECT_EQ(CDateTime(1) - CDateTime(limit + 1), CDateTimeSpan(-static_cast<std::int64_t>(limit)));
    EXPECT_FALSE((CDateTime(limit + 1) - CDateTime(0)).IsValid());
    EXPECT_FALSE((CDateTime(0) - CDateTime(limit + 1)).IsValid());
    EXPECT_FALSE((CDateTime(0) - CDateTime::Invalid()).IsValid());
}

TEST(DateTimeSpan, SumsAndDifferencesMarkOverflow) {
    const std::tuple<std::int64_t, std::int64_t, bool, bool> rows[] = {
        {3, 4, true, true},     {kMax, 1, false, true},    {kMax, -1, true, false}, {kMin, -1, false, true},
        {kMin, 1, true, false}, {kMin, kMin, false, true}, {0, kMin, true, false},  {kMax, 0, true, true}};
    for (const auto& [left, right, sumValid, differenceValid] : rows) {
        const CDateTimeSpan a(left), b(right);
        EXPECT_EQ((a + b).IsValid(), sumValid) << left << " + " << right;
        EXPECT_EQ((a - b).IsValid(), differenceValid) << left << " - " << right;
    }
    EXPECT_FALSE((CDateTimeSpan(1) - CDateTimeSpan::Invalid()).IsValid());
}

TEST(DateTimeSpan, PartsCarryTheSign) {
    for (int sign : {1, -1}) {
        CDateTimeSpan span;
        span.SetDuration(sign, sign * 1, sign * 2, sign * 3, sign * 5000000);
        EXPECT_TRUE(span.GetDays() == sign && span.GetHours() == sign && span.GetMinutes() == 2 * sign);
        EXPECT_DOUBLE_EQ(span.GetSeconds(), sign * 3.5);
        EXPECT_DOUBLE_EQ(span.GetTotalSeconds(), sign * 90123.5);
    }
    CDateTimeSpan span;
    span.SetDuration(kMax, 0, 0, 0, 0);
    EXPECT_FALSE(span.IsValid());
}

TEST(DateTimeSpan, SecondsRoundAwayFromZero) {
    const std::pair<double, std::int64_t> rows[] = {
        {0.00000005, 1}, {-0.00000005, -1}, {0.00000004, 0}, {-1.5, -15000000}, {9e11, 9000000000000000000}};
    for (const auto& [seconds, ticks] : rows)
        EXPECT_EQ(CDateTimeSpan::FromSeconds(seconds), CDateTimeSpan(ticks)) << seconds;
    EXPECT_EQ(CDateTimeSpan(-5000000).ToText(), "-0.5000000");
    EXPECT_EQ(CDateTimeSpan(kMin).ToText(), "-922337203685.4775808");
    for (double seconds : {1e12, -1e12, std::nan("")})
        EXPECT_FALSE(CDateTimeSpan::FromSeconds(seconds).IsValid()) << seconds;
}

TEST(DateTimeSpan, InvalidSidesCompareFalse) {
    const CDateTimeSpan valid(1);
    const CDateTimeSpan invalid(0, kStatusInvalid);
    EXPECT_TRUE(CDateTimeSpan(-1) < valid && valid <= valid && valid >= CDateTimeSpan(-1));
    EXPECT_FALSE(valid < invalid || valid > invalid || valid <= invalid || valid >= invalid ||
                 valid == invalid);
    EXPECT_FALSE(invalid < valid || invalid > valid || invalid <= invalid || invalid >= invalid);
    EXPECT_FALSE(CDateTime(0) == CDateTime::Invalid() || CDateTime(0) <= CDateTime::Invalid());
}

} // namespace
