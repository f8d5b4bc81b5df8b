// How the plan view is drawn: on the screen, in a picture, on a page. UI thread.
#pragma once

#include "graph/plan.h"

class QPainter;

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CGraphics;
using Outils_Plot2D::Colour;

struct SPlanLook {
    Colour ground = 0xFFFFFFFF;
    Colour text = 0xFF202020;
    Colour grid = 0xFFE0E4EA;
    Colour pale = 0xFFB0B8C4; // of what lies outside the shown period
    Colour cursor = 0xFFFF0000;
};
// The look on a dark window.
SPlanLook MakeDarkLook();

// Draws the plan from the origin of `graphics`, as large as its scale says.
void DrawPlan(const CTrvPlan& plan, CGraphics& graphics, const SPlanLook& look);
// For a picture or a page: the same part of the ground on a white ground, `size` large. One unit is one
// pixel of a screen: scale the painter for paper or a dense picture.
void DrawPlan(const CTrvPlan& plan, QPainter& painter, SSize size);

} // namespace Presentation_Tarvel_Graphics
