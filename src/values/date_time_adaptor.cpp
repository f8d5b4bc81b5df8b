#include "values/date_time_adaptor.h"

#include "foundation/serialize.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "values/characters.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Outils_Valeurs {

using Outils_Texte::EText;

namespace {

using Outils_Temps::CalendarFields;
using Outils_Temps::CDateTimeSpan;
using Outils_Temps::kTicksPerDay;
using Outils_Temps::kTicksPerHour;
using Outils_Temps::kTicksPerMinute;
using Outils_Temps::kTicksPerSecond;

constexpr EText kInvalidDateText = EText::invalidDate;
constexpr std::int64_t kTicksPerWeek = 7 * kTicksPerDay;
constexpr std::uint64_t kUnixEpoch = 134774ULL * kTicksPerDay;   // 1970-01-01
constexpr std::uint64_t kFirstSunday = 138431ULL * kTicksPerDay; // 1980-01-06

// The places of year, month and day in a calendar notation.
struct SOrder {
    int year, month, day;
};
constexpr SOrder OrderOf(EDateNotation notation) {
    switch (notation) {
    case EDateNotation::monthDayYear: return {2, 0, 1};
    case EDateNotation::yearMonthDay: return {0, 1, 2};
    default: return {2, 1, 0};
    }
}

std::uint64_t TicksOfDay(const CDateTime& date) { return date.GetTicks() % kTicksPerDay; }

// Signed seconds with `precision` decimals after a point.
std::string FormatSeconds(bool negative, std::uint64_t ticks, int precision) {
    ticks = RoundTicks(ticks, precision);
    std::string text;
    if (negative && ticks > 0) text += '-';
    text += std::to_string(ticks / kTicksPerSecond);
    AppendFraction(text, ticks, precision, u'.');
    return text;
}

// Digits and a fraction as ticks, as far as ticks go. Twelve digits of seconds are more than any date has.
std::optional<std::int64_t> ReadSeconds(CTextScanner& scanner) {
    constexpr std::int64_t kMost = INT64_MAX / kTicksPerSecond - 1; // the fraction may round to a second
    const auto seconds = scanner.Number(12);
    const auto fraction = scanner.Fraction(u'.');
    if (!seconds || *seconds > kMost || !fraction) return std::nullopt;
    return *seconds * kTicksPerSecond + *fraction;
}

std::optional<CDateTime> MakeDate(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                                  std::int64_t minute, std::int64_t second, std::int64_t ticks) {
    CDateTime date;
    const auto narrow = [](std::int64_t number) { return static_cast<std::uint16_t>(number); };
    if (year > 65535) return std::nullopt;
    date.SetDateTime(narrow(year), narrow(month), narrow(day), narrow(hour), narrow(minute), narrow(second),
                     ticks);
    return date.IsValid() ? std::optional(date) : std::nullopt;
}

std::optional<CDateTime> ReadCalendar(CTextScanner& scanner, const CDateTimeAdaptor& adaptor) {
    const SOrder order = OrderOf(adaptor.notation);
    std::array<std::int64_t, 3> date{};
    for (int i = 0; i < 3; ++i) {
        if (i > 0 && !scanner.Skip(adaptor.dateSeparator)) return std::nullopt;
        const auto number = scanner.Number(i == order.year ? 5 : 2);
        if (!number) return std::nullopt;
        date[static_cast<std::size_t>(i)] = *number;
    }
    std::array<std::int64_t, 3> time{};
    std::int64_t ticks = 0;
    if (adaptor.showTime) {
        if (!scanner.Skip(adaptor.timeSeparator)) return std::nullopt;
        scanner.SkipBlanks();
        for (std::size_t i = 0; i < 3; ++i) {
            if (i > 0 && !scanner.Skip(adaptor.hourSeparator)) return std::nullopt;
            const auto number = scanner.Number(2);
            if (!number) return std::nullopt;
            time[i] = *number;
        }
        const auto fraction = scanner.Fraction(adaptor.decimalSeparator);
        if (!fraction) return std::nullopt;
        ticks = *fraction;
    }
    const auto at = [&](int place) { return date[static_cast<std::size_t>(place)]; };
    return MakeDate(at(order.year), at(order.month), at(order.day), time[0], time[1], time[2], ticks);
}

std::optional<CDateTime> ReadCompact(CTextScanner& scanner) {
    const std::string_view digits = scanner.Digits();
    if (digits.size() != 12) return std::nullopt;
    std::array<std::int64_t, 6> fields{};
    for (std::size_t i = 0; i < 6; ++i) fields[i] = (digits[2 * i] - '0') * 10 + (digits[2 * i + 1] - '0');
    const std::int64_t year = fields[0] + (fields[0] >= 69 ? 1900 : 2000);
    return MakeDate(year, fields[1], fields[2], fields[3], fields[4], fields[5], 0);
}

std::optional<CDateTime> ReadUnixTime(CTextScanner& scanner) {
    const bool negative = scanner.Skip(u'-');
    const auto ticks = ReadSeconds(scanner);
    if (!ticks) return std::nullopt;
    const CDateTime date = CDateTime(kUnixEpoch) + CDateTimeSpan(negative ? -*ticks : *ticks);
    return date.IsValid() ? std::optional(date) : std::nullopt;
}

// Seconds within a period of time that begins again at `origin` and every `period` ticks before and after.
// The end of the period is taken too: the last instants of it round to that.
std::optional<CDateTime> ReadWithin(CTextScanner& scanner, const CDateTime& reference, std::int64_t period) {
    const auto ticks = ReadSeconds(scanner);
    if (!ticks || *ticks > period) return std::nullopt;
    CDateTime start(kFirstSunday);
    if (reference.IsValid()) {
        // The epoch of dates was a Monday: a week begins one day before it.
        const std::uint64_t shift = period == kTicksPerWeek ? kTicksPerDay : 0;
        const std::uint64_t elapsed = (reference.GetTicks() + shift) % static_cast<std::uint64_t>(period);
        start = reference - CDateTimeSpan(static_cast<std::int64_t>(elapsed));
    }
    const CDateTime date = start + CDateTimeSpan(*ticks);
    return date.IsValid() ? std::optional(date) : std::nullopt;
}

} // namespace

bool CDateTimeAdaptor::ValueToText(const CDateTime& value, std::string& text) const {
    CalendarFields fields;
    if (!value.GetCalendar(fields)) {
        text = Outils_Texte::GetText(kInvalidDateText);
        return false;
    }
    const int decimals = SecondsPrecision(precision);
    switch (notation) {
    case EDateNotation::unixTime: {
        const bool negative = value.GetTicks() < kUnixEpoch;
        text = FormatSeconds(
            negative, negative ? kUnixEpoch - value.GetTicks() : value.GetTicks() - kUnixEpoch, decimals);
        return true;
    }
    case EDateNotation::compact:
        text.clear();
        for (const int field :
             {fields.year % 100, fields.month, fields.day, fields.hour, fields.minute, fields.second})
            text += ZeroFilled(static_cast<std::uint64_t>(field), 2);
        return true;
    case EDateNotation::secondsOfDay: text = FormatSeconds(false, TicksOfDay(value), decimals); return true;
    case EDateNotation::secondsOfWeek: {
        const std::uint64_t days = static_cast<std::uint64_t>(fields.dayOfWeek) * kTicksPerDay;
        text = FormatSeconds(false, days + TicksOfDay(value), decimals);
        return true;
    }
    default: break;
    }
    // A rounded second may carry over into the next year.
    std::uint64_t ticks = value.GetTicks();
    if (showTime) ticks = RoundTicks(ticks, decimals);
    if (!CDateTime(ticks).GetCalendar(fields)) {
        text = Outils_Texte::GetText(kInvalidDateText);
        return false;
    }
    const SOrder order = OrderOf(notation);
    text.clear();
    for (int i = 0; i < 3; ++i) {
        if (i > 0) AppendCharacter(text, dateSeparator);
        const bool isYear = i == order.year;
        const int field = isYear ? fields.year : i == order.month ? fields.month : fields.day;
        text += ZeroFilled(static_cast<std::uint64_t>(field), isYear ? 4 : 2);
    }
    if (!showTime) return true;
    AppendCharacter(text, timeSeparator);
    text += ZeroFilled(static_cast<std::uint64_t>(fields.hour), 2);
    for (const int field : {fields.minute, fields.second}) {
        AppendCharacter(text, hourSeparator);
        text += ZeroFilled(static_cast<std::uint64_t>(field), 2);
    }
    AppendFraction(text, ticks, decimals, decimalSeparator);
    return true;
}

bool CDateTimeAdaptor::TextToValue(std::string_view text, CDateTime& value) const {
    CTextScanner scanner(Outils_Texte::TrimBlanks(text));
    std::optional<CDateTime> date;
    switch (notation) {
    case EDateNotation::unixTime: date = ReadUnixTime(scanner); break;
    case EDateNotation::compact: date = ReadCompact(scanner); break;
    case EDateNotation::secondsOfDay: date = ReadWithin(scanner, value, kTicksPerDay); break;
    case EDateNotation::secondsOfWeek: date = ReadWithin(scanner, value, kTicksPerWeek); break;
    default: date = ReadCalendar(scanner, *this);
    }
    if (!date || !scanner.AtEnd()) return false;
    value = *date;
    return true;
}

void CDateTimeAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 4, 4);
    CObjetMetier::Serialize(archive);
    schema.Field(notation);
    schema.Field(showTime);
    schema.Field(precision);
    schema.Field(dateSeparator);
    schema.Field(hourSeparator);
    schema.Field(decimalSeparator);
}

} // namespace Outils_Valeurs
