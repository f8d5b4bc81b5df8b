#include "convert/calendar.h"

#include "convert/fields.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace Conversion {
namespace {

using namespace std::chrono;

constexpr sys_days kFirstDay = 1601y / 1 / 1;
constexpr std::int64_t kGpsFirstDay = (sys_days(1980y / 1 / 6) - kFirstDay).count();

// The first days with one more leap second since GPS time and UTC were equal (IERS Bulletin C).
constexpr std::array kLeapDays{1981y / 7 / 1, 1982y / 7 / 1, 1983y / 7 / 1, 1985y / 7 / 1, 1988y / 1 / 1,
                               1990y / 1 / 1, 1991y / 1 / 1, 1992y / 7 / 1, 1993y / 7 / 1, 1994y / 7 / 1,
                               1996y / 1 / 1, 1997y / 7 / 1, 1999y / 1 / 1, 2006y / 1 / 1, 2009y / 1 / 1,
                               2012y / 7 / 1, 2015y / 7 / 1, 2017y / 1 / 1};

// Takes digits from the front of the text: their count, at most `most`.
std::size_t TakeDigits(std::string_view& text, std::size_t most, int& value) {
    std::size_t count = 0;
    value = 0;
    for (; count < most && count < text.size() && IsDigit(text[count]); ++count)
        value = 10 * value + (text[count] - '0');
    text.remove_prefix(count);
    return count;
}

bool TakeAny(std::string_view& text, std::string_view characters) {
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) return false;
    text.remove_prefix(1);
    return true;
}

// A fraction of a second, rounded to a tick, when there is one; false for other text.
bool TakeFraction(std::string_view& text, Ticks& ticks) {
    ticks = 0;
    if (!TakeAny(text, ".,")) return true;
    std::int64_t unit = kTicksPerSecond;
    std::size_t used = 0;
    for (; used < text.size() && IsDigit(text[used]); ++used) {
        const int digit = text[used] - '0';
        if (unit >= 10)
            ticks += digit * (unit /= 10);
        else if (unit == 1 && digit >= 5)
            ++ticks, unit = 0;
        else
            unit = 0;
    }
    text.remove_prefix(used);
    return true;
}

std::optional<Ticks> MakeTime(int hour, int minute, int second, Ticks fraction) {
    if (hour > 24 || minute > 59 || second > 60) return std::nullopt;
    const Ticks ticks = (hour * 3600 + minute * 60 + second) * kTicksPerSecond + fraction;
    if (ticks > kTicksPerDay + kTicksPerSecond) return std::nullopt;
    return ticks;
}

std::optional<Ticks> TakeDay(std::string_view& text, EDayOrder order) {
    int parts[3];
    std::size_t digits[3];
    for (int i = 0; i < 3; ++i) {
        if (i > 0 && !TakeAny(text, "-/.")) return std::nullopt;
        digits[i] = TakeDigits(text, 4, parts[i]);
        if (digits[i] == 0) return std::nullopt;
    }
    std::optional<std::int64_t> day;
    if (digits[0] == 4 && digits[1] <= 2 && digits[2] <= 2)
        day = MakeDay(parts[0], parts[1], parts[2]);
    else if (digits[2] == 4 && digits[0] <= 2 && digits[1] <= 2)
        day = order == EDayOrder::dayFirst ? MakeDay(parts[2], parts[1], parts[0])
                                           : MakeDay(parts[2], parts[0], parts[1]);
    if (!day) return std::nullopt;
    return *day * kTicksPerDay;
}

} // namespace

std::optional<std::int64_t> MakeDay(int year, int month, int day) {
    if (year < 1970 || year > 2199 || month < 1 || month > 12 || day < 1 || day > 31) return std::nullopt;
    const year_month_day date{std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                              std::chrono::day(static_cast<unsigned>(day))};
    if (!date.ok()) return std::nullopt;
    return (sys_days(date) - kFirstDay).count();
}

std::optional<Ticks> MakeGpsTime(std::int64_t week, Ticks timeOfWeek) {
    if (week < 0 || week > 11000 || timeOfWeek < 0 || timeOfWeek > 7 * kTicksPerDay) return std::nullopt;
    return (kGpsFirstDay + 7 * week) * kTicksPerDay + timeOfWeek;
}

int GetLeapSeconds(Ticks gpsTime) {
    // In GPS time: UTC of the step plus the leap seconds inserted before it.
    static constexpr auto kSteps = [] {
        std::array<Ticks, kLeapDays.size()> steps{};
        for (std::size_t i = 0; i < steps.size(); ++i)
            steps[i] = (sys_days(kLeapDays[i]) - kFirstDay).count() * kTicksPerDay +
                       static_cast<Ticks>(i + 1) * kTicksPerSecond;
        return steps;
    }();
    return static_cast<int>(std::ranges::upper_bound(kSteps, gpsTime) - kSteps.begin());
}

std::optional<Ticks> ParseCompactTime(std::string_view text) {
    int hour, minute, second;
    Ticks fraction;
    if (TakeDigits(text, 2, hour) != 2 || TakeDigits(text, 2, minute) != 2 ||
        TakeDigits(text, 2, second) != 2 || !TakeFraction(text, fraction) || !text.empty())
        return std::nullopt;
    return MakeTime(hour, minute, second, fraction);
}

std::optional<Ticks> ParseTime(std::string_view text) {
    int hour, minute, second = 0;
    Ticks fraction = 0;
    if (TakeDigits(text, 2, hour) == 0 || !TakeAny(text, ":") || TakeDigits(text, 2, minute) == 0)
        return std::nullopt;
    if (!text.empty() && (!TakeAny(text, ":") || TakeDigits(text, 2, second) == 0 ||
                          !TakeFraction(text, fraction) || !text.empty()))
        return std::nullopt;
    return MakeTime(hour, minute, second, fraction);
}

std::optional<Ticks> ParseDay(std::string_view text, EDayOrder order) {
    const auto day = TakeDay(text, order);
    return text.empty() ? day : std::nullopt;
}

std::optional<Ticks> ParseDate(std::string_view text, EDayOrder order) {
    text = Trim(text);
    const auto day = TakeDay(text, order);
    if (!day || text.empty()) return day;
    if (!TakeAny(text, "T \t")) return std::nullopt;
    text = Trim(text);
    if (text.ends_with('Z')) text.remove_suffix(1);
    const auto time = ParseTime(text);
    if (!time) return std::nullopt;
    return *day + *time;
}

} // namespace Conversion
