// The colours of graphs on light and on dark ground. The surface that is drawn on says which: the screen
// follows the palette of the desktop, pictures and pages are light. Constants; any thread.
#pragma once

#include <cstdint>

namespace Outils_Plot2D {

using Colour = std::uint32_t; // 0xAARRGGBB

struct STheme {
    bool dark;
    Colour around; // between and beside the graphs
    Colour ground;
    Colour titleGround;
    Colour selectedFrom, selectedTo; // gradient of a selected title
    Colour hoveredFrom, hoveredTo;   // of a row of a legend under the mouse
    Colour pickedFrom, pickedTo;     // of a picked row of a legend
    Colour text;
    Colour frame, frameSelected;
    Colour grid;
    Colour axis;
    Colour notice; // what a graph without data says

    // A colour of a curve, made light enough to be seen on a dark ground; hue and alpha stay.
    Colour OnGround(Colour colour) const;
    // The same half way to the ground, for what is provisional; opaque.
    Colour Pale(Colour colour) const;
};

inline constexpr STheme kLightTheme = {
    .dark = false,
    .around = 0xFFE9EDF3,
    .ground = 0xFFFFFFFF,
    .titleGround = 0xFFF4F6F9,
    .selectedFrom = 0xFFF5FAFF,
    .selectedTo = 0xFFD7EBFF,
    .hoveredFrom = 0xFFF5FAFF,
    .hoveredTo = 0xFFD7EBFF,
    .pickedFrom = 0xFFFAFAFA,
    .pickedTo = 0xFFD2D2D2,
    .text = 0xFF000078,
    .frame = 0xFFC9D1DE,
    .frameSelected = 0xFF99DEFE,
    .grid = 0xFFE7EAF0,
    .axis = 0xFF000078,
    .notice = 0xFF7A8294,
};

inline constexpr STheme kDarkTheme = {
    .dark = true,
    .around = 0xFF15181D,
    .ground = 0xFF1E2228,
    .titleGround = 0xFF282D35,
    .selectedFrom = 0xFF2F4258,
    .selectedTo = 0xFF263647,
    .hoveredFrom = 0xFF2F4258,
    .hoveredTo = 0xFF263647,
    .pickedFrom = 0xFF4A4F57,
    .pickedTo = 0xFF3B4047,
    .text = 0xFFD5DCE6,
    .frame = 0xFF3C434E,
    .frameSelected = 0xFF4F8DB8,
    .grid = 0xFF2E343D,
    .axis = 0xFF9AA7B8,
    .notice = 0xFF98A2B3,
};

} // namespace Outils_Plot2D
