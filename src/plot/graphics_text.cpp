// The text half of the surface: lines are laid out here, so that what is measured without a device is what is
// drawn.
#include "plot/clipping.h"
#include "plot/graphics.h"
#include "plot/pens.h"
#include "plot/text.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace Outils_Plot2D {

namespace {

struct SText {
    struct SLine {
        QString text;
        float width;
    };
    std::vector<SLine> lines;
    float width = 0;
    float lineHeight = 0;
    float ascent = 0;

    float Height() const { return lineHeight * static_cast<float>(lines.size()); }
    void Add(QString text, double lineWidth) {
        lines.push_back({std::move(text), static_cast<float>(lineWidth)});
        width = std::max(width, lines.back().width);
    }
};

SText MakeText(const QFontMetricsF& metrics) {
    SText text;
    text.lineHeight = static_cast<float>(metrics.lineSpacing());
    text.ascent = static_cast<float>(metrics.ascent());
    return text;
}

SText LayOutLine(std::string_view utf8, const QFont& font) {
    const QFontMetricsF metrics(font);
    SText result = MakeText(metrics);
    const QString line = ToQString(utf8);
    result.Add(line, metrics.horizontalAdvance(line));
    return result;
}

SText LayOutBox(std::string_view utf8, const QFont& font, const SRect& box, StringTrimming trimming) {
    SText result = MakeText(QFontMetricsF(font));
    QTextLayout layout(ToQString(utf8), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(box.width, 1.0f));
        // Half a pixel of grace: two lines must fit into a box of twice the font height.
        const bool fits = result.Height() + result.lineHeight <= box.height + 0.5f;
        if (!result.lines.empty() && trimming == StringTrimming::Word && !fits) break;
        QString text = layout.text().mid(line.textStart(), line.textLength());
        while (!text.isEmpty() && text.back().isSpace()) text.chop(1);
        result.Add(std::move(text), line.naturalTextWidth());
    }
    layout.endLayout();
    return result;
}

float Aligned(StringAlignment alignment, float start, float room, float extent) {
    switch (alignment) {
    case StringAlignment::Center: return start + (room - extent) / 2;
    case StringAlignment::Far: return start + room - extent;
    case StringAlignment::Near: break;
    }
    return start;
}

SRect Bounds(const SText& text, const SRect& box, const SStringFormat& format) {
    return {Aligned(format.align, box.x, box.width, text.width),
            Aligned(format.lineAlign, box.y, box.height, text.Height()), text.width, text.Height()};
}

void DrawText(QPainter& painter, const SText& text, const SRect& box, const SStringFormat& format) {
    float y = Bounds(text, box, format).y + text.ascent;
    for (const SText::SLine& line : text.lines) {
        painter.drawText(QPointF(Aligned(format.align, box.x, box.width, line.width), y), line.text);
        y += text.lineHeight;
    }
}

} // namespace

QFont DefaultFont() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(QFontInfo(font).pixelSize(), 1));
    return font;
}

void CGraphics::DrawString(std::string_view text, const QFont& font, SPoint anchor,
                           const SStringFormat& format, Colour colour) {
    if (!Begin(IsFinite(anchor) && kEverything.Contains(anchor))) return;
    m_painter->setFont(font);
    m_painter->setPen(ToNative(colour));
    DrawText(*m_painter, LayOutLine(text, font), {anchor.x, anchor.y, 0, 0}, format);
}

void CGraphics::DrawString(std::string_view text, const QFont& font, const SRect& box,
                           const SStringFormat& format, Colour colour) {
    if (!Begin(IsFinite(box) && kEverything.Contains({box.x, box.y}))) return;
    m_painter->save();
    if (!format.noClip)
        m_painter->setClipRect(QRectF(box.x, box.y, box.width, box.height), Qt::IntersectClip);
    m_painter->setFont(font);
    m_painter->setPen(ToNative(colour));
    DrawText(*m_painter, LayOutBox(text, font, box, format.trimming), box, format);
    m_painter->restore();
}

SRect CGraphics::MeasureString(std::string_view text, const QFont& font, SPoint anchor,
                               const SStringFormat& format) const {
    return Bounds(LayOutLine(text, font), {anchor.x, anchor.y, 0, 0}, format);
}

SRect CGraphics::MeasureString(std::string_view text, const QFont& font, const SRect& box,
                               const SStringFormat& format) const {
    return Bounds(LayOutBox(text, font, box, format.trimming), box, format);
}

float CGraphics::GetFontHeight(const QFont& font) const {
    return static_cast<float>(QFontMetricsF(font).lineSpacing());
}

} // namespace Outils_Plot2D
