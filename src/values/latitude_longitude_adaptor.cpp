#include "values/latitude_longitude_adaptor.h"

#include "foundation/serialize.h"
#include "foundation/text.h"
#include "values/angle_reader.h"
#include "values/characters.h"

#include <cmath>

namespace Outils_Valeurs {

namespace {

// A magnitude in parts; degrees are whole but may exceed any integer type.
struct SParts {
    double degrees;
    double minutes;
};

SParts Split(double magnitude) {
    SParts parts{std::floor(magnitude), 0.0};
    parts.minutes = (magnitude - parts.degrees) * 60.0;
    while (parts.minutes >= 60.0) { // a fraction next to 1 rounds up in the product
        parts.minutes -= 60.0;
        parts.degrees += 1.0;
    }
    return parts;
}

// Minutes or seconds with two digits before the separator. A text of 60, which rounding gives, becomes 00,
// and `carry` grows by one.
std::string FormatSixtieth(double value, std::int32_t precision, char16_t separator, double& carry) {
    std::string text = FormatDecimal(value, precision, separator);
    if (text.starts_with("60")) {
        text[0] = '0';
        carry += 1.0;
    }
    // By the text, not by the value: 9.9996 may read 10.000.
    if (text.size() == 1 || text[1] < '0' || text[1] > '9') text.insert(0, 1, '0');
    return text;
}

std::string FormatDegrees(double degrees, bool isLatitude) {
    return ZeroFilled(FormatDecimal(degrees, 0), isLatitude ? 2 : 3);
}

// The sign that a character gives to its number: 1, -1, or 0 for no sign.
int SignOf(char character) {
    switch (character) {
    case '+':
    case 'N':
    case 'n':
    case 'E':
    case 'e': return 1;
    case '-':
    case 'S':
    case 's':
    case 'W':
    case 'w': return -1;
    default: return 0;
    }
}

bool IsOfOtherAxis(char character, bool isLatitude) {
    return std::string_view(isLatitude ? "EeWw" : "NnSs").find(character) != std::string_view::npos;
}

} // namespace

bool CLatitudeLongitudeAdaptor::ValueToText(double value, std::string& text) const {
    if (!std::isfinite(value)) return CNumericValueAdaptor::ValueToText(value, text);
    const bool negative = value < 0.0;
    const double magnitude = std::fabs(value);
    SParts parts = Split(magnitude);
    switch (notation) {
    case EAngleNotation::degrees: CNumericValueAdaptor::ValueToText(magnitude, text); break;
    case EAngleNotation::nmea: {
        const std::string minutes = FormatSixtieth(parts.minutes, precision, u'.', parts.degrees);
        text = FormatDegrees(parts.degrees, isLatitude) + minutes + ',';
        break;
    }
    case EAngleNotation::degreesMinutesSeconds: {
        double minutes = std::floor(parts.minutes);
        const std::string seconds =
            FormatSixtieth((parts.minutes - minutes) * 60.0, precision, decimalSeparator, minutes);
        const std::string minutesText = FormatSixtieth(minutes, 0, decimalSeparator, parts.degrees);
        text = FormatDegrees(parts.degrees, isLatitude);
        AppendCharacter(text, degreesSeparator);
        text += minutesText;
        AppendCharacter(text, minutesSeparator);
        text += seconds;
        break;
    }
    default: {
        const std::string minutes = FormatSixtieth(parts.minutes, precision, decimalSeparator, parts.degrees);
        text = FormatDegrees(parts.degrees, isLatitude);
        AppendCharacter(text, degreesSeparator);
        text += minutes;
    }
    }
    const bool nmea = notation == EAngleNotation::nmea;
    if (!hideSeparators && !nmea)
        AppendCharacter(text, notation == EAngleNotation::degrees                 ? degreesSeparator
                              : notation == EAngleNotation::degreesMinutesSeconds ? secondsSeparator
                                                                                  : minutesSeparator);
    if (useMathematicalSign) {
        if (negative) text.insert(0, 1, '-');
        return true;
    }
    if (hideSeparators && !nmea) text += ' ';
    text += isLatitude ? (negative ? 'S' : 'N') : (negative ? 'W' : 'E');
    return true;
}

bool CLatitudeLongitudeAdaptor::TextToValue(std::string_view text, double& value,
                                            std::string_view* rest) const {
    text = Outils_Texte::TrimBlanks(text);
    if (text.empty()) return false;
    int sign = SignOf(text.front());
    if (sign != 0) {
        if (IsOfOtherAxis(text.front(), isLatitude)) return false;
        text.remove_prefix(1);
    } else if (text.back() != '+' && text.back() != '-' && SignOf(text.back()) != 0) {
        if (IsOfOtherAxis(text.back(), isLatitude)) return false;
        sign = SignOf(text.back());
        text.remove_suffix(1);
    }
    const auto magnitude = ReadAngle(Outils_Texte::TrimBlanks(text), *this);
    if (!magnitude) return false;
    value = sign < 0 ? -*magnitude : *magnitude;
    if (rest) *rest = {};
    return true;
}

void CLatitudeLongitudeAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 3, 3);
    CNumericValueAdaptor::Serialize(archive);
    schema.Field(isLatitude);
    schema.Field(notation);
    schema.Field(useMathematicalSign);
    schema.Field(hideSeparators);
    schema.Field(degreesSeparator);
    schema.Field(minutesSeparator);
    schema.Field(secondsSeparator);
}

} // namespace Outils_Valeurs
