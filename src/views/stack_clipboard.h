// The picture of a stack of graphs on the clipboard. UI thread.
#pragma once

#include "graph/stack.h"

namespace Application_Tarvel {

// Puts a vector image of the whole stack, `width` pixels wide, on the clipboard, and a picture for programs
// that take no vector image. Does nothing for a stack without size.
void CopyToClipboard(const Presentation_Tarvel_Graphics::CTrv1DGraphStack& stack, int width);

} // namespace Application_Tarvel
