#include "plot/theme.h"

#include <algorithm>

namespace Outils_Plot2D {

namespace {

constexpr unsigned kLeastLight = 120; // of 255, on a dark ground

// As the eye weighs the three, of 255.
unsigned LightOf(unsigned red, unsigned green, unsigned blue) {
    return (red * 54 + green * 183 + blue * 19) / 256;
}

} // namespace

Colour STheme::OnGround(Colour colour) const {
    const unsigned red = colour >> 16 & 0xFF, green = colour >> 8 & 0xFF, blue = colour & 0xFF;
    const unsigned light = LightOf(red, green, blue);
    if (!dark || light >= kLeastLight) return colour;
    // Towards white by as much as is missing.
    const unsigned part = (kLeastLight - light) * 256 / (255 - light);
    const auto mix = [part](unsigned channel) { return channel + (255 - channel) * part / 256; };
    return (colour & 0xFF000000) | mix(red) << 16 | mix(green) << 8 | mix(blue);
}

Colour STheme::Pale(Colour colour) const {
    const Colour shown = OnGround(colour);
    const auto mix = [&](int shift) {
        return ((shown >> shift & 0xFF) + (ground >> shift & 0xFF)) / 2 << shift;
    };
    return 0xFF000000 | mix(16) | mix(8) | mix(0);
}

} // namespace Outils_Plot2D
