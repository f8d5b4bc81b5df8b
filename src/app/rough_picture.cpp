#include "app/rough_picture.h"

#include "foundation/texts.h"
#include "plot/text.h"

#include <QPainter>
#include <QPainterPath>

#include <array>
#include <cmath>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr double kHalf = 52; // pixels, half an edge of the box
constexpr double kAxis = 2;  // length of an axis, in half edges

// Up, starboard and bow on the screen, for one half edge.
constexpr QPointF kAxes[] = {{0, -0.95}, {0.9, 0.28}, {0.62, -0.42}};
// From the box through the side, in axes: sides 0 up, 1 down, 2 starboard, 3 port, 4 bow, 5 stern.
constexpr int AxisOf(int side) { return side / 2; }
constexpr double SignOf(int side) { return side % 2 == 0 ? 1 : -1; }
// The viewer stands to the right, behind and above.
constexpr bool IsSeen(int side) { return side == 0 || side == 2 || side == 5; }

QPointF Place(const std::array<double, 3>& at) {
    return kHalf * (at[0] * kAxes[0] + at[1] * kAxes[1] + at[2] * kAxes[2]);
}

// A point of the side, from its middle along its two edges.
QPointF OnSide(int side, double along, double across) {
    std::array<double, 3> at{};
    const auto axis = static_cast<std::size_t>(AxisOf(side));
    at[axis] = SignOf(side);
    at[(axis + 1) % 3] = along;
    at[(axis + 2) % 3] = across;
    return Place(at);
}

QPolygonF Outline(int side, double size) {
    return {{OnSide(side, -size, -size), OnSide(side, size, -size), OnSide(side, size, size),
             OnSide(side, -size, size)}};
}

void DrawMark(QPainter& painter, int side, EText word, const QColor& colour, bool isLogo) {
    painter.setPen(QPen(colour, 2, IsSeen(side) ? Qt::SolidLine : Qt::DashLine));
    QColor filled = colour;
    filled.setAlphaF(IsSeen(side) ? 0.35 : 0.12);
    painter.setBrush(filled);
    if (isLogo) {
        painter.drawPolygon(Outline(side, 0.55));
    } else {
        for (const double along : {-0.4, 0.4}) {
            QPainterPath ring;
            for (int i = 0; i <= 24; ++i) {
                const double angle = i * M_PI / 12;
                const QPointF point = OnSide(side, along + 0.28 * std::cos(angle), 0.28 * std::sin(angle));
                i == 0 ? ring.moveTo(point) : ring.lineTo(point);
            }
            painter.drawPath(ring);
        }
    }
    // The word stands outside, on a line from the mark.
    const QPointF middle = OnSide(side, 0, 0);
    const QPointF end = middle * (IsSeen(side) ? 1.75 : 1.95);
    painter.drawLine(middle, end);
    const QRectF place(end.x() - 60, end.y() - (middle.y() < 0 ? 18 : 0), 120, 18);
    painter.drawText(place, Qt::AlignCenter, Text(word));
}

} // namespace

CRoughPicture::CRoughPicture(bool isLand, QWidget* parent) : QWidget(parent), m_isLand(isLand) {
    setAccessibleName(Text(EText::roughPictureName));
    setToolTip(Text(EText::roughPictureName));
}

void CRoughPicture::SetSides(int logo, int connector) {
    m_logo = logo;
    m_connector = connector;
    update();
}

void CRoughPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect().center());
    const QColor line = palette().color(QPalette::WindowText);
    QColor pale = line;
    pale.setAlphaF(0.35);
    // The box: what looks away first.
    for (const bool seen : {false, true})
        for (int side = 0; side < 6; ++side) {
            if (IsSeen(side) != seen) continue;
            painter.setPen(seen ? QPen(line, 1.4) : QPen(pale, 1, Qt::DashLine));
            painter.drawPolygon(Outline(side, 1));
        }
    painter.setPen(QPen(pale, 1.4));
    const EText names[] = {EText::roughUp, m_isLand ? EText::roughRightLand : EText::roughRight,
                           m_isLand ? EText::roughForwardLand : EText::roughForward};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const QPointF end = kHalf * kAxis * kAxes[axis] * (axis == 0 ? 0.85 : 1);
        painter.drawLine(kHalf * kAxes[axis], end);
        painter.drawText(QRectF(end.x() - 40, end.y() - (axis == 1 ? 0 : 18), 80, 18), Qt::AlignCenter,
                         Text(names[axis]));
    }
    DrawMark(painter, m_connector, EText::roughConnector, palette().color(QPalette::Highlight), false);
    DrawMark(painter, m_logo, EText::roughLogo, line, true);
}

} // namespace Application_Tarvel
