#include "app/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <iterator>
#include <numbers>

namespace Application_Tarvel {

namespace {

// The pencils of one picture, in a square of 16 by 16 units.
class CSketch {
  public:
    CSketch(QPainter& painter, QColor ink, QColor accent)
        : m_painter(painter), m_ink(ink), m_accent(accent) {}

    CSketch& Ink(qreal width = 1.3) { return Pen(m_ink, width); }
    CSketch& Accent(qreal width = 1.6) { return Pen(m_accent, width); }
    void Line(QPointF from, QPointF to) { m_painter.drawLine(from, to); }
    void Lines(std::initializer_list<QPointF> points, bool closed = false) {
        QPolygonF polygon(QList<QPointF>{points});
        closed ? m_painter.drawPolygon(polygon) : m_painter.drawPolyline(polygon);
    }
    void Fill(std::initializer_list<QPointF> points) {
        m_painter.setBrush(m_painter.pen().color());
        Lines(points, true);
        m_painter.setBrush(Qt::NoBrush);
    }
    void Circle(QPointF centre, qreal radius) { m_painter.drawEllipse(centre, radius, radius); }
    void Path(const QPainterPath& path) { m_painter.drawPath(path); }
    // A line with a head at `to`.
    void Arrow(QPointF from, QPointF to, qreal head = 2.6) {
        Line(from, to);
        const QLineF back(to, from);
        QLineF side = back;
        side.setLength(head);
        for (const qreal turn : {-40.0, 40.0}) {
            side.setAngle(back.angle() + turn);
            m_painter.drawLine(side);
        }
    }
    QPainter& GetPainter() { return m_painter; }

  private:
    CSketch& Pen(const QColor& colour, qreal width) {
        m_painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        m_painter.setBrush(Qt::NoBrush);
        return *this;
    }

    QPainter& m_painter;
    const QColor m_ink;
    const QColor m_accent;
};

void DrawNew(CSketch& s) {
    s.Ink().Lines({{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}}, true);
    s.Lines({{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}});
    s.Accent().Line({8, 7}, {8, 12});
    s.Line({5.5, 9.5}, {10.5, 9.5});
}

void DrawOpen(CSketch& s) {
    s.Ink().Lines({{1.5, 13}, {1.5, 3}, {6, 3}, {7.5, 5}, {13, 5}, {13, 7.5}});
    s.Accent(1.4).Lines({{1.5, 13.5}, {4, 7.5}, {15, 7.5}, {12.7, 13.5}}, true);
}

void DrawSave(CSketch& s) {
    s.Ink().Lines({{2, 2}, {11.5, 2}, {14, 4.5}, {14, 14}, {2, 14}}, true);
    s.Lines({{5, 2}, {5, 5.5}, {10.5, 5.5}, {10.5, 2}});
    s.Accent().Lines({{4.5, 14}, {4.5, 9.5}, {11.5, 9.5}, {11.5, 14}});
}

void DrawProcess(CSketch& s) { s.Accent(1.2).Fill({{4, 2.5}, {13, 8}, {4, 13.5}}); }

void DrawStop(CSketch& s) { s.Accent(1.2).Fill({{3.5, 3.5}, {12.5, 3.5}, {12.5, 12.5}, {3.5, 12.5}}); }

void DrawLens(CSketch& s, bool more, bool horizontal) {
    s.Ink().Circle({6.5, 6.5}, 4.5);
    s.Line({4.5, 6.5}, {8.5, 6.5});
    if (more) s.Line({6.5, 4.5}, {6.5, 8.5});
    s.Line({9.8, 9.8}, {11, 11});
    s.Accent(1.5);
    if (horizontal) {
        s.Arrow({8, 14}, {2, 14}, 2.2);
        s.Arrow({8, 14}, {14.5, 14}, 2.2);
    } else {
        s.Arrow({14, 8}, {14, 1.5}, 2.2);
        s.Arrow({14, 8}, {14, 14.5}, 2.2);
    }
}

// An arrow out of a frame's border: the picture scrolls that way.
void DrawScroll(CSketch& s, QPointF direction) {
    const QPointF centre(8, 8);
    const QPointF across(direction.y(), direction.x());
    const QPointF base = centre - direction * 5.5;
    s.Ink().Line(base - across * 4.5, base + across * 4.5);
    s.Accent(1.9).Arrow(centre - direction * 3, centre + direction * 5.5, 4.2);
}

void DrawViewAll(CSketch& s) {
    s.Ink().Line({1.5, 2.5}, {1.5, 13.5});
    s.Line({14.5, 2.5}, {14.5, 13.5});
    s.Accent().Arrow({8, 8}, {3.6, 8});
    s.Arrow({8, 8}, {12.4, 8});
}

void DrawLegends(CSketch& s) {
    for (const qreal y : {3.5, 8.0, 12.5}) {
        s.Accent(2.2).Line({2, y}, {5, y});
        s.Ink().Line({8, y}, {14, y});
    }
}

void DrawSelect(CSketch& s) {
    s.Ink().Lines({{4, 1.5}, {4, 12.5}, {6.8, 10}, {8.7, 14.3}, {10.6, 13.4}, {8.8, 9.3}, {12.3, 9}}, true);
}

void DrawPan(CSketch& s) {
    s.Ink();
    for (const QPointF end : {QPointF(8, 1.5), QPointF(8, 14.5), QPointF(1.5, 8), QPointF(14.5, 8)})
        s.Arrow({8, 8}, end);
}

void DrawZoomPeriod(CSketch& s) {
    QPen dashes = QPen(s.Ink().GetPainter().pen());
    dashes.setDashPattern({1.5, 2});
    s.GetPainter().setPen(dashes);
    s.GetPainter().drawRect(QRectF(1.5, 2, 13, 12));
    s.Accent().Circle({7.3, 7.3}, 3);
    s.Line({9.6, 9.6}, {12, 12});
}

void DrawClear(CSketch& s) {
    s.Ink();
    for (const qreal y : {3.5, 7.0, 10.5}) s.Line({2, y}, {y < 5 ? 13.5 : 8.0, y});
    s.Accent(1.8).Line({10, 9.5}, {14.5, 14});
    s.Line({14.5, 9.5}, {10, 14});
}

using Drawing = void (*)(CSketch&);
constexpr Drawing kDrawings[] = {
    nullptr,
    DrawNew,
    DrawOpen,
    DrawSave,
    DrawProcess,
    DrawStop,
    [](CSketch& s) { DrawLens(s, true, true); },
    [](CSketch& s) { DrawLens(s, false, true); },
    [](CSketch& s) {
        DrawScroll(s, {-1, 0});
    },
    [](CSketch& s) {
        DrawScroll(s, {1, 0});
    },
    DrawViewAll,
    [](CSketch& s) { DrawLens(s, true, false); },
    [](CSketch& s) { DrawLens(s, false, false); },
    [](CSketch& s) {
        DrawScroll(s, {0, -1});
    },
    [](CSketch& s) {
        DrawScroll(s, {0, 1});
    },
    DrawLegends,
    DrawSelect,
    DrawPan,
    DrawZoomPeriod,
    DrawClear,
};
static_assert(std::size(kDrawings) == static_cast<std::size_t>(EGlyph::count));

// A compass card with a track that bends round its centre.
void DrawProduct(CSketch& s) {
    QPainter& painter = s.GetPainter();
    painter.setPen(QPen(QColor(0xBF, 0xD7, 0xEA), 0.4)); // parts it from a ground of its own colour
    painter.setBrush(QColor(0x1F, 0x4E, 0x79));
    painter.drawEllipse(QRectF(0.5, 0.5, 15, 15));
    painter.setPen(QPen(QColor(0xBF, 0xD7, 0xEA), 0.6));
    for (int i = 0; i < 12; ++i) {
        const qreal angle = i * std::numbers::pi / 6;
        const QPointF direction(std::sin(angle), -std::cos(angle));
        painter.drawLine(QPointF(8, 8) + direction * (i % 3 ? 6.2 : 5.4), QPointF(8, 8) + direction * 6.8);
    }
    QPainterPath track({3.8, 11.2});
    track.cubicTo({6.5, 12.5}, {6.2, 7.6}, {8.4, 8});
    track.cubicTo({10.4, 8.4}, {9.6, 5.2}, {12, 4.6});
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(0xFF, 0xB0, 0x3B), 1.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawPath(track);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawEllipse(QPointF(12, 4.6), 1.1, 1.1);
}

class CIconEngine final : public QIconEngine {
  public:
    explicit CIconEngine(Drawing drawing) : m_drawing(drawing) {}

    void paint(QPainter* painter, const QRect& rectangle, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette = QGuiApplication::palette();
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor ink = palette.color(group, QPalette::ButtonText);
        // Blue of the same lightness as the ink would be lost beside it: lighter on dark ground.
        const bool dark = palette.color(QPalette::Button).lightness() < 128;
        const QColor accent = mode == QIcon::Disabled ? ink : QColor(dark ? 0x7FB6F0 : 0x1F6FC4);
        const qreal side = std::min(rectangle.width(), rectangle.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rectangle).center() - QPointF(side, side) / 2);
        painter->scale(side / 16, side / 16);
        CSketch sketch(*painter, ink, accent);
        m_drawing(sketch);
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new CIconEngine(m_drawing); }

  private:
    Drawing m_drawing;
};

} // namespace

QIcon GetIcon(EGlyph glyph) {
    const Drawing drawing = kDrawings[static_cast<std::size_t>(glyph)];
    return drawing ? QIcon(new CIconEngine(drawing)) : QIcon();
}

QIcon GetProductIcon() { return QIcon(new CIconEngine(DrawProduct)); }

} // namespace Application_Tarvel
