// Printed pages: which graphs go on which page and where, computed without a printer, and drawn through a
// transform. The layout on the screen is not touched.
#pragma once

#include "graph/stack.h"

#include <cstddef>
#include <span>
#include <vector>

namespace Presentation_Tarvel_Graphics {

// The device units of a printer; its origin is the corner of the area that it can print.
struct SPageMetrics {
    SSize paper;      // whole sheet
    SPoint offset;    // of the printable area on the sheet
    SSize resolution; // units an inch
};

// Centimetres, from the edges of the sheet.
struct SPageMargins {
    float left = 2, right = 2, top = 2, bottom = 2;
    float spacing = 0.5f; // between two graphs, one above the other
};

// The first and the last portlet of a page.
struct US_printedPageInfo {
    std::size_t first = 0;
    std::size_t last = 0;

    friend bool operator==(const US_printedPageInfo&, const US_printedPageInfo&) = default;
};

struct SPrintedPages {
    SRect box;                             // within the margins
    std::vector<US_printedPageInfo> pages; // none when nothing fits between the margins
    std::vector<SRect> places;             // of each shown portlet on its page
};

// Every portlet takes the width of the box and a height in proportion; one that is higher than the box has a
// page of its own and is made smaller until it fits. `sizes`: of the portlets on the screen, in order.
SPrintedPages ComputePages(const SPageMetrics& metrics, const SPageMargins& margins,
                           std::span<const SSize> sizes);
// The same for the shown portlets of a stack that is laid out.
SPrintedPages ComputePages(const SPageMetrics& metrics, const SPageMargins& margins,
                           const CTrv1DGraphStack& stack);

// Draws the portlets of a page into their places, with texts and lines scaled; nothing for a page that does
// not exist. `pages` must have been computed for the stack as it is. The transform is that of before on
// return.
void DrawPage(const CTrv1DGraphStack& stack, CGraphics& graphics, const SPrintedPages& pages,
              std::size_t page);

} // namespace Presentation_Tarvel_Graphics
