// The number rules that settings, protocol lines and typed text share. Independent of the process locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Outils_Texte {

// Leading blanks and tabs are skipped, one sign is allowed, trailing blanks and tabs are allowed, and the
// text must end there. A result of exactly zero is accepted only if the character after the optional sign is
// the digit 0, so
// ".0" fails while ".5" is read. Decimal, exponent and hexadecimal forms, "inf" and "nan" are read.
std::optional<double> ParseDouble(std::string_view text);
// Blanks, tabs and sign as above. Out of range clips to the ends of the type; a negative number in range
// becomes its unsigned complement, as in the C conversion. Base 16 takes a "0x" in front.
std::optional<std::int32_t> ParseInt(std::string_view text);
std::optional<std::uint32_t> ParseUInt(std::string_view text, int base = 10);

// The number at the start of `text` after blanks and tabs: the value and the count of characters used, by the
// same zero rule; empty when there is none. What follows is the caller's affair.
struct SNumberPrefix {
    double value;
    std::size_t used;
};
std::optional<SNumberPrefix> ParseDoublePrefix(std::string_view text);

// "%.*f" of the C library, with a decimal point in every locale. Precision 0 to 40.
std::string FormatFixed(double value, int precision);
// The shortest text that reads back to the same bits.
std::string FormatShortest(double value);

} // namespace Outils_Texte
