#include "foundation/numbers.h"

#include "foundation/text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace Outils_Texte {

namespace {

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// True if `text` starts with "0x" and a hexadecimal number; a bare "0x" is the number 0 and a letter.
bool StartsHexadecimal(std::string_view text, bool pointAllowed) {
    if (text.size() < 3 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) return false;
    return IsHexDigit(text[2]) || (pointAllowed && text[2] == '.' && text.size() > 3 && IsHexDigit(text[3]));
}

// Steps over blanks, tabs and one sign.
std::size_t SkipToNumber(std::string_view text, bool& negative) {
    std::size_t position = std::min(text.find_first_not_of(" \t"), text.size());
    negative = position < text.size() && text[position] == '-';
    if (negative || (position < text.size() && text[position] == '+')) ++position;
    return position;
}

// For a number without sign that no double holds: is it too large, or too near to zero? The magnitude is
// counted in digits, which is exact enough this far from 1.
bool IsTooLarge(std::string_view number, bool hexadecimal) {
    long magnitude = 0;
    bool significant = false;
    bool afterPoint = false;
    std::size_t i = 0;
    for (; i < number.size(); ++i) {
        const char c = number[i];
        if (c == '.') {
            afterPoint = true;
            continue;
        }
        if (hexadecimal ? !IsHexDigit(c) : !(c >= '0' && c <= '9')) break;
        significant = significant || c != '0';
        if (significant && !afterPoint) ++magnitude;
        if (!significant && afterPoint) --magnitude;
    }
    if (hexadecimal) magnitude *= 4;
    if (i + 1 < number.size()) { // at the exponent's letter
        std::string_view text = number.substr(i + 1);
        if (text.front() == '+') text.remove_prefix(1);
        long exponent = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec ==
            std::errc::result_out_of_range)
            return text.front() != '-';
        constexpr long limit = std::numeric_limits<long>::max() / 2;
        magnitude += std::clamp(exponent, -limit, limit);
    }
    return magnitude > 0;
}

struct SInteger {
    std::uint64_t magnitude; // clipped to the ends of the type
    bool negative;
};

// The whole text as an integer of one sign and digits.
std::optional<SInteger> ParseInteger(std::string_view text, int base) {
    SInteger integer{0, false};
    text = TrimBlanks(text);
    text.remove_prefix(SkipToNumber(text, integer.negative));
    if (base == 16 && StartsHexadecimal(text, false)) text.remove_prefix(2);
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), integer.magnitude, base);
    if (error == std::errc::invalid_argument || end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range)
        integer.magnitude = std::numeric_limits<std::uint64_t>::max();
    return integer;
}

} // namespace

std::optional<SNumberPrefix> ParseDoublePrefix(std::string_view text) {
    bool negative = false;
    const std::size_t start = SkipToNumber(text, negative);
    std::string_view number = text.substr(start);
    // The conversion would take a minus sign of its own.
    if (number.empty() || number.front() == '-') return std::nullopt;
    const char noted = number.front();
    const bool hexadecimal = StartsHexadecimal(number, true);
    if (hexadecimal) number.remove_prefix(2);

    double value = 0.0;
    const auto [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), value,
                        hexadecimal ? std::chars_format::hex : std::chars_format::general);
    if (error == std::errc::invalid_argument) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        const std::string_view used = number.substr(0, static_cast<std::size_t>(end - number.data()));
        value = IsTooLarge(used, hexadecimal) ? std::numeric_limits<double>::infinity() : 0.0;
    }
    if (value == 0.0 && noted != '0') return std::nullopt;
    return SNumberPrefix{negative ? -value : value, static_cast<std::size_t>(end - text.data())};
}

std::optional<double> ParseDouble(std::string_view text) {
    const auto prefix = ParseDoublePrefix(text);
    if (!prefix || !TrimBlanks(text.substr(prefix->used)).empty()) return std::nullopt;
    return prefix->value;
}

std::optional<std::int32_t> ParseInt(std::string_view text) {
    const auto integer = ParseInteger(text, 10);
    if (!integer) return std::nullopt;
    constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t magnitude = std::min(integer->magnitude, integer->negative ? largest + 1 : largest);
    const auto value = static_cast<std::int64_t>(magnitude);
    return static_cast<std::int32_t>(integer->negative ? -value : value);
}

std::optional<std::uint32_t> ParseUInt(std::string_view text, int base) {
    const auto integer = ParseInteger(text, base);
    if (!integer) return std::nullopt;
    constexpr std::uint64_t largest = std::numeric_limits<std::uint32_t>::max();
    if (integer->magnitude > largest) return static_cast<std::uint32_t>(largest);
    const auto value = static_cast<std::uint32_t>(integer->magnitude);
    return integer->negative ? 0u - value : value;
}

std::string FormatFixed(double value, int precision) {
    char text[400]; // sign, 309 digits, point and 40 decimals
    const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed,
                                      std::clamp(precision, 0, 40));
    return std::string(text, result.ptr);
}

std::string FormatShortest(double value) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

} // namespace Outils_Texte
