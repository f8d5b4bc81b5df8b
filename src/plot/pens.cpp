#include "plot/pens.h"

#include <QLinearGradient>
#include <QList>

namespace Outils_Plot2D {

QColor ToNative(Colour colour) { return QColor::fromRgba(colour); }

namespace {

// Strokes and gaps in widths of the pen: longer than those of the platform, which look grey on a steep curve.
QList<double> GetDashes(ELineStyle style) {
    switch (style) {
    case ELineStyle::dash: return {7, 4};
    case ELineStyle::dot: return {2, 3};
    case ELineStyle::dashDot: return {9, 3, 2, 3};
    case ELineStyle::longDash: return {16, 5};
    default: return {};
    }
}

} // namespace

// A mitre at the tip of a spike would reach far beyond the data.
CPlot2DPen::CPlot2DPen(Colour colour, float width, ELineStyle style)
    : m_pen(QBrush(ToNative(colour)), width, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin) {
    if (const auto dashes = GetDashes(style); !dashes.isEmpty()) m_pen.setDashPattern(dashes);
}

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
