#include "values/characters.h"

#include "foundation/date_time.h"
#include "foundation/numbers.h"
#include "foundation/text.h"

#include <algorithm>
#include <charconv>

namespace Outils_Valeurs {

namespace {

constexpr int kTickDigits = 7;

constexpr std::uint64_t PowerOfTen(int exponent) {
    std::uint64_t power = 1;
    for (; exponent > 0; --exponent) power *= 10;
    return power;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

} // namespace

std::string CharacterToText(char16_t character) {
    return Outils_Texte::Utf16ToUtf8(std::u16string_view(&character, 1));
}

void AppendCharacter(std::string& text, char16_t character) {
    if (character < 0x80)
        text += static_cast<char>(character);
    else
        text += CharacterToText(character);
}

std::string FormatDecimal(double value, std::int32_t precision, char16_t separator) {
    std::string text = Outils_Texte::FormatFixed(value, precision < 0 ? 6 : precision);
    if (separator != u'.')
        if (const std::size_t point = text.find('.'); point != std::string::npos)
            text.replace(point, 1, CharacterToText(separator));
    return text;
}

std::string ZeroFilled(std::string text, std::size_t width) {
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    return text;
}

std::string ZeroFilled(std::uint64_t value, std::size_t width) {
    return ZeroFilled(std::to_string(value), width);
}

int SecondsPrecision(std::int32_t precision) { return precision < 0 ? 6 : std::min(precision, kTickDigits); }

std::uint64_t RoundTicks(std::uint64_t ticks, int precision) {
    const std::uint64_t unit = PowerOfTen(kTickDigits - precision);
    return (ticks + unit / 2) / unit * unit;
}

void AppendFraction(std::string& text, std::uint64_t ticks, int precision, char16_t separator) {
    if (precision == 0) return;
    AppendCharacter(text, separator);
    const std::uint64_t fraction = ticks % static_cast<std::uint64_t>(Outils_Temps::kTicksPerSecond);
    text += ZeroFilled(fraction / PowerOfTen(kTickDigits - precision), static_cast<std::size_t>(precision));
}

bool CTextScanner::SkipBlanks() {
    const std::size_t count = std::min(m_text.find_first_not_of(" \t"), m_text.size());
    m_text.remove_prefix(count);
    return count > 0;
}

bool CTextScanner::Skip(char16_t character) {
    const std::string text = CharacterToText(character);
    if (!m_text.starts_with(text)) return false;
    m_text.remove_prefix(text.size());
    return true;
}

std::string_view CTextScanner::Digits() {
    const auto end = std::find_if_not(m_text.begin(), m_text.end(), IsDigit);
    const std::string_view digits = m_text.substr(0, static_cast<std::size_t>(end - m_text.begin()));
    m_text.remove_prefix(digits.size());
    return digits;
}

std::optional<std::int64_t> CTextScanner::Number(int digits) {
    const std::string_view former = m_text;
    const std::string_view run = Digits();
    if (run.empty() || run.size() > static_cast<std::size_t>(digits)) {
        m_text = former;
        return std::nullopt;
    }
    std::int64_t number = 0;
    std::from_chars(run.data(), run.data() + run.size(), number);
    return number;
}

std::optional<std::int64_t> CTextScanner::Fraction(char16_t separator) {
    const std::string_view former = m_text;
    if (!Skip(separator)) return 0;
    const std::string_view digits = Digits();
    if (digits.empty()) {
        m_text = former;
        return std::nullopt;
    }
    std::int64_t ticks = 0;
    for (std::size_t i = 0; i < kTickDigits; ++i)
        ticks = ticks * 10 + (i < digits.size() ? digits[i] - '0' : 0);
    if (digits.size() > kTickDigits && digits[kTickDigits] >= '5') ++ticks;
    return ticks;
}

} // namespace Outils_Valeurs
