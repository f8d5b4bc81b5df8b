#include "plot/pens.h"

#include <QLinearGradient>

namespace Outils_Plot2D {

QColor ToNative(Colour colour) { return QColor::fromRgba(colour); }

// A mitre at the tip of a spike would reach far beyond the data.
CPlot2DPen::CPlot2DPen(Colour colour, float width)
    : m_pen(QBrush(ToNative(colour)), width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin) {}

void CPlot2DLinearGradientBrush::Fill(CGraphics& graphics, const SRect& rect) const {
    const QPointF start(rect.x, rect.y);
    const QPointF end = m_mode == LinearGradientMode::Vertical ? QPointF(rect.x, rect.Bottom())
                                                               : QPointF(rect.Right(), rect.y);
    QLinearGradient gradient(start, end);
    gradient.setColorAt(0, ToNative(m_from));
    gradient.setColorAt(1, ToNative(m_to));
    graphics.FillRectangle(gradient, rect);
}

} // namespace Outils_Plot2D
