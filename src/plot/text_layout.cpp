#include "plot/text_layout.h"

#include "plot/text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <utility>

namespace Outils_Plot2D {

namespace {

float Aligned(StringAlignment alignment, float start, float room, float extent) {
    switch (alignment) {
    case StringAlignment::Center: return start + (room - extent) / 2;
    case StringAlignment::Far: return start + room - extent;
    case StringAlignment::Near: break;
    }
    return start;
}

} // namespace

CTextLayout::CTextLayout(const QFontMetricsF& metrics)
    : m_lineHeight(static_cast<float>(metrics.lineSpacing())),
      m_ascent(static_cast<float>(metrics.ascent())) {}

CTextLayout::CTextLayout(std::string_view text, const QFont& font) : CTextLayout(QFontMetricsF(font)) {
    const QString line = ToQString(text);
    Add(line, QFontMetricsF(font).horizontalAdvance(line));
}

CTextLayout::CTextLayout(std::string_view text, const QFont& font, const SRect& box, StringTrimming trimming)
    : CTextLayout(QFontMetricsF(font)) {
    QTextLayout layout(ToQString(text), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(std::max(box.width, 1.0f));
        // Half a pixel of grace: two lines must fit into a box of twice the font height.
        const bool fits = GetHeight() + m_lineHeight <= box.height + 0.5f;
        if (!m_lines.empty() && trimming == StringTrimming::Word && !fits) break;
        QString words = layout.text().mid(line.textStart(), line.textLength());
        while (!words.isEmpty() && words.back().isSpace()) words.chop(1);
        Add(std::move(words), line.naturalTextWidth());
    }
    layout.endLayout();
}

void CTextLayout::Add(QString text, double lineWidth) {
    m_lines.push_back({std::move(text), static_cast<float>(lineWidth)});
    m_width = std::max(m_width, m_lines.back().width);
}

SRect CTextLayout::GetBounds(const SRect& box, const SStringFormat& format) const {
    return {Aligned(format.align, box.x, box.width, m_width),
            Aligned(format.lineAlign, box.y, box.height, GetHeight()), m_width, GetHeight()};
}

void CTextLayout::Draw(QPainter& painter, const SRect& box, const SStringFormat& format) const {
    float y = GetBounds(box, format).y + m_ascent;
    for (const SLine& line : m_lines) {
        painter.drawText(QPointF(Aligned(format.align, box.x, box.width, line.width), y), line.text);
        y += m_lineHeight;
    }
}

} // namespace Outils_Plot2D
