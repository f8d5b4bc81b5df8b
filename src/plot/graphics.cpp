#include "plot/graphics.h"

#include "plot/clipping.h"
#include "plot/pens.h"
#include "plot/pixel_columns.h"
#include "plot/text_layout.h"

#include <QBrush>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace Outils_Plot2D {

namespace {

// Cut ends must lie out of sight with the width of the pen.
constexpr float kLineMargin = 64.0f;
// Shapes are moved to this distance rather than cut, far enough for what is seen of their edges to stay
// straight.
constexpr float kShapeMargin = 4096.0f;

// From here on a polyline is worth thinning, and up to this width in pixels its strokes are.
constexpr std::size_t kLongLine = 100;
constexpr int kWidestStrokes = 4;
constexpr double kWidestPen = 1000;

QPointF ToNative(SPoint point) { return {point.x, point.y}; }
QRectF ToNative(const SRect& rect) { return {rect.x, rect.y, rect.width, rect.height}; }

// The device is made of pixels whose rows and columns are those of the drawing.
bool IsPixelGrid(const QPainter& painter) {
    const QTransform toDevice = painter.deviceTransform();
    return painter.paintEngine()->type() == QPaintEngine::Raster && toDevice.type() <= QTransform::TxScale &&
           toDevice.isInvertible();
}

// The pixel painter hands shapes of a hundred rows and more to its threads. For a column a few pixels wide
// the handing over takes ten times the filling, so that tall ones are drawn in pieces.
constexpr int kPieceHeight = 64;
constexpr int kNarrow = 32;

void CutTallColumns(std::vector<QRect>& rects) {
    for (std::size_t i = 0; i < rects.size(); ++i) {
        const QRect rect = rects[i];
        if (rect.height() <= kPieceHeight || rect.width() > kNarrow) continue;
        rects[i].setHeight(kPieceHeight);
        rects.push_back(rect.adjusted(0, kPieceHeight, 0, 0)); // is cut in its turn
    }
}

// Control points of a cardinal spline lie along the chord of the neighbours, a third of the tension away.
constexpr double kSplineReach = 0.5 / 3.0;

void AddSpline(QPainterPath& path, std::span<const QPointF> points) {
    if (points.size() < 2) return;
    path.moveTo(points[0]);
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const QPointF before = points[i == 0 ? 0 : i - 1];
        const QPointF after = points[std::min(i + 2, points.size() - 1)];
        path.cubicTo(points[i] + (points[i + 1] - before) * kSplineReach,
                     points[i + 1] - (after - points[i]) * kSplineReach, points[i + 1]);
    }
}

} // namespace

QFont DefaultFont() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(QFontInfo(font).pixelSize(), 1));
    return font;
}

CGraphics::CGraphics() = default;

CGraphics::~CGraphics() = default;

CGraphics::CGraphics(QPainter& painter) : m_painter(&painter) {
    m_painter->setRenderHint(QPainter::Antialiasing, false);
}

bool CGraphics::Begin(bool drawable) {
    m_status = !m_painter || !m_painter->isActive() ? GenericError : drawable ? Ok : InvalidParameter;
    return m_status == Ok;
}

QTransform CGraphics::GetTransform() const { return m_painter ? m_painter->worldTransform() : QTransform(); }

void CGraphics::SetTransform(const QTransform& transform) {
    if (Begin(true)) m_painter->setWorldTransform(transform);
}

void CGraphics::Translate(float dx, float dy) {
    if (Begin(IsFinite(SPoint{dx, dy}))) m_painter->translate(dx, dy);
}

void CGraphics::SetClipRect(const SRect& rect) {
    if (!Begin(true)) return;
    m_clip = IsFinite(rect) ? ClampInto(rect, kEverything) : SRect{};
    m_clipTransform = m_painter->worldTransform();
    m_clipped = true;
    m_painter->setClipRect(ToNative(m_clip));
}

void CGraphics::ResetClip() {
    if (!Begin(true)) return;
    m_clipped = false;
    m_painter->setClipping(false);
}

SRect CGraphics::Sight(float margin) const {
    if (!m_clipped) return kEverything;
    // The SVG engine knows no clip: what it is given has to end where the clip does.
    if (m_painter->paintEngine()->type() == QPaintEngine::SVG) margin = 0;
    const QTransform now = m_painter->worldTransform();
    if (now == m_clipTransform) return Expand(m_clip, margin);
    const QRectF moved = (m_clipTransform * now.inverted()).mapRect(ToNative(m_clip));
    return Expand({static_cast<float>(moved.x()), static_cast<float>(moved.y()),
                   static_cast<float>(moved.width()), static_cast<float>(moved.height())},
                  margin);
}

void CGraphics::SetTextRenderingHint(TextRenderingHint hint) {
    m_textHint = hint;
    // The system's own rendering is antialiased as well; a painter begins that way.
    if (Begin(true)) m_painter->setRenderHint(QPainter::TextAntialiasing, true);
}

void CGraphics::DrawLine(const QPen& pen, SPoint from, SPoint to) {
    if (!Begin(IsFinite(from) && IsFinite(to)) || !ClipSegment(from, to, Sight(kLineMargin))) return;
    if (FillStraightLine(pen, from, to)) return;
    m_painter->setPen(DevicePen(pen));
    m_painter->drawLine(ToNative(from), ToNative(to));
}

// The pixel painter goes along a line pixel by pixel; a level or upright one is filled ten times faster. The
// lines of a grid are as long as the plot is wide.
bool CGraphics::FillStraightLine(const QPen& pen, SPoint from, SPoint to) {
    if (from.x != to.x && from.y != to.y) return false;
    if (pen.style() != Qt::SolidLine || !IsPixelGrid(*m_painter)) return false;
    const QPen even = DevicePen(pen);
    const QTransform toDevice = m_painter->deviceTransform();
    if (even.widthF() != 1 || (!even.isCosmetic() && toDevice.m11() != 1)) return false;
    const QPointF a = toDevice.map(ToNative(from)), b = toDevice.map(ToNative(to));
    QRect pixels = PixelsWithin(QRectF(a, b).normalized());
    if (from.y == to.y) {
        pixels.moveTop(static_cast<int>(std::floor(a.y())));
        pixels.setHeight(1);
    } else {
        pixels.moveLeft(static_cast<int>(std::floor(a.x())));
        pixels.setWidth(1);
    }
    std::vector<QRect> line = {pixels};
    FillPixels(pen.brush(), line);
    return true;
}

template <class Stroke>
void CGraphics::StrokeThinly(Stroke&& stroke) {
    stroke();
    for (const QPointF shift : m_strokes) {
        m_painter->translate(shift);
        stroke();
        m_painter->translate(-shift);
    }
}

// As wide as the pen. A line of no length would be nothing on some devices.
void CGraphics::DrawDot(QPointF point) {
    const QPen& pen = m_painter->pen();
    const double scale = pen.isCosmetic() ? std::fabs(m_painter->deviceTransform().m11()) : 1;
    const double width = std::max(pen.widthF(), 1.0) / (scale > 0 ? scale : 1);
    StrokeThinly([&] {
        m_painter->fillRect(QRectF(point - QPointF(width, width) / 2, QSizeF(width, width)), pen.brush());
    });
}

void CGraphics::DrawPolyline() {
    if (m_line.size() == 1) DrawDot(m_line.front());
    if (m_line.size() > 1)
        StrokeThinly([&] { m_painter->drawPolyline(m_line.data(), static_cast<int>(m_line.size())); });
    m_line.clear();
}

// At a scale of 1.5 a line would be one or two pixels wide as it happens to fall: there all are made equally
// wide.
QPen CGraphics::DevicePen(const QPen& pen) const {
    if (pen.isCosmetic() || !IsPixelGrid(*m_painter)) return pen;
    const double scale = std::fabs(m_painter->deviceTransform().m11());
    if (scale == 1) return pen;
    QPen even = pen;
    even.setCosmetic(true);
    even.setWidthF(std::max(std::round(std::min(pen.widthF() * scale, kWidestPen)), 1.0));
    return even;
}

// A line of several pixels costs the pixel painter tens of times one of a single pixel. A long polyline, as
// on a screen of double resolution, is therefore drawn a pixel wide, and again beside itself: `m_strokes`
// says where.
QPen CGraphics::ThinPen(const QPen& pen, std::size_t pointCount) {
    m_strokes.clear();
    const QPen even = DevicePen(pen);
    if (pointCount < kLongLine || even.widthF() > kWidestStrokes || !IsPixelGrid(*m_painter)) return even;
    const QTransform toDevice = m_painter->deviceTransform();
    for (int i = 1; i < static_cast<int>(std::lround(even.widthF())); ++i) {
        const int step = i % 2 ? (i + 1) / 2 : -i / 2;
        m_strokes.emplace_back(step / toDevice.m11(), 0);
        m_strokes.emplace_back(0, step / toDevice.m22());
    }
    QPen thin = even;
    thin.setWidth(0);
    if (pen.style() == Qt::CustomDashLine) { // as long as the wide pen would draw them
        auto dashes = even.dashPattern();
        for (double& dash : dashes) dash *= std::max(even.widthF(), 1.0);
        thin.setDashPattern(dashes);
    }
    return thin;
}

void CGraphics::DrawLines(const QPen& pen, std::span<const SPoint> points) {
    if (!Begin(!points.empty())) return;
    const SRect sight = Sight(kLineMargin);
    m_painter->setPen(ThinPen(pen, points.size()));
    m_line.clear();
    m_line.reserve(points.size());
    bool connected = false, wasInside = false;
    SPoint previous;
    for (const SPoint point : points) {
        const bool finite = IsFinite(point);
        const bool inside = finite && sight.Contains(point);
        if (!finite)
            DrawPolyline();
        else if (inside && (wasInside || !connected))
            m_line.push_back(ToNative(point));
        else if (connected) {
            SPoint from = previous, to = point;
            if (ClipSegment(from, to, sight)) {
                if (!wasInside) m_line.push_back(ToNative(from));
                m_line.push_back(ToNative(to));
            }
            if (!inside) DrawPolyline();
        }
        connected = finite;
        wasInside = inside;
        previous = point;
    }
    DrawPolyline();
}

void CGraphics::DrawCurve(const QPen& pen, std::span<const SPoint> points) {
    if (!Begin(points.size() > 1)) return;
    const SRect sight = Sight(kShapeMargin);
    QPainterPath path;
    m_line.clear();
    for (const SPoint point : points) {
        if (IsFinite(point)) {
            m_line.push_back(ToNative(ClampInto(point, sight)));
            continue;
        }
        AddSpline(path, m_line);
        m_line.clear();
    }
    AddSpline(path, m_line);
    const QPen thin = ThinPen(pen, points.size());
    StrokeThinly([&] { m_painter->strokePath(path, thin); });
}

void CGraphics::FillPolygon(const QBrush& brush, std::span<const SPoint> points) {
    const bool finite = std::all_of(points.begin(), points.end(), [](SPoint p) { return IsFinite(p); });
    if (!Begin(points.size() > 2 && finite) || FillColumns(brush, points)) return;
    const SRect sight = Sight(kShapeMargin);
    m_line.clear();
    for (const SPoint point : points) {
        const QPointF held = ToNative(ClampInto(point, sight));
        if (m_line.empty() || m_line.back() != held) m_line.push_back(held);
    }
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(brush);
    m_painter->drawPolygon(m_line.data(), static_cast<int>(m_line.size()), Qt::OddEvenFill);
    m_painter->setBrush(Qt::NoBrush);
}

// On devices made of pixels a polygon of thousands of edges is filled several times faster as columns; vector
// devices get the polygon itself, which is the smaller output.
bool CGraphics::FillColumns(const QBrush& brush, std::span<const SPoint> points) {
    if (!m_clipped || !IsPixelGrid(*m_painter)) return false;
    const QTransform toDevice = m_painter->deviceTransform();
    m_line.clear();
    for (const SPoint point : points)
        m_line.emplace_back(point.x * toDevice.m11() + toDevice.dx(),
                            point.y * toDevice.m22() + toDevice.dy());
    const QRect bounds = toDevice.mapRect(ToNative(Sight(0))).toAlignedRect();
    std::vector<QRect> rects;
    if (!PolygonToColumns(m_line, bounds, rects)) return false;
    FillPixels(brush, rects);
    return true;
}

// In pixels of the device.
void CGraphics::FillPixels(const QBrush& brush, std::vector<QRect>& rects) {
    CutTallColumns(rects);
    const QTransform toDevice = m_painter->deviceTransform(), world = m_painter->worldTransform();
    // Whatever is between the world and the device (pixel ratio, redirection) is undone by its inverse.
    m_painter->setWorldTransform((world.inverted() * toDevice).inverted());
    m_painter->setPen(Qt::NoPen);
    m_painter->setBrush(brush);
    m_painter->drawRects(rects.data(), static_cast<int>(rects.size()));
    m_painter->setBrush(Qt::NoBrush);
    m_painter->setWorldTransform(world);
}

QImage* CGraphics::FindPicture() const {
    QPaintDevice* device = m_painter->device();
    if (!m_clipped || device->devType() != QInternal::Image || !IsPixelGrid(*m_painter) ||
        m_painter->opacity() != 1 || m_painter->compositionMode() != QPainter::CompositionMode_SourceOver)
        return nullptr;
    auto* picture = static_cast<QImage*>(device);
    return CPixelColumns::CanBlend(*picture) ? picture : nullptr;
}

bool CGraphics::DrawOnPixels(const QPen& pen, std::span<const SPoint> points, Colour band,
                             std::span<const SBucket> buckets, float halfWidth) {
    if (!Begin(true)) return false;
    QImage* picture = FindPicture();
    const QTransform toDevice = m_painter->deviceTransform();
    const double scale = toDevice.m11();
    if (!picture || !(scale > 0 && toDevice.m22() > 0)) return false;
    const double width = std::max(std::round(pen.widthF() * (pen.isCosmetic() ? 1 : scale)), 1.0);
    const bool isPlain = pen.style() == Qt::SolidLine && pen.brush().style() == Qt::SolidPattern &&
                         pen.color().alpha() == 255 && width <= kWidestStrokes;
    if (!points.empty() && !isPlain) return false;

    const auto map = [dx = static_cast<float>(toDevice.dx()), dy = static_cast<float>(toDevice.dy()),
                      sx = static_cast<float>(scale), sy = static_cast<float>(toDevice.m22())](SPoint point) {
        return SPoint{point.x * sx + dx, point.y * sy + dy};
    };
    m_devicePoints.resize(points.size());
    std::ranges::transform(points, m_devicePoints.begin(), map);
    m_deviceBuckets.resize(buckets.size());
    std::ranges::transform(buckets, m_deviceBuckets.begin(), [&](const SBucket& bucket) {
        return SBucket{map(bucket.minimum), map(bucket.maximum)};
    });
    if (!m_columns) m_columns = std::make_unique<CPixelColumns>();
    m_columns->Begin(PixelsWithin(toDevice.mapRect(ToNative(Sight(0)))) & picture->rect());
    if (!m_columns->AddBand(m_deviceBuckets, halfWidth * static_cast<float>(scale))) return false;
    m_columns->AddLine(m_devicePoints, static_cast<int>(width));
    m_columns->Blend(*picture, pen.color().rgba(), band);
    return true;
}

void CGraphics::FillRectangle(const QBrush& brush, const SRect& rect) {
    if (Begin(IsFinite(rect))) m_painter->fillRect(ToNative(ClampInto(rect, Sight(kShapeMargin))), brush);
}

void CGraphics::DrawRectangle(const QPen& pen, const SRect& rect) {
    if (!Begin(IsFinite(rect))) return;
    m_painter->setPen(DevicePen(pen));
    m_painter->setBrush(Qt::NoBrush);
    m_painter->drawRect(ToNative(ClampInto(rect, Sight(kShapeMargin))));
}

void CGraphics::DrawMarker(EMarker marker, SPoint centre, Colour fill, Colour edge) {
    if (!Begin(IsFinite(centre) && marker != EMarker::none) || !Sight(kLineMargin).Contains(centre)) return;
    constexpr double kReach = 3.5;
    const auto at = [&](double x, double y) {
        return QPointF(static_cast<double>(centre.x) + x * kReach,
                       static_cast<double>(centre.y) + y * kReach);
    };
    m_painter->setPen(ToNative(edge));
    m_painter->setBrush(ToNative(fill));
    switch (marker) {
    case EMarker::square: m_painter->drawRect(QRectF(at(-0.9, -0.9), at(0.9, 0.9))); break;
    case EMarker::disc: m_painter->drawEllipse(at(0, 0), kReach, kReach); break;
    case EMarker::triangle:
        m_painter->drawPolygon(QPolygonF{at(0, -1.2), at(1.1, 0.9), at(-1.1, 0.9)});
        break;
    case EMarker::diamond:
        m_painter->drawPolygon(QPolygonF{at(0, -1.3), at(1.3, 0), at(0, 1.3), at(-1.3, 0)});
        break;
    case EMarker::cross:
        m_painter->drawLine(at(-1, -1), at(1, 1));
        m_painter->drawLine(at(-1, 1), at(1, -1));
        break;
    case EMarker::none: break;
    }
    m_painter->setBrush(Qt::NoBrush);
}

void CGraphics::DrawString(std::string_view text, const QFont& font, SPoint anchor,
                           const SStringFormat& format, Colour colour) {
    if (!Begin(IsFinite(anchor) && kEverything.Contains(anchor))) return;
    m_painter->setFont(font);
    m_painter->setPen(ToNative(colour));
    GetTextLayout(text, font).Draw(*m_painter, {anchor.x, anchor.y, 0, 0}, format);
}

void CGraphics::DrawString(std::string_view text, const QFont& font, const SRect& box,
                           const SStringFormat& format, Colour colour) {
    if (!Begin(IsFinite(box) && kEverything.Contains({box.x, box.y}))) return;
    m_painter->save();
    if (!format.noClip)
        m_painter->setClipRect(QRectF(box.x, box.y, box.width, box.height), Qt::IntersectClip);
    m_painter->setFont(font);
    m_painter->setPen(ToNative(colour));
    GetTextLayout(text, font, box, format.trimming).Draw(*m_painter, box, format);
    m_painter->restore();
}

SRect CGraphics::MeasureString(std::string_view text, const QFont& font, SPoint anchor,
                               const SStringFormat& format) const {
    return GetTextLayout(text, font).GetBounds({anchor.x, anchor.y, 0, 0}, format);
}

SRect CGraphics::MeasureString(std::string_view text, const QFont& font, const SRect& box,
                               const SStringFormat& format) const {
    return GetTextLayout(text, font, box, format.trimming).GetBounds(box, format);
}

float CGraphics::GetFontHeight(const QFont& font) const {
    return static_cast<float>(QFontMetricsF(font).lineSpacing());
}

} // namespace Outils_Plot2D
