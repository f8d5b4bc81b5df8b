// A colour as rows of a grid show it: "#AARRGGBB".
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Dialogue_Tarvel {

inline std::string FormatColor(std::uint32_t argb) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "#";
    for (int shift = 28; shift >= 0; shift -= 4) text += kDigits[argb >> shift & 0xF];
    return text;
}

// Empty for any other text.
inline std::optional<std::uint32_t> ParseColor(std::string_view text) {
    std::uint32_t argb = 0;
    if (text.size() != 9 || text[0] != '#') return std::nullopt;
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + text.size(), argb, 16);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(argb) : std::nullopt;
}

} // namespace Dialogue_Tarvel
