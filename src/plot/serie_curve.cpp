#include "plot/serie_curve.h"

#include "plot/clipping.h"
#include "plot/projection.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Outils_Plot2D {

namespace {

constexpr SPoint kBreak = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::quiet_NaN()};
constexpr Colour kOpaqueMask = 0x00FFFFFF;
constexpr float kMarkerDistance = 120; // pixels
constexpr float kMarkerKinds = 6;

} // namespace

CPlot2DSerieCurve::CPlot2DSerieCurve(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source,
                                     std::string name)
    : CPlot2DSerie(plot, std::move(source), std::move(name)),
      m_pen(plot.GetSettings().TakeColour()),
      m_brush(m_pen.GetColor()) {
    CPlot2DSerieCurve::SetColor(m_pen.GetColor());
}

void CPlot2DSerieCurve::SetColor(Colour colour) {
    CPlot2DSerie::SetColor(colour);
    m_pen.SetColor(colour);
    const Colour alpha = GetPlot().GetSettings().extremumTransparency;
    m_brush.SetColor((colour & kOpaqueMask) | (alpha << 24));
}

void CPlot2DSerieCurve::Draw(CGraphics& graphics) {
    const CPlot2DDataSource* source = GetDataSource();
    graphics.SetClipRect(GetPlot().GetPlottingArea().GetRect());
    if (source && CProjection(GetPlot()).IsValid()) {
        Project(*source);
        const STheme& theme = graphics.GetTheme();
        const CPlot2DPen pen(theme.OnGround(m_pen.GetColor()), m_pen.GetWidth(), GetLineStyle());
        const CPlot2DSolidBrush brush(theme.OnGround(m_brush.GetColor()));
        if (GetPlot().GetSettings().drawCurve)
            graphics.DrawCurve(pen.GetNative(), m_screenPoints);
        else
            graphics.DrawLines(pen.GetNative(), m_screenPoints);
        for (const SBand& band : m_bands) DrawBand(graphics, brush, band);
        if (GetMarker() != EMarker::none) DrawMarkers(graphics);
    }
    graphics.ResetClip();
}

void CPlot2DSerieCurve::DrawBand(CGraphics& graphics, const CPlot2DSolidBrush& brush, const SBand& band) {
    const auto points = std::span(m_bandPoints).subspan(band.first, band.count);
    const std::size_t buckets = points.size() / 4;
    m_buckets.clear();
    for (std::size_t i = 0; i < buckets; ++i) {
        const SPoint low = points[2 * i], lowEnd = points[2 * i + 1],
                     high = points[points.size() - 1 - 2 * i];
        // Of minimum and maximum at two times the outline is no rectangle.
        if (low.x != high.x) return graphics.FillPolygon(brush.GetNative(), points);
        m_buckets.push_back({low.x, std::min(low.y, high.y), lowEnd.x - low.x, std::fabs(low.y - high.y)});
    }
    if (!graphics.FillBuckets(brush.GetNative(), m_buckets)) graphics.FillPolygon(brush.GetNative(), points);
}

// At places of the window and not of the data, each kind at its own, so that curves that agree show all of
// theirs.
void CPlot2DSerieCurve::DrawMarkers(CGraphics& graphics) {
    const float offset = kMarkerDistance * static_cast<float>(GetMarker()) / kMarkerKinds;
    float next = GetPlot().GetPlottingArea().GetRect().x + offset;
    for (const SPoint& point : m_screenPoints) {
        if (!(point.x >= next)) continue;
        graphics.DrawMarker(GetMarker(), point, graphics.GetTheme().OnGround(GetColor()),
                            graphics.GetTheme().ground);
        next += kMarkerDistance * (std::floor((point.x - next) / kMarkerDistance) + 1);
    }
}

// Buckets that the source has no point for are passed over; what has no place on the screen leaves a gap.
void CPlot2DSerieCurve::Project(const CPlot2DDataSource& source) {
    const CProjection project(GetPlot());
    const float halfWidth = project.HalfPeriod(source.GetPeriod());
    const std::uint32_t count = source.GetCount();
    const bool extrema = source.HasExtremum();
    m_screenPoints.clear();
    m_bandPoints.clear();
    m_upperEdge.clear();
    m_bands.clear();
    double x = 0, y = 0, x2 = 0, y2 = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (source.GetPoint(i, x, y)) {
            const SPoint point = project(x, y);
            m_screenPoints.push_back(IsFinite(point) ? point : kBreak);
        }
        if (extrema && source.GetMinimum(i, x, y) && source.GetMaximum(i, x2, y2))
            AddBucket(project(x, y), project(x2, y2), halfWidth);
    }
    CloseBand();
}

void CPlot2DSerieCurve::AddBucket(SPoint minimum, SPoint maximum, float halfWidth) {
    if (!IsFinite(minimum) || !IsFinite(maximum)) {
        CloseBand();
        return;
    }
    if (m_upperEdge.empty()) m_bands.push_back({m_bandPoints.size(), 0});
    m_bandPoints.push_back({minimum.x - halfWidth, minimum.y});
    m_bandPoints.push_back({minimum.x + halfWidth, minimum.y});
    m_upperEdge.push_back({maximum.x - halfWidth, maximum.y});
    m_upperEdge.push_back({maximum.x + halfWidth, maximum.y});
}

// The band comes back along its maxima.
void CPlot2DSerieCurve::CloseBand() {
    if (m_upperEdge.empty()) return;
    m_bandPoints.insert(m_bandPoints.end(), m_upperEdge.rbegin(), m_upperEdge.rend());
    m_bands.back().count = m_bandPoints.size() - m_bands.back().first;
    m_upperEdge.clear();
}

} // namespace Outils_Plot2D
