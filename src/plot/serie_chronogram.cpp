#include "plot/serie_chronogram.h"

#include "plot/clipping.h"
#include "plot/projection.h"

#include <algorithm>
#include <cmath>

namespace Outils_Plot2D {

namespace {

struct SBucket {
    float left;
    float right; // the left again where a bucket is drawn as a point in time
    float y;
    bool mixed;
};

// Several states within the bucket.
bool IsMixed(const CPlot2DDataSource& source, std::uint32_t index, bool extrema) {
    double x = 0, minimum = 0, maximum = 0;
    return extrema && source.GetMinimum(index, x, minimum) && source.GetMaximum(index, x, maximum) &&
           minimum != maximum;
}

// Appends to a polyline; a level stretch that goes on becomes longer instead of gaining a point.
void AddPoint(std::vector<SPoint>& line, SPoint point) {
    const std::size_t count = line.size();
    if (count > 1 && line[count - 2].y == point.y && line[count - 1].y == point.y &&
        line[count - 2].x <= line[count - 1].x && line[count - 1].x <= point.x)
        line.back() = point;
    else
        line.push_back(point);
}

SRect Block(float left, float right, float top, float bottom) {
    return {std::min(left, right), std::min(top, bottom), std::fabs(right - left), std::fabs(bottom - top)};
}

} // namespace

CPlot2DSerieChronogram::CPlot2DSerieChronogram(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source,
                                               std::string name)
    : CPlot2DSerie(plot, std::move(source), std::move(name)), m_pen(GetColor()), m_brush(GetColor()) {}

void CPlot2DSerieChronogram::SetColor(Colour colour) {
    CPlot2DSerie::SetColor(colour);
    m_pen.SetColor(colour);
    m_brush.SetColor(colour);
}

void CPlot2DSerieChronogram::Draw(CGraphics& graphics) {
    const CPlot2DDataSource* source = GetDataSource();
    graphics.SetClipRect(GetPlot().GetPlottingArea().GetRect());
    if (source && CProjection(GetPlot()).IsValid()) DrawBuckets(graphics, *source);
    graphics.ResetClip();
}

// The steps between two blocks are one polyline, drawn when a block begins: a paint takes a few calls, not
// three per bucket.
void CPlot2DSerieChronogram::DrawBuckets(CGraphics& graphics, const CPlot2DDataSource& source) {
    const CProjection project(GetPlot());
    const double halfPeriod = source.GetPeriod() * 0.5;
    const bool stairs = project.HalfPeriod(source.GetPeriod()) >= 0.5f;
    const bool extrema = source.HasExtremum();
    const float bottom = project.Y(project.GetVertical().GetMinimum());
    const float top = project.Y(project.GetVertical().GetMaximum());
    const std::uint32_t count = source.GetCount();

    m_steps.clear();
    bool any = false, previousMixed = false;
    float blockLeft = 0, lastRight = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        double x = 0, y = 0;
        if (!source.GetPoint(i, x, y)) continue;
        const SBucket bucket = {project.X(stairs ? x - halfPeriod : x),
                                project.X(stairs ? x + halfPeriod : x), project.Y(y),
                                IsMixed(source, i, extrema)};
        if (!IsFinite(SPoint{bucket.left, bucket.y}) || !std::isfinite(bucket.right)) continue;
        if (any && previousMixed && !bucket.mixed) {
            const SRect block = Block(blockLeft, bucket.left, top, bottom);
            graphics.FillRectangle(m_brush.GetNative(), block);
            graphics.DrawRectangle(m_pen.GetNative(), block);
        } else if (any && !previousMixed) {
            AddPoint(m_steps, {bucket.left, m_steps.back().y});
            AddPoint(m_steps, {bucket.left, bucket.y});
        }
        if (!bucket.mixed) {
            AddPoint(m_steps, {bucket.left, bucket.y});
            AddPoint(m_steps, {bucket.right, bucket.y});
        } else if (!previousMixed) {
            blockLeft = bucket.left;
            DrawSteps(graphics);
        }
        lastRight = bucket.right;
        previousMixed = bucket.mixed;
        any = true;
    }
    DrawSteps(graphics);
    if (!previousMixed) return;
    const SRect block = Block(blockLeft, lastRight, top, bottom);
    graphics.DrawRectangle(m_pen.GetNative(), block);
    graphics.FillRectangle(m_brush.GetNative(), block);
}

void CPlot2DSerieChronogram::DrawSteps(CGraphics& graphics) {
    graphics.DrawLines(m_pen.GetNative(), m_steps);
    m_steps.clear();
}

} // namespace Outils_Plot2D
