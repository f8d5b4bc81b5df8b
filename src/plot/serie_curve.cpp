#include "plot/serie_curve.h"

#include "plot/clipping.h"
#include "plot/projection.h"

#include <algorithm>
#include <cmath>

namespace Outils_Plot2D {

namespace {

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
        if (const CPlot2DDataSource* provisional = source->GetProvisional())
            DrawProvisional(graphics, *provisional);
        Project(*source);
        DrawLineAndBand(graphics);
        if (GetMarker() != EMarker::none) DrawMarkers(graphics);
    }
    graphics.ResetClip();
}

// A pixel of the device wide, whatever its density. Under the exact points, which take its place.
void CPlot2DSerieCurve::DrawProvisional(CGraphics& graphics, const CPlot2DDataSource& source) {
    Project(source);
    const CPlot2DPen pen(graphics.GetTheme().Pale(m_pen.GetColor()), 0);
    if (!graphics.DrawOnPixels(pen.GetNative(), m_screenPoints, 0, {}, 0))
        graphics.DrawLines(pen.GetNative(), m_screenPoints);
}

void CPlot2DSerieCurve::DrawLineAndBand(CGraphics& graphics) {
    const STheme& theme = graphics.GetTheme();
    const CPlot2DPen pen(theme.OnGround(m_pen.GetColor()), m_pen.GetWidth(), GetLineStyle());
    const CPlot2DSolidBrush brush(theme.OnGround(m_brush.GetColor()));
    std::span<const SPoint> line = m_screenPoints;
    if (GetPlot().GetSettings().drawCurve) {
        graphics.DrawCurve(pen.GetNative(), line);
        line = {};
    }
    if (graphics.DrawOnPixels(pen.GetNative(), line, brush.GetColor(), m_buckets, m_halfWidth)) return;
    graphics.DrawLines(pen.GetNative(), line);
    DrawBands(graphics, brush);
}

// Each band goes along its minima and comes back along its maxima.
void CPlot2DSerieCurve::DrawBands(CGraphics& graphics, const CPlot2DSolidBrush& brush) {
    const auto isSound = [](const SBucket& bucket) {
        return IsFinite(bucket.minimum) && IsFinite(bucket.maximum);
    };
    for (auto first = m_buckets.begin(); first != m_buckets.end();) {
        const auto end = std::find_if_not(first, m_buckets.end(), isSound);
        m_bandPoints.clear();
        for (auto bucket = first; bucket != end; ++bucket) {
            const SPoint at = bucket->minimum;
            m_bandPoints.insert(m_bandPoints.end(), {{at.x - m_halfWidth, at.y}, {at.x + m_halfWidth, at.y}});
        }
        for (auto bucket = end; bucket != first;) {
            const SPoint at = (--bucket)->maximum;
            m_bandPoints.insert(m_bandPoints.end(), {{at.x + m_halfWidth, at.y}, {at.x - m_halfWidth, at.y}});
        }
        if (!m_bandPoints.empty()) graphics.FillPolygon(brush.GetNative(), m_bandPoints);
        first = std::find_if(end, m_buckets.end(), isSound);
    }
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
    m_halfWidth = project.HalfPeriod(source.GetPeriod());
    const std::uint32_t count = source.GetCount();
    const bool extrema = source.HasExtremum();
    m_screenPoints.clear();
    m_buckets.clear();
    double x = 0, y = 0, x2 = 0, y2 = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (source.GetPoint(i, x, y)) m_screenPoints.push_back(project(x, y));
        if (extrema && source.GetMinimum(i, x, y) && source.GetMaximum(i, x2, y2))
            m_buckets.push_back({project(x, y), project(x2, y2)});
    }
}

} // namespace Outils_Plot2D
