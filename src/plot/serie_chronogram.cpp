#include "plot/serie_chronogram.h"

#include "plot/clipping.h"
#include "plot/projection.h"

#include <algorithm>
#include <cmath>

namespace Outils_Plot2D {

namespace {

constexpr float kLeastLabelled = 20; // pixels: no label fits into less
constexpr float kLabelRoom = 4;      // on both sides of a label

struct SStateBucket {
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
    if (source && CProjection(GetPlot()).IsValid()) {
        const STheme& theme = graphics.GetTheme();
        if (const CPlot2DDataSource* provisional = source->GetProvisional())
            DrawBuckets(graphics, *provisional, theme.Pale(GetColor()));
        DrawBuckets(graphics, *source, theme.OnGround(GetColor()));
    }
    graphics.ResetClip();
}

// The steps between two blocks are one polyline, drawn when a block begins: a paint takes a few calls, not
// three per bucket.
void CPlot2DSerieChronogram::DrawBuckets(CGraphics& graphics, const CPlot2DDataSource& source,
                                         Colour colour) {
    const CProjection project(GetPlot());
    const CPlot2DSolidBrush brush(colour);
    m_drawnPen = CPlot2DPen(colour);
    const double halfPeriod = source.GetPeriod() * 0.5;
    const bool stairs = project.HalfPeriod(source.GetPeriod()) >= 0.5f;
    const bool extrema = source.HasExtremum();
    const float bottom = project.Y(project.GetVertical().GetMinimum());
    const float top = project.Y(project.GetVertical().GetMaximum());
    const std::uint32_t count = source.GetCount();

    m_steps.clear();
    m_segments.clear();
    bool any = false, previousMixed = false;
    float blockLeft = 0, lastRight = 0;
    for (std::uint32_t i = 0; i < count; ++i) {
        double x = 0, y = 0;
        if (!source.GetPoint(i, x, y)) continue;
        const SStateBucket bucket = {project.X(stairs ? x - halfPeriod : x),
                                     project.X(stairs ? x + halfPeriod : x), project.Y(y),
                                     IsMixed(source, i, extrema)};
        if (!IsFinite(SPoint{bucket.left, bucket.y}) || !std::isfinite(bucket.right)) continue;
        if (any && previousMixed && !bucket.mixed) {
            const SRect block = Block(blockLeft, bucket.left, top, bottom);
            graphics.FillRectangle(brush.GetNative(), block);
            graphics.DrawRectangle(m_drawnPen.GetNative(), block);
        } else if (any && !previousMixed) {
            AddPoint(m_steps, {bucket.left, m_steps.back().y});
            AddPoint(m_steps, {bucket.left, bucket.y});
        }
        if (!bucket.mixed) {
            AddToSegment(bucket.left, bucket.right, bucket.y, y, any && !previousMixed);
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
    if (previousMixed) {
        const SRect block = Block(blockLeft, lastRight, top, bottom);
        graphics.DrawRectangle(m_drawnPen.GetNative(), block);
        graphics.FillRectangle(brush.GetNative(), block);
    }
    DrawLabels(graphics);
}

void CPlot2DSerieChronogram::AddToSegment(float left, float right, float y, double state, bool goesOn) {
    if (goesOn && !m_segments.empty() && m_segments.back().state == state)
        m_segments.back().right = right;
    else
        m_segments.push_back({left, right, y, state});
}

// The state's text in every segment that is wide enough, over the line.
void CPlot2DSerieChronogram::DrawLabels(CGraphics& graphics) const {
    const auto& axis = GetPlot().GetVerticalAxis();
    if (!axis.GetFormater()) return;
    const SRect& area = GetPlot().GetPlottingArea().GetRect();
    SStringFormat format;
    format.align = format.lineAlign = StringAlignment::Center;
    for (const SSegment& segment : m_segments) {
        const float left = std::max(segment.left, area.x), right = std::min(segment.right, area.Right());
        if (!(right - left >= kLeastLabelled)) continue;
        const std::string label = axis.GetFormater()->Format(segment.state);
        const SPoint middle = {(left + right) / 2, segment.y};
        const SRect box = graphics.MeasureString(label, axis.GetFont(), middle, format);
        if (box.width + 2 * kLabelRoom > right - left) continue;
        CPlot2DSolidBrush(graphics.GetTheme().ground)
            .Fill(graphics, {box.x - 2, box.y, box.width + 4, box.height});
        graphics.DrawString(label, axis.GetFont(), middle, format, graphics.GetTheme().text);
    }
}

void CPlot2DSerieChronogram::DrawSteps(CGraphics& graphics) {
    graphics.DrawLines(m_drawnPen.GetNative(), m_steps);
    m_steps.clear();
}

} // namespace Outils_Plot2D
