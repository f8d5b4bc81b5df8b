// The lines of a text, laid out without a device, so that a text covers on each device what was measured for
// it. Needs a QGuiApplication. GUI thread, or the thread that owns the painter.
#pragma once

#include "plot/graphics.h"

#include <QFont>
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
    };

    explicit CTextLayout(const QFontMetricsF& metrics);
    void Add(QString text, double lineWidth);
    float GetHeight() const { return m_lineHeight * static_cast<float>(m_lines.size()); }

    std::vector<SLine> m_lines;
    float m_width = 0; // of the longest line
    float m_lineHeight = 0;
    float m_ascent = 0;
};

} // namespace Outils_Plot2D
