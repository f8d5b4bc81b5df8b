// How a saved curve looks: its colour and the style of its line, both in the one number that it has for them.
// Nobody sees whether a colour is opaque or lacks the last hundredth of it: these steps of the alpha carry
// the style. Whoever knows nothing of it draws the same colour with a solid line. Any thread.
#pragma once

#include "plot/pens.h"

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::Colour;
using Outils_Plot2D::ELineStyle;

struct SCurveLook {
    Colour colour = 0xFF000000; // opaque where it carries a style
    ELineStyle style = ELineStyle::solid;

    friend bool operator==(const SCurveLook&, const SCurveLook&) = default;
};

SCurveLook ReadLook(Colour saved);
// A colour that is not opaque keeps its alpha, and has a solid line.
Colour WriteLook(const SCurveLook& look);

} // namespace Presentation_Tarvel_Graphics
