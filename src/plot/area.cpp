#include "plot/area.h"

namespace Outils_Plot2D {

void CPlot2DArea::DrawArea(CGraphics& graphics) const {
    if (m_brush) m_brush->Fill(graphics, m_rect);
    if (m_pen) graphics.DrawRectangle(m_pen->GetNative(), m_rect);
}

} // namespace Outils_Plot2D
