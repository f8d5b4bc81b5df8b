#include "values/date_time_span_adaptor.h"

#include "foundation/serialize.h"
#include "foundation/text.h"
#include "foundation/texts.h"
#include "values/characters.h"
#include "values/units.h"

#include <array>
#include <optional>

namespace Outils_Valeurs {

using Outils_Texte::EText;

namespace {

using Outils_Temps::kTicksPerDay;
using Outils_Temps::kTicksPerHour;
using Outils_Temps::kTicksPerMinute;
using Outils_Temps::kTicksPerSecond;

constexpr EText kInvalidSpanText = EText::invalidSpan;

// "d hh:mm:ss.fff" or "hh:mm:ss.fff", without a sign.
std::optional<CDateTimeSpan> ReadSpan(CTextScanner& scanner, const CDateTimeSpanAdaptor& adaptor) {
    constexpr int digits = 12; // more than the range of a span has
    auto first = scanner.Number(digits);
    if (!first) return std::nullopt;
    std::int64_t days = 0;
    std::array<std::int64_t, 3> time{*first, 0, 0};
    // Hours follow a blank only if the blank is not the sign between hours and minutes: then three numbers
    // remain to be read.
    CTextScanner afterDays = scanner;
    if (afterDays.SkipBlanks()) {
        const auto hours = afterDays.Number(2);
        CTextScanner probe = afterDays;
        const bool withDays = hours && probe.Skip(adaptor.hourSeparator) && probe.Number(2) &&
                              probe.Skip(adaptor.hourSeparator) && probe.Number(2);
        if (withDays) {
            if (*hours >= 24) return std::nullopt;
            days = *first;
            time[0] = *hours;
            scanner = afterDays;
        }
    }
    for (std::size_t i = 1; i < 3; ++i) {
        if (!scanner.Skip(adaptor.hourSeparator)) return std::nullopt;
        const auto number = scanner.Number(2);
        if (!number || *number >= 60) return std::nullopt;
        time[i] = *number;
    }
    const auto fraction = scanner.Fraction(adaptor.decimalSeparator);
    if (!fraction) return std::nullopt;
    CDateTimeSpan span;
    span.SetDuration(days, time[0], time[1], time[2], *fraction);
    return span.IsValid() ? std::optional(span) : std::nullopt;
}

} // namespace

CDateTimeSpanAdaptor::CDateTimeSpanAdaptor() {
    for (const SUnitRow& row : Units::kSpan) total.AddUnit(row.A, row.B, 0.0, row.name, row.symbol);
}

bool CDateTimeSpanAdaptor::ValueToText(CDateTimeSpan value, std::string& text) const {
    if (!value.IsValid()) {
        text = Outils_Texte::GetText(kInvalidSpanText);
        return false;
    }
    if (notation == ESpanNotation::totalElapsedTime) return total.ValueToText(value.GetTotalSeconds(), text);

    const bool negative = value.GetTicks() < 0;
    const auto bits = static_cast<std::uint64_t>(value.GetTicks());
    const int decimals = SecondsPrecision(precision);
    const std::uint64_t ticks = RoundTicks(negative ? 0 - bits : bits, decimals);
    text.clear();
    if (negative && ticks > 0) text += '-';
    if (const std::uint64_t days = ticks / kTicksPerDay; days > 0) {
        text += std::to_string(days);
        text += ' ';
    }
    text += ZeroFilled(ticks / kTicksPerHour % 24, 2);
    AppendCharacter(text, hourSeparator);
    text += ZeroFilled(ticks / kTicksPerMinute % 60, 2);
    AppendCharacter(text, hourSeparator);
    text += ZeroFilled(ticks / kTicksPerSecond % 60, 2);
    AppendFraction(text, ticks, decimals, decimalSeparator);
    return true;
}

bool CDateTimeSpanAdaptor::TextToValue(std::string_view text, CDateTimeSpan& value) const {
    if (notation == ESpanNotation::totalElapsedTime) {
        double seconds = 0.0;
        if (!total.TextToValue(text, seconds)) return false;
        const CDateTimeSpan span = CDateTimeSpan::FromSeconds(seconds);
        if (span.IsValid()) value = span;
        return span.IsValid();
    }
    CTextScanner scanner(Outils_Texte::TrimBlanks(text));
    const bool negative = scanner.Skip(u'-');
    if (!negative) scanner.Skip(u'+');
    const auto span = ReadSpan(scanner, *this);
    if (!span || !scanner.AtEnd()) return false;
    value = negative ? CDateTimeSpan(-span->GetTicks()) : *span;
    return true;
}

void CDateTimeSpanAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::SerializeUnchanged<CObjetMetier>(archive, *this, notation, precision, hourSeparator,
                                                    decimalSeparator, total);
}

} // namespace Outils_Valeurs
