// The surface the plot engine draws on: a thin layer over QPainter, so that the same code paints the screen,
// the printer, a PDF, an SVG and a picture. Coordinates are 32-bit floats in pixels of the painter's logical
// space, y downwards; colours are 32-bit ARGB. GUI thread, or the thread that owns the painter.
//
// Bad coordinates never reach the painter: what is not finite is left out, and what lies far beyond the clip
// is cut there, which changes nothing that can be seen and keeps a zoomed-in view as cheap as a full one.
#pragma once

#include "plot/theme.h"

#include <QFont>
#include <QTransform>

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

class QBrush;
class QImage;
class QPainter;
class QPen;

namespace Outils_Plot2D {

class CPixelColumns;

struct SPoint {
    float x = 0, y = 0;
};

struct SSize {
    float width = 0, height = 0;
};

struct SRect {
    float x = 0, y = 0, width = 0, height = 0;

    float Right() const { return x + width; }
    float Bottom() const { return y + height; }
    // The borders count as inside on all four sides.
    bool Contains(SPoint p) const { return p.x >= x && p.x <= Right() && p.y >= y && p.y <= Bottom(); }
};

// What the band of a curve shows of one bucket; the bucket lies about the x of both.
struct SBucket {
    SPoint minimum, maximum;
};

enum class StringAlignment { Near, Center, Far };
// What becomes of lines of text beyond the height of their box: None draws them all, Word leaves them out, so
// that the text ends after the last word that fits.
enum class StringTrimming { None = 0, Word = 2 };

struct SStringFormat {
    StringAlignment align = StringAlignment::Near;     // along the line
    StringAlignment lineAlign = StringAlignment::Near; // across the lines
    StringTrimming trimming = StringTrimming::None;
    bool noClip = false; // text may leave its box
};

// What tells curves apart beside their colour.
enum class EMarker { none, square, disc, triangle, diamond, cross };

enum class TextRenderingHint { SystemDefault = 0, AntiAlias = 4 };

// The sans-serif font of the user interface, sized in pixels so that text keeps its size beside the lines on
// every device and a measure taken without a window holds for all of them.
QFont DefaultFont();

class CGraphics {
  public:
    // The status of the last drawing call. For the curious: no drawing depends on it.
    enum Status { Ok = 0, GenericError = 1, InvalidParameter = 2 };

    // A scratch surface: measures text, draws nothing, needs no window (but a QGuiApplication).
    CGraphics();
    ~CGraphics();
    // Draws with `painter`, not owned: it must be active and outlive this object. Turns antialiasing of
    // shapes off: lines of one pixel are crisp and several times cheaper that way.
    explicit CGraphics(QPainter& painter);
    CGraphics(const CGraphics&) = delete;
    CGraphics& operator=(const CGraphics&) = delete;

    // The colours of what is drawn; light at the start.
    const STheme& GetTheme() const { return *m_theme; }
    // `theme` must outlive the object.
    void SetTheme(const STheme& theme) { m_theme = &theme; }

    // The world transform, to be saved and put back around a translation.
    QTransform GetTransform() const;
    void SetTransform(const QTransform& transform);
    void Translate(float dx, float dy);

    // Replaces whatever clip there is / takes any clip off.
    void SetClipRect(const SRect& rect);
    void ResetClip();

    TextRenderingHint GetTextRenderingHint() const { return m_textHint; }
    void SetTextRenderingHint(TextRenderingHint hint);

    void DrawLine(const QPen& pen, SPoint from, SPoint to);
    // A polyline. A point that is not finite breaks it in two; one by itself is a dot.
    void DrawLines(const QPen& pen, std::span<const SPoint> points);
    // A cardinal spline of tension 0.5 through the points; broken as above.
    void DrawCurve(const QPen& pen, std::span<const SPoint> points);
    // One polygon, alternate fill mode. Fewer than three points, or one that is not finite: nothing is drawn.
    void FillPolygon(const QBrush& brush, std::span<const SPoint> points);
    // A polyline, and over it the band of buckets that reach `halfWidth` to both sides: the same picture as
    // DrawLines and FillPolygon make, in one pass over the pixels. Both may be empty. False, and nothing is
    // drawn, for all but a clipped QImage, an opaque solid pen of a few pixels, and buckets in the order of
    // x.
    bool DrawOnPixels(const QPen& pen, std::span<const SPoint> points, Colour band,
                      std::span<const SBucket> buckets, float halfWidth);
    void FillRectangle(const QBrush& brush, const SRect& rect);
    void DrawRectangle(const QPen& pen, const SRect& rect);

    // A shape of some seven pixels about `centre`, filled, with an edge.
    void DrawMarker(EMarker marker, SPoint centre, Colour fill, Colour edge);

    // One line of text (UTF-8) placed about `anchor`: Near begins there, Center is centred on it, Far ends
    // there.
    void DrawString(std::string_view text, const QFont& font, SPoint anchor, const SStringFormat& format,
                    Colour colour);
    // Text broken into lines at the width of `box`, between words where it can. The first line is always
    // drawn.
    void DrawString(std::string_view text, const QFont& font, const SRect& box, const SStringFormat& format,
                    Colour colour);
    // The rectangle that DrawString of the same arguments covers.
    SRect MeasureString(std::string_view text, const QFont& font, SPoint anchor,
                        const SStringFormat& format) const;
    SRect MeasureString(std::string_view text, const QFont& font, const SRect& box,
                        const SStringFormat& format) const;
    // The distance of two lines of text, in pixels.
    float GetFontHeight(const QFont& font) const;

    Status GetLastStatus() const { return m_status; }

  private:
    bool Begin(bool drawable);
    // What can be seen, and `margin` pixels about it, in the present coordinates.
    SRect Sight(float margin) const;
    bool FillColumns(const QBrush& brush, std::span<const SPoint> points);
    // The picture whose pixels may be written to; null for any other device, or a painter with effects.
    QImage* FindPicture() const;
    void FillPixels(const QBrush& brush, std::vector<QRect>& rects);
    bool FillStraightLine(const QPen& pen, SPoint from, SPoint to);
    QPen DevicePen(const QPen& pen) const;
    QPen ThinPen(const QPen& pen, std::size_t pointCount);
    template <class Stroke>
    void StrokeThinly(Stroke&& stroke);
    void DrawDot(QPointF point);
    void DrawPolyline();

    QPainter* m_painter = nullptr; // not owned
    const STheme* m_theme = &kLightTheme;
    bool m_clipped = false;
    SRect m_clip;
    QTransform m_clipTransform; // the one under which the clip was set
    TextRenderingHint m_textHint = TextRenderingHint::SystemDefault;
    Status m_status = Ok;
    std::vector<QPointF> m_line;              // reused by every polyline of a paint
    std::vector<QPointF> m_strokes;           // offsets of the further strokes of a polyline
    std::unique_ptr<CPixelColumns> m_columns; // reused by every curve of a paint
    std::vector<SPoint> m_devicePoints;
    std::vector<SBucket> m_deviceBuckets;
};

} // namespace Outils_Plot2D
