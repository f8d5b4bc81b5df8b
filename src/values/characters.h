// What the adaptors share: single characters and plain decimals in text, and a reader of typed text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Outils_Valeurs {

// UTF-8 of one UTF-16 unit.
std::string CharacterToText(char16_t character);
void AppendCharacter(std::string& text, char16_t character);

// `value` with `precision` decimals after `separator`; precision below zero counts as 6, as in the C
// library.
std::string FormatDecimal(double value, std::int32_t precision, char16_t separator = u'.');
// `text` with zeros in front up to `width` characters.
std::string ZeroFilled(std::string text, std::size_t width);
// A whole number in the same way.
std::string ZeroFilled(std::uint64_t value, std::size_t width);

// The decimals of seconds: at most 7, as a tick is 100 nanoseconds.
int SecondsPrecision(std::int32_t precision);
// Ticks rounded half up to `precision` decimals of a second.
std::uint64_t RoundTicks(std::uint64_t ticks, int precision);
// The fraction of ticks that RoundTicks has rounded: a separator and `precision` digits, or nothing for none.
void AppendFraction(std::string& text, std::uint64_t ticks, int precision, char16_t separator);

// Reads typed text from its start. A read that finds something else moves nothing.
class CTextScanner {
  public:
    explicit CTextScanner(std::string_view text) : m_text(text) {}

    bool AtEnd() const { return m_text.empty(); }
    std::string_view GetRest() const { return m_text; }
    // True if there was at least one.
    bool SkipBlanks();
    bool Skip(char16_t character);
    // The run of digits here; empty for none.
    std::string_view Digits();
    // A whole number of at most `digits` digits (up to 18).
    std::optional<std::int64_t> Number(int digits);
    // What a decimal separator and digits say in ticks of a ten millionth, rounded half up; 0 when there is
    // no separator. Empty for a separator without digits.
    std::optional<std::int64_t> Fraction(char16_t separator);

  private:
    std::string_view m_text;
};

} // namespace Outils_Valeurs
