#include "plot/serie_curve.h"

#include "plot/clipping.h"
#include "plot/projection.h"

#include <algorithm>
#include <limits>

namespace Outils_Plot2D {

namespace {

constexpr SPoint kBreak = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::quiet_NaN()};
constexpr Colour kOpaqueMask = 0x00FFFFFF;

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
        if (GetPlot().GetSettings().drawCurve)
            graphics.DrawCurve(m_pen.GetNative(), m_screenPoints);
        else
            graphics.DrawLines(m_pen.GetNative(), m_screenPoints);
        for (const SBand& band : m_bands)
            graphics.FillPolygon(m_brush.GetNative(),
                                 std::span(m_bandPoints).subspan(band.first, band.count));
    }
    graphics.ResetClip();
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
