#include "graph/curve_style.h"

namespace Presentation_Tarvel_Graphics {

namespace {

constexpr Colour kOpaque = 0xFF, kAlphaShift = 24, kColourMask = 0x00FFFFFF;
constexpr Colour kStyles = static_cast<Colour>(ELineStyle::count);

} // namespace

SCurveLook ReadLook(Colour saved) {
    const Colour missing = kOpaque - (saved >> kAlphaShift);
    if (missing >= kStyles) return {saved, ELineStyle::solid};
    return {(saved & kColourMask) | kOpaque << kAlphaShift, static_cast<ELineStyle>(missing)};
}

Colour WriteLook(const SCurveLook& look) {
    if (look.colour >> kAlphaShift != kOpaque) return look.colour;
    return (look.colour & kColourMask) | (kOpaque - static_cast<Colour>(look.style)) << kAlphaShift;
}

} // namespace Presentation_Tarvel_Graphics
