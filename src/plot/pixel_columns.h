// A curve as pixels: in each column of pixels the rows that its line covers, and those that its band covers.
// Both are blended into the picture row by row, in vector registers: the cost follows the size of the plot
// and not the noise of the data. Values only; any thread.
#pragma once

#include "plot/graphics.h"

#include <QRect>

#include <cstdint>
#include <span>
#include <vector>

class QImage;

namespace Outils_Plot2D {

class CPixelColumns {
  public:
    // Empties all columns. Nothing outside `bounds` is drawn; device pixels, within 0 to kMaximum.
    void Begin(const QRect& bounds);
    static constexpr int kMaximum = 32000;

    // A polyline in device pixels, `width` of them wide, 1 to 8. A point that is not finite breaks it. Each
    // point is drawn at least as its own pixel, so that no spike is lost. Needs no order of the points.
    void AddLine(std::span<const SPoint> points, int width);
    // A polygon that runs along the low ends of the buckets and back along the high ones, each bucket with a
    // flat piece of `halfWidth` on both sides of its x. The extremes of a bucket show at least in the column
    // of its middle. A bucket that is not finite begins another band. False, and no band is drawn, when the
    // buckets are not in the order of x, or low and high end of one have different x.
    bool AddBand(std::span<const SBucket> buckets, float halfWidth);

    // Draws the line, and the band over it. `image` must hold the bounds, in one of the formats that
    // CanBlend allows; `line` is opaque.
    void Blend(QImage& image, Colour line, Colour band);
    static bool CanBlend(const QImage& image);

  private:
    // Rows from `top` to before `bottom`; empty at the start.
    struct SSpans {
        std::vector<std::int16_t> top, bottom;
    };
    struct SRest {
        int column;
        std::int16_t top, bottom;
    };

    void AddSegment(SPoint from, SPoint to, int width);
    void AddLineRows(int column, int top, int bottom, int width);
    void AddSpan(int column, int top, int bottom);
    void AddBucket(const SBucket& bucket, float halfWidth, double from);
    void AddBridge(const SBucket& from, const SBucket& to, float halfWidth);
    void AddBandRows(int column, double y0, double y1);

    QRect m_bounds;
    SRect m_sight;               // the bounds and a little about them
    SSpans m_line, m_band;       // by column from the left bound on, filled up to whole vectors
    std::vector<SRest> m_rest;   // of the line, where it covers two stretches of a column
    int m_top = 0, m_bottom = 0; // rows that any span reaches
};

} // namespace Outils_Plot2D
