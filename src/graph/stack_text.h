// The graphs in words, for those who cannot see them, for pages and for pictures. UI thread.
#pragma once

#include "graph/stack.h"

#include <string>

namespace Presentation_Tarvel_Graphics {

// Each shown graph with its curves, the displayed time, and the values at the cursor.
std::string DescribeStack(const CTrv1DGraphStack& stack, const CViewState& viewState);
// The values at the first cursor, one row a curve: graph, curve, value, tab separated; without a cursor, the
// curves alone.
std::string WriteValues(const CTrv1DGraphStack& stack, const CViewState& viewState);

} // namespace Presentation_Tarvel_Graphics
