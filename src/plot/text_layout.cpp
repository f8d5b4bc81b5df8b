#include "plot/text_layout.h"

#include "plot/text.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPaintEngine>
#include <QPainter>
#include <QTextLayout>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <compare>
#include <map>
#include <optional>
#include <string>
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
    QStaticText shaped(text);
    shaped.setTextFormat(Qt::PlainText);
    shaped.setPerformanceHint(QStaticText::AggressiveCaching);
    m_lines.push_back({std::move(text), static_cast<float>(lineWidth), std::move(shaped)});
    m_width = std::max(m_width, m_lines.back().width);
}

SRect CTextLayout::GetBounds(const SRect& box, const SStringFormat& format) const {
    return {Aligned(format.align, box.x, box.width, m_width),
            Aligned(format.lineAlign, box.y, box.height, GetHeight()), m_width, GetHeight()};
}

void CTextLayout::Draw(QPainter& painter, const SRect& box, const SStringFormat& format) const {
    float y = GetBounds(box, format).y + m_ascent;
    // Pages and vector pictures get texts, which can be searched.
    const bool isRaster = painter.paintEngine()->type() == QPaintEngine::Raster;
    for (const SLine& line : m_lines) {
        const QPointF base(Aligned(format.align, box.x, box.width, line.width), y);
        if (isRaster)
            painter.drawStaticText(base - QPointF(0, m_ascent), line.shaped);
        else
            painter.drawText(base, line.text);
        y += m_lineHeight;
    }
}

namespace {

constexpr std::size_t kCachedTexts = 2000; // of a font
constexpr std::size_t kCachedFonts = 8;

// Of the application's thread. Goes with the application, before the fonts do.
class CTextCache {
  public:
    // Null on another thread and without an application.
    static CTextCache* Get() {
        const QCoreApplication* application = QCoreApplication::instance();
        if (!application || application->thread() != QThread::currentThread()) return nullptr;
        if (!s_cache) {
            s_cache = new CTextCache;
            qAddPostRoutine([] { delete std::exchange(s_cache, nullptr); });
        }
        return s_cache;
    }

    // `box` has a negative width for one line.
    template <class Make>
    const CTextLayout& Find(std::string_view text, const QFont& font, const SRect& box,
                            StringTrimming trimming, Make&& make) {
        auto place = std::ranges::find(m_fonts, font, &SFont::font);
        if (place == m_fonts.end()) {
            if (m_fonts.size() >= kCachedFonts) m_fonts.clear();
            place = m_fonts.insert(m_fonts.end(), {font, {}});
        }
        auto& layouts = place->layouts;
        const SKey key{std::string(text), box.width, box.height, trimming};
        const auto known = layouts.find(key);
        if (known != layouts.end()) return known->second;
        if (layouts.size() >= kCachedTexts) layouts.clear();
        return layouts.emplace(key, make()).first->second;
    }

  private:
    struct SKey {
        std::string text;
        float width, height;
        StringTrimming trimming;
        auto operator<=>(const SKey&) const = default;
    };
    struct SFont {
        QFont font;
        std::map<SKey, CTextLayout> layouts;
    };
    std::vector<SFont> m_fonts;
    static inline CTextCache* s_cache = nullptr;
};

template <class Make>
const CTextLayout& FindLayout(std::string_view text, const QFont& font, const SRect& box,
                              StringTrimming trimming, Make&& make) {
    const bool isSound = std::isfinite(box.width) && std::isfinite(box.height);
    if (CTextCache* cache = isSound ? CTextCache::Get() : nullptr)
        return cache->Find(text, font, box, trimming, make);
    thread_local std::optional<CTextLayout> last;
    return last.emplace(make());
}

} // namespace

const CTextLayout& GetTextLayout(std::string_view text, const QFont& font) {
    return FindLayout(text, font, {0, 0, -1, 0}, StringTrimming::None,
                      [&] { return CTextLayout(text, font); });
}

const CTextLayout& GetTextLayout(std::string_view text, const QFont& font, const SRect& box,
                                 StringTrimming trimming) {
    return FindLayout(text, font, box, trimming, [&] { return CTextLayout(text, font, box, trimming); });
}

} // namespace Outils_Plot2D
