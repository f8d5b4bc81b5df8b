#include "plot/pixel_columns.h"

#include "plot/clipping.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Outils_Plot2D {

namespace {

constexpr std::size_t kVector = 16; // bytes
constexpr int kColumns = 8;         // looked at together
constexpr float kLineMargin = 16;   // cut ends lie out of sight with the width of the line

using Rows = std::int16_t __attribute__((vector_size(kVector)));    // of eight columns
using Pixels = std::uint32_t __attribute__((vector_size(kVector))); // four
using Channels = std::uint16_t __attribute__((vector_size(kVector)));
using Bytes = std::uint8_t __attribute__((vector_size(kVector)));

Colour Premultiply(Colour colour) { return qPremultiply(colour); }

Pixels Fill(std::uint32_t value) { return Pixels{value, value, value, value}; }

// What becomes of a pixel: it is scaled by so many 255ths, and the colour is added.
struct SMix {
    Pixels scale, add;

    static SMix Over(Colour colour) {
        const Colour shown = Premultiply(colour);
        return {Fill((255 - (shown >> 24)) * 0x01010101u), Fill(shown)};
    }
};

Pixels Choose(Pixels mask, Pixels chosen, Pixels other) { return (chosen & mask) | (other & ~mask); }

// Of each byte `value * scale / 255`, rounded.
Pixels Scale(Pixels value, Pixels scale) {
    constexpr Bytes kZero = {};
    const auto lowHalf = [&](Pixels pixels) {
        return reinterpret_cast<Channels>(__builtin_shufflevector(
            reinterpret_cast<Bytes>(pixels), kZero, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    };
    const auto highHalf = [&](Pixels pixels) {
        return reinterpret_cast<Channels>(__builtin_shufflevector(reinterpret_cast<Bytes>(pixels), kZero, 8,
                                                                  24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29,
                                                                  14, 30, 15, 31));
    };
    const auto product = [](Channels a, Channels b) {
        const Channels sum = a * b + 128;
        return reinterpret_cast<Bytes>((sum + (sum >> 8)) >> 8);
    };
    return reinterpret_cast<Pixels>(__builtin_shufflevector(
        product(lowHalf(value), lowHalf(scale)), product(highHalf(value), highHalf(scale)), 0, 2, 4, 6, 8, 10,
        12, 14, 16, 18, 20, 22, 24, 26, 28, 30));
}

// The mixes of a pixel that has only a line, only a band, or the band over the line.
class CMixer {
  public:
    CMixer(Colour line, Colour band) : m_line(SMix::Over(line)), m_band(SMix::Over(band)) {
        m_both = {Scale(m_line.scale, m_band.scale), Scale(m_line.add, m_band.scale) + m_band.add};
    }

    void Mix(std::uint8_t* pixels, Pixels line, Pixels band) const {
        Pixels value;
        std::memcpy(&value, pixels, kVector);
        const Pixels scale =
            Choose(band, Choose(line, m_both.scale, m_band.scale), Choose(line, m_line.scale, Fill(~0u)));
        const Pixels add = Choose(band, Choose(line, m_both.add, m_band.add), m_line.add & line);
        value = reinterpret_cast<Pixels>(reinterpret_cast<Bytes>(Scale(value, scale)) +
                                         reinterpret_cast<Bytes>(add));
        std::memcpy(pixels, &value, kVector);
    }

  private:
    SMix m_line, m_band, m_both;
};

Rows Load(const std::int16_t* rows) {
    Rows loaded;
    std::memcpy(&loaded, rows, kVector);
    return loaded;
}

// All bits of the columns whose span holds the row.
Rows Covers(const std::int16_t* top, const std::int16_t* bottom, Rows row) {
    return (Load(bottom) > row) & ~(Load(top) > row);
}

bool IsEmpty(Rows mask) {
    std::uint64_t halves[2];
    std::memcpy(halves, &mask, kVector);
    return (halves[0] | halves[1]) == 0;
}

Pixels LowHalf(Rows mask) {
    return reinterpret_cast<Pixels>(__builtin_shufflevector(mask, mask, 0, 0, 1, 1, 2, 2, 3, 3));
}

Pixels HighHalf(Rows mask) {
    return reinterpret_cast<Pixels>(__builtin_shufflevector(mask, mask, 4, 4, 5, 5, 6, 6, 7, 7));
}

// Within the range of the type, so that the conversion is defined.
int Floor(double value) {
    const int whole = static_cast<int>(value);
    return whole > value ? whole - 1 : whole;
}

} // namespace

void CPixelColumns::Begin(const QRect& bounds) {
    m_bounds = bounds;
    const auto count =
        static_cast<std::size_t>((std::max(bounds.width(), 0) + kColumns - 1) / kColumns * kColumns);
    for (SSpans* spans : {&m_line, &m_band}) {
        spans->top.assign(count, 0);
        spans->bottom.assign(count, 0);
    }
    m_sight = Expand({static_cast<float>(bounds.x()), static_cast<float>(bounds.y()),
                      static_cast<float>(bounds.width()), static_cast<float>(bounds.height())},
                     kLineMargin);
    m_rest.clear();
    m_top = bounds.top() + bounds.height();
    m_bottom = bounds.top();
}

void CPixelColumns::AddLine(std::span<const SPoint> points, int width) {
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!IsFinite(points[i])) continue;
        const bool goesOn = i + 1 < points.size() && IsFinite(points[i + 1]);
        // The point at the end of a stretch is drawn with the segment before it, and by itself without one.
        if (goesOn)
            AddSegment(points[i], points[i + 1], width);
        else if (i == 0 || !IsFinite(points[i - 1]))
            AddSegment(points[i], points[i], width);
    }
}

// A flat segment has one pixel in each column whose middle it crosses, a steep one a pixel in each row.
void CPixelColumns::AddSegment(SPoint from, SPoint to, int width) {
    if (!(m_sight.Contains(from) && m_sight.Contains(to)) && !ClipSegment(from, to, m_sight)) return;
    if (to.x < from.x) std::swap(from, to);
    const double x0 = from.x, y0 = from.y, x1 = to.x, y1 = to.y;
    const int first = Floor(x0), last = Floor(x1);
    if (first == last) {
        const int row0 = Floor(y0), row1 = Floor(y1);
        return AddLineRows(first, std::min(row0, row1), std::max(row0, row1) + 1, width);
    }
    AddLineRows(first, Floor(y0), Floor(y0) + 1, width);
    AddLineRows(last, Floor(y1), Floor(y1) + 1, width);
    const double slope = (y1 - y0) / (x1 - x0);
    if (std::fabs(slope) <= 1) {
        for (int column = FirstPixel(x0); column < FirstPixel(x1); ++column) {
            const int row = Floor(y0 + (column + 0.5 - x0) * slope);
            AddLineRows(column, row, row + 1, width);
        }
        return;
    }
    double edge = y0;
    for (int column = first; column <= last; ++column) {
        const double next = column == last ? y1 : y0 + (column + 1 - x0) * slope;
        AddLineRows(column, FirstPixel(std::min(edge, next)), FirstPixel(std::max(edge, next)), width);
        edge = next;
    }
}

// A wide line is the thin one with copies beside it, as on any other device of pixels.
void CPixelColumns::AddLineRows(int column, int top, int bottom, int width) {
    if (top >= bottom) return;
    if (width == 1) return AddSpan(column, top, bottom);
    const int before = (width - 1) / 2, after = width / 2;
    for (int shift = -before; shift <= after; ++shift)
        AddSpan(column + shift, shift == 0 ? top - before : top, shift == 0 ? bottom + after : bottom);
}

void CPixelColumns::AddSpan(int column, int top, int bottom) {
    if (column < m_bounds.left() || column > m_bounds.right()) return;
    top = std::max(top, m_bounds.top());
    bottom = std::min(bottom, m_bounds.top() + m_bounds.height());
    if (top >= bottom) return;
    m_top = std::min(m_top, top);
    m_bottom = std::max(m_bottom, bottom);
    const auto index = static_cast<std::size_t>(column - m_bounds.left());
    std::int16_t &heldTop = m_line.top[index], &heldBottom = m_line.bottom[index];
    const auto newTop = static_cast<std::int16_t>(top), newBottom = static_cast<std::int16_t>(bottom);
    if (heldTop == heldBottom) {
        heldTop = newTop;
        heldBottom = newBottom;
    } else if (newTop <= heldBottom && newBottom >= heldTop) {
        heldTop = std::min(heldTop, newTop);
        heldBottom = std::max(heldBottom, newBottom);
    } else {
        m_rest.push_back({column, newTop, newBottom});
    }
}

bool CPixelColumns::AddBand(std::span<const SBucket> buckets, float halfWidth) {
    const SBucket* previous = nullptr;
    for (const SBucket& bucket : buckets) {
        const bool finite = IsFinite(bucket.minimum) && IsFinite(bucket.maximum);
        if (finite &&
            (bucket.minimum.x != bucket.maximum.x || (previous && bucket.minimum.x < previous->minimum.x)))
            return false;
        previous = finite ? &bucket : nullptr;
    }
    if (!(halfWidth >= 0)) return false;
    previous = nullptr;
    const double left = m_bounds.left();
    for (const SBucket& bucket : buckets) {
        if (!IsFinite(bucket.minimum) || !IsFinite(bucket.maximum)) {
            previous = nullptr;
            continue;
        }
        if (previous) AddBridge(*previous, bucket, halfWidth);
        AddBucket(bucket, halfWidth, previous ? static_cast<double>(previous->minimum.x) + halfWidth : left);
        previous = &bucket;
    }
    return true;
}

// Where buckets overlap, by dates that are not quite even, the first one holds the column.
void CPixelColumns::AddBucket(const SBucket& bucket, float halfWidth, double from) {
    const double x = bucket.minimum.x;
    const int left = m_bounds.left(), end = left + m_bounds.width();
    const int first = FirstPixel(std::max(x - halfWidth, from), left, end),
              last = FirstPixel(x + halfWidth, left, end);
    for (int column = first; column < last; ++column) AddBandRows(column, bucket.minimum.y, bucket.maximum.y);
    if (first >= last && x >= left && x < end) AddBandRows(Floor(x), bucket.minimum.y, bucket.maximum.y);
}

// Buckets apart are joined by the straight edges of the polygon.
void CPixelColumns::AddBridge(const SBucket& from, const SBucket& to, float halfWidth) {
    const int left = m_bounds.left(), end = left + m_bounds.width();
    const double x0 = static_cast<double>(from.minimum.x) + halfWidth,
                 x1 = static_cast<double>(to.minimum.x) - halfWidth;
    const int last = FirstPixel(x1, left, end);
    for (int column = FirstPixel(x0, left, end); column < last; ++column) {
        const double part = (column + 0.5 - x0) / (x1 - x0);
        const auto between = [part](double a, double b) { return a + (b - a) * part; };
        AddBandRows(column, between(from.minimum.y, to.minimum.y), between(from.maximum.y, to.maximum.y));
    }
}

void CPixelColumns::AddBandRows(int column, double y0, double y1) {
    const int low = m_bounds.top(), high = low + m_bounds.height();
    const int top = FirstPixel(std::min(y0, y1), low, high), bottom = FirstPixel(std::max(y0, y1), low, high);
    if (top >= bottom) return;
    m_top = std::min(m_top, top);
    m_bottom = std::max(m_bottom, bottom);
    const auto index = static_cast<std::size_t>(column - m_bounds.left());
    std::int16_t &heldTop = m_band.top[index], &heldBottom = m_band.bottom[index];
    const bool isEmpty = heldTop == heldBottom;
    heldTop = static_cast<std::int16_t>(isEmpty ? top : std::min<int>(heldTop, top));
    heldBottom = static_cast<std::int16_t>(isEmpty ? bottom : std::max<int>(heldBottom, bottom));
}

bool CPixelColumns::CanBlend(const QImage& image) {
    return (image.format() == QImage::Format_RGB32 ||
            image.format() == QImage::Format_ARGB32_Premultiplied) &&
           image.width() <= kMaximum && image.height() <= kMaximum;
}

void CPixelColumns::Blend(QImage& image, Colour line, Colour band) {
    if (m_top >= m_bottom) return;
    // A painter is at work on the picture: its bytes are written in place and never copied.
    auto* const bits = const_cast<std::uint8_t*>(image.constBits());
    const auto stride = static_cast<std::size_t>(image.bytesPerLine());
    const auto at = [&](int column, int row) {
        return bits + static_cast<std::size_t>(row) * stride +
               static_cast<std::size_t>(column) * sizeof(Colour);
    };
    const Colour shown = Premultiply(line);
    for (const SRest& rest : m_rest)
        for (int row = rest.top; row < rest.bottom; ++row)
            std::memcpy(at(rest.column, row), &shown, sizeof shown);

    const CMixer mixer(line, band);
    const auto count = static_cast<std::size_t>(m_bounds.width());
    for (int y = m_top; y < m_bottom; ++y) {
        const auto number = static_cast<std::int16_t>(y);
        const Rows row = {number, number, number, number, number, number, number, number};
        std::uint8_t* pixels = at(m_bounds.left(), y);
        for (std::size_t i = 0; i < count; i += kColumns, pixels += kColumns * sizeof(Colour)) {
            const Rows inLine = Covers(&m_line.top[i], &m_line.bottom[i], row);
            const Rows inBand = Covers(&m_band.top[i], &m_band.bottom[i], row);
            if (IsEmpty(inLine | inBand)) continue;
            const auto mix = [&](std::uint8_t* eight) {
                mixer.Mix(eight, LowHalf(inLine), LowHalf(inBand));
                mixer.Mix(eight + kVector, HighHalf(inLine), HighHalf(inBand));
            };
            if (count - i >= kColumns) {
                mix(pixels);
                continue;
            }
            // The last columns are not eight, and what is after them is not ours.
            std::uint8_t eight[2 * kVector];
            std::memcpy(eight, pixels, (count - i) * sizeof(Colour));
            mix(eight);
            std::memcpy(pixels, eight, (count - i) * sizeof(Colour));
        }
    }
}

} // namespace Outils_Plot2D
