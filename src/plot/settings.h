// What all plots of the process share. The application makes one and hands it to every plot; GUI thread.
#pragma once

#include "plot/graphics.h"

#include <array>
#include <cstdint>

namespace Outils_Plot2D {

inline constexpr std::array<Colour, 11> kCurvePalette = {
    0xFF4682B4, 0xFFB22222, 0xFF6B8E23, 0xFF800080, 0xFF4169E1, 0xFFFF8C00,
    0xFF6495ED, 0xFFCD5C5C, 0xFF2E8B57, 0xFF90EE90, 0xFFBA55D3,
};

struct CPlot2DSettings {
    // Joins the points of curves by splines instead of straight lines.
    bool drawCurve = false;
    // The alpha of the band between the extrema: 0 invisible, 255 opaque. Taken when a curve gets its colour.
    std::uint8_t extremumTransparency = 200;
    // The place in the palette of the next curve made, in whatever plot; it only ever moves on.
    std::uint16_t nextColour = 0;

    Colour TakeColour() {
        const Colour colour = kCurvePalette[nextColour % kCurvePalette.size()];
        nextColour = static_cast<std::uint16_t>((nextColour + 1) % kCurvePalette.size());
        return colour;
    }
};

} // namespace Outils_Plot2D
