// The colours that new curves take in turn, where they are drawn and where they are saved.
#pragma once

#include <array>
#include <cstdint>

namespace Outils {

// ARGB.
inline constexpr std::array<std::uint32_t, 11> kCurvePalette = {
    0xFF4682B4, 0xFFB22222, 0xFF6B8E23, 0xFF800080, 0xFF4169E1, 0xFFFF8C00,
    0xFF6495ED, 0xFFCD5C5C, 0xFF2E8B57, 0xFF90EE90, 0xFFBA55D3,
};

} // namespace Outils
