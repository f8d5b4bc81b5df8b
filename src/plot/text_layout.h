// The lines of a text, laid out without a device, so that a text covers on each device what was measured for
// it. Needs a QGuiApplication. GUI thread, or the thread that owns the painter.
#pragma once

#include "plot/graphics.h"

#include <QFont>
#include <QStaticText>
#include <QString>

#include <string_view>
#include <vector>

class QFontMetricsF;
class QPainter;

namespace Outils_Plot2D {

class CTextLayout {
  public:
    // One line of UTF-8 text.
    CTextLayout(std::string_view text, const QFont& font);
    // Lines no wider than `box`, broken between words where possible. `trimming` says what becomes of lines
    // beyond its height; the first line always stays.
    CTextLayout(std::string_view text, const QFont& font, const SRect& box, StringTrimming trimming);

    // The rectangle that the lines cover, aligned in `box`. Pixels.
    SRect GetBounds(const SRect& box, const SStringFormat& format) const;
    // Draws the lines aligned in `box`, with font and pen of the painter.
    void Draw(QPainter& painter, const SRect& box, const SStringFormat& format) const;

  private:
    struct SLine {
        QString text;
        float width;
        QStaticText shaped; // for devices of pixels, which draw it without laying it out again
    };

    explicit CTextLayout(const QFontMetricsF& metrics);
    void Add(QString text, double lineWidth);
    float GetHeight() const { return m_lineHeight * static_cast<float>(m_lines.size()); }

    std::vector<SLine> m_lines;
    float m_width = 0; // of the longest line
    float m_lineHeight = 0;
    float m_ascent = 0;
};

// The layout of a text, as by the constructors, from a cache: the labels of a graph are the same from paint
// to paint. Valid until the next call on the same thread.
const CTextLayout& GetTextLayout(std::string_view text, const QFont& font);
const CTextLayout& GetTextLayout(std::string_view text, const QFont& font, const SRect& box,
                                 StringTrimming trimming);

} // namespace Outils_Plot2D
