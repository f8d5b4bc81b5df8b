#include "values/angle_reader.h"

#include "foundation/numbers.h"
#include "values/characters.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace Outils_Valeurs {

namespace {

// Degrees, minutes and seconds as texts of plain numbers.
using Fields = std::vector<std::string>;

std::optional<double> Combine(const Fields& fields) {
    if (fields.empty() || fields.size() > 3) return std::nullopt;
    double degrees = 0.0;
    double divisor = 1.0;
    for (const std::string& field : fields) {
        const auto number = Outils_Texte::ParseDouble(field);
        if (!number || !std::isfinite(*number) || (divisor > 1.0 && *number >= 60.0)) return std::nullopt;
        degrees += *number / divisor;
        divisor *= 60.0;
    }
    return degrees;
}

// Digits with an optional fraction, written with a point; empty for none.
std::string ReadDecimal(CTextScanner& scanner, char16_t separator) {
    std::string number(scanner.Digits());
    if (number.empty() || !scanner.Skip(separator)) return number;
    return number + '.' + std::string(scanner.Digits());
}

// DDMM.mmm and DDDMM.mmm: the minutes are the last two digits before the point. Where the comma is what tells
// the form, three digits before it are too few to be sure.
std::optional<Fields> ReadNmea(std::string_view text, bool commaRequired) {
    CTextScanner scanner(text);
    const std::string number = ReadDecimal(scanner, u'.');
    const bool comma = scanner.Skip(u',');
    const std::size_t whole = std::min(number.find('.'), number.size());
    if (!scanner.AtEnd() || (commaRequired && !comma) || whole < (commaRequired ? 4 : 3)) return std::nullopt;
    return Fields{number.substr(0, whole - 2), number.substr(whole - 2)};
}

// What the adaptor itself writes: the only reading that is sure of the user's own separators.
std::optional<Fields> ReadOwnForm(std::string_view text, const CLatitudeLongitudeAdaptor& adaptor) {
    CTextScanner scanner(text);
    Fields fields;
    char16_t closing = adaptor.degreesSeparator;
    const auto readWhole = [&](char16_t separator) {
        fields.emplace_back(scanner.Digits());
        return !fields.back().empty() && scanner.Skip(separator);
    };
    switch (adaptor.notation) {
    case EAngleNotation::nmea: return ReadNmea(text, false);
    case EAngleNotation::degrees: break;
    case EAngleNotation::degreesMinutesSeconds:
        if (!readWhole(adaptor.degreesSeparator) || !readWhole(adaptor.minutesSeparator)) return std::nullopt;
        closing = adaptor.secondsSeparator;
        break;
    default:
        if (!readWhole(adaptor.degreesSeparator)) return std::nullopt;
        closing = adaptor.minutesSeparator;
    }
    fields.push_back(ReadDecimal(scanner, adaptor.decimalSeparator));
    scanner.Skip(closing);
    if (fields.back().empty() || !scanner.AtEnd()) return std::nullopt;
    return fields;
}

// The length of a sign at the start of `text` that can only part two numbers, 0 for none.
std::size_t SeparatorLength(std::string_view text, const CLatitudeLongitudeAdaptor& adaptor) {
    if (std::string_view(" \tDdMm'\"").find(text.front()) != std::string_view::npos) return 1;
    for (const char16_t character :
         {u'°', adaptor.degreesSeparator, adaptor.minutesSeparator, adaptor.secondsSeparator}) {
        const std::string separator = CharacterToText(character);
        if (text.starts_with(separator)) return separator.size();
    }
    return 0;
}

// Cuts a run of digits and points at its points, all of them or all but the last.
void Cut(const std::string& piece, bool keepLast, Fields& fields) {
    const std::size_t last = piece.rfind('.');
    std::size_t start = 0;
    for (std::size_t end; start < piece.size(); start = end + 1) {
        end = std::min(piece.find('.', start), piece.size());
        if (keepLast && end == last) end = piece.size();
        if (end > start) fields.push_back(piece.substr(start, end - start));
    }
}

// Numbers parted by any of the usual signs. A point or comma is a decimal one in the last number only, and
// there when it is the only one or of another kind than those before it; anywhere else it parts numbers too.
std::optional<Fields> ReadNumbers(std::string_view text, const CLatitudeLongitudeAdaptor& adaptor) {
    const std::string ownPoint = CharacterToText(adaptor.decimalSeparator);
    std::vector<std::string> pieces(1); // digits and points
    std::string marks;                  // the points of the last piece as they were typed
    bool parted = false;                // a separator comes before the next number
    while (!text.empty()) {
        const char c = text.front();
        const bool digit = c >= '0' && c <= '9';
        const bool point = c == '.' || c == ',';
        const bool own = !digit && !point && text.starts_with(ownPoint);
        if (digit || point || own) {
            if (parted && !pieces.back().empty()) {
                pieces.emplace_back();
                marks.clear();
            }
            parted = false;
            pieces.back() += digit ? c : '.';
            if (!digit) marks += c;
            text.remove_prefix(own ? ownPoint.size() : 1);
        } else {
            const std::size_t length = SeparatorLength(text, adaptor);
            if (length == 0) return std::nullopt;
            parted = true;
            text.remove_prefix(length);
        }
    }
    Fields fields;
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) Cut(pieces[i], false, fields);
    const bool decimal = !marks.empty() && marks.find(marks.back()) == marks.size() - 1;
    Cut(pieces.back(), decimal, fields);
    return fields;
}

} // namespace

std::optional<double> ReadAngle(std::string_view text, const CLatitudeLongitudeAdaptor& adaptor) {
    auto fields = ReadOwnForm(text, adaptor);
    if (!fields) fields = ReadNmea(text, true);
    if (!fields) fields = ReadNumbers(text, adaptor);
    return fields ? Combine(*fields) : std::nullopt;
}

} // namespace Outils_Valeurs
