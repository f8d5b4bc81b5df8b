// What all plots of the process share. The application makes one and hands it to every plot; GUI thread.
#pragma once

#include "foundation/curve_palette.h"
#include "plot/graphics.h"

#include <cstdint>

namespace Outils_Plot2D {

using Outils::kCurvePalette;

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
