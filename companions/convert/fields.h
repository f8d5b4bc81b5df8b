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
    if (text.empty() || text.front() == '+') return std::nullopt;
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
        std::size_t begin = 0;
        // Fields are a few bytes long: a call of a search for each would take longer than the bytes.
        for (std::size_t i = 0; i < text.size() && fields.m_count + 1 < kMost; ++i) {
            if (text[i] != separator) continue;
            fields.Add(text.substr(begin, i - begin));
            begin = i + 1;
        }
        fields.Add(text.substr(begin, text.find(separator, begin) - begin));
        return fields;
    }
    // Words with blanks or tabs between, or also `separator`.
    static CFields SplitWords(std::string_view text, char separator = ' ') {
        CFields fields;
        const auto isGap = [separator](char c) { return c == ' ' || c == '\t' || c == separator; };
        for (std::size_t i = 0; i < text.size() && fields.m_count < kMost;) {
            while (i < text.size() && isGap(text[i])) ++i;
            const std::size_t begin = i;
            while (i < text.size() && !isGap(text[i])) ++i;
            if (i > begin) fields.Add(text.substr(begin, i - begin));
        }
        return fields;
    }

    std::size_t GetCount() const { return m_count; }
    // Empty for a field that the line does not have.
    std::string_view operator[](std::size_t index) const {
        return index < m_count ? std::string_view(m_fields[index].data, m_fields[index].size)
                               : std::string_view();
    }

  private:
    // Not set before it is used: a line has few fields, and setting all of them would take most of the time.
    struct SField {
        const char* data;
        std::size_t size;
    };

    CFields() {} // NOLINT: see above
    void Add(std::string_view field) { m_fields[m_count++] = {field.data(), field.size()}; }

    SField m_fields[kMost];
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
