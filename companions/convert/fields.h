// Values in lines of text, read where they lie: no copy, no allocation, no locale.
#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

namespace Conversion {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsBlank(char c) { return c == ' ' || c == '\t'; }

constexpr std::string_view Trim(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

// A finite number that takes the whole text, blanks around it and one sign allowed; the fraction follows a
// point. Empty for any other text.
inline std::optional<double> ParseNumber(std::string_view text) {
    text = Trim(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    if (text.empty() || text.front() == '+' || std::isalpha(static_cast<unsigned char>(text.back())))
        return std::nullopt;
    double value;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end.ec != std::errc() || end.ptr != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

// The same, and the fraction may follow a comma. For texts whose separator is not a comma.
inline std::optional<double> ParseNumberOrComma(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return ParseNumber(text);
    std::array<char, 64> copy;
    if (text.size() > copy.size()) return std::nullopt;
    std::memcpy(copy.data(), text.data(), text.size());
    copy[comma] = '.';
    return ParseNumber({copy.data(), text.size()});
}

// A whole number that takes the whole text.
template <class T>
std::optional<T> ParseInteger(std::string_view text, int base = 10) {
    text = Trim(text);
    if (text.starts_with('+')) text.remove_prefix(1);
    T value;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || end.ec != std::errc() || end.ptr != text.data() + text.size()) return std::nullopt;
    return value;
}

// The fields of one line; as long as the line.
class CFields {
  public:
    static constexpr std::size_t kMost = 96;

    // One field more than there are separators. What follows the last of kMost fields is left out.
    static CFields Split(std::string_view text, char separator) {
        CFields fields;
        while (fields.m_count < kMost) {
            const std::size_t end = text.find(separator);
            fields.m_fields[fields.m_count++] = text.substr(0, end);
            if (end == std::string_view::npos) break;
            text.remove_prefix(end + 1);
        }
        return fields;
    }
    // Words with blanks or tabs between.
    static CFields SplitWords(std::string_view text) {
        CFields fields;
        for (std::size_t i = 0; i < text.size() && fields.m_count < kMost;) {
            while (i < text.size() && IsBlank(text[i])) ++i;
            const std::size_t begin = i;
            while (i < text.size() && !IsBlank(text[i])) ++i;
            if (i > begin) fields.m_fields[fields.m_count++] = text.substr(begin, i - begin);
        }
        return fields;
    }

    std::size_t GetCount() const { return m_count; }
    // Empty for a field that the line does not have.
    std::string_view operator[](std::size_t index) const {
        return index < m_count ? m_fields[index] : std::string_view();
    }

  private:
    std::array<std::string_view, kMost> m_fields;
    std::size_t m_count = 0;
};

// "ddmm.mmmm" and the letter of the half, in degrees; `most` is 90 or 180. Empty for any other text.
inline std::optional<double> ParseDegreesMinutes(std::string_view text, std::string_view half, double most) {
    const auto value = ParseNumber(text);
    if (!value || *value < 0 || half.size() != 1) return std::nullopt;
    const std::string_view positive = most == 90 ? "Nn" : "Ee", negative = most == 90 ? "Ss" : "Ww";
    const bool north = positive.find(half.front()) != std::string_view::npos;
    if (!north && negative.find(half.front()) == std::string_view::npos) return std::nullopt;
    const double degrees = std::floor(*value / 100), minutes = *value - 100 * degrees;
    const double angle = degrees + minutes / 60;
    if (minutes >= 60 || angle > most) return std::nullopt;
    return north ? angle : -angle;
}

} // namespace Conversion
