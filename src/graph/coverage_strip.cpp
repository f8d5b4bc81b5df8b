#include "graph/coverage_strip.h"

#include "foundation/texts.h"
#include "graph/stack_picture.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Plot2D::CPlot2DPen;
using Outils_Plot2D::CPlot2DSolidBrush;
using Outils_Plot2D::SStringFormat;
using Outils_Plot2D::StringAlignment;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr float kRowHeight = 14;
constexpr float kBarHeight = 6;
constexpr float kPadding = 3;
constexpr float kReach = 4; // pixels from a mark at which it is hit
constexpr Colour kBar = 0xFF4682B4;
constexpr Colour kJump = 0xFFD55E00;
constexpr float kJumpReach = 4;

// Times on the strip, which has the edges of the plotting areas.
class CAxis {
  public:
    explicit CAxis(const CTrv1DGraphStack& stack) {
        const auto shown = stack.GetShown();
        if (shown.empty() || !stack.HasPeriod()) return;
        m_scale = &shown.front()->GetTimeScale();
        m_area = shown.front()->GetPlottingRect();
    }
    bool IsValid() const { return m_scale && m_area.width > 0; }
    float ToX(CDateTimeSpan time) const {
        const double percent = std::clamp(m_scale->ToPercent(time), -1.0, 101.0);
        return std::clamp(m_area.x + m_scale->ToPixel(percent, m_area.width), m_area.x, m_area.Right());
    }
    const SRect& GetArea() const { return m_area; }

  private:
    const CTrv1DGraphSimulationTimeScale* m_scale = nullptr;
    SRect m_area;
};

// The stretches between the gaps.
template <class Visitor>
void ForEachStretch(const SCoverage& coverage, Visitor&& visit) {
    CDateTimeSpan from = coverage.extent->start;
    for (const SPeriod& gap : coverage.gaps) {
        visit(SPeriod{from, gap.start});
        from = gap.end;
    }
    visit(SPeriod{from, coverage.extent->end});
}

} // namespace

float GetStripHeight(const CTrv1DCoverage& coverage) {
    const std::size_t rows = coverage.GetFiles().size();
    return rows == 0 ? 0 : static_cast<float>(rows) * kRowHeight + 2 * kPadding;
}

void DrawStrip(const CTrv1DCoverage& coverage, const CTrv1DGraphStack& stack, CGraphics& graphics,
               const SRect& rect) {
    const CAxis axis(stack);
    const auto& theme = graphics.GetTheme();
    CPlot2DSolidBrush(theme.titleGround).Fill(graphics, rect);
    if (!axis.IsValid()) return;
    const CPlot2DSolidBrush bar(theme.OnGround(kBar));
    const QFont& font = stack.GetShown().front()->GetPlot().GetVerticalAxis().GetFont();
    SStringFormat format;
    format.align = StringAlignment::Far;
    format.lineAlign = StringAlignment::Center;
    float middle = rect.y + kPadding + kRowHeight / 2;
    for (const auto& file : coverage.GetFiles()) {
        graphics.SetClipRect({rect.x, rect.y, axis.GetArea().x - rect.x - kPadding, rect.height});
        graphics.DrawString(file.name, font, SPoint{axis.GetArea().x - 2 * kPadding, middle}, format,
                            theme.text);
        graphics.ResetClip();
        if (!file.coverage.extent) {
            SStringFormat notice;
            notice.lineAlign = StringAlignment::Center;
            graphics.DrawString(GetText(file.known ? EText::noData : EText::loading), font,
                                SPoint{axis.GetArea().x + kPadding, middle}, notice, theme.notice);
        } else {
            ForEachStretch(file.coverage, [&](const SPeriod& period) {
                const float left = axis.ToX(period.start), right = axis.ToX(period.end);
                if (right > left || (left > axis.GetArea().x && left < axis.GetArea().Right()))
                    bar.Fill(graphics,
                             {left, middle - kBarHeight / 2, std::max(right - left, 1.0f), kBarHeight});
            });
            for (const SClockJump& jump : file.coverage.jumps) {
                const float x = axis.ToX(jump.at);
                if (x > axis.GetArea().x && x < axis.GetArea().Right())
                    graphics.DrawMarker(Outils_Plot2D::EMarker::diamond, {x, middle}, kJump, theme.text);
            }
        }
        middle += kRowHeight;
    }
}

std::optional<SStripHit> HitStrip(const CTrv1DCoverage& coverage, const CTrv1DGraphStack& stack,
                                  const SRect& rect, SPoint point) {
    const CAxis axis(stack);
    const float row = std::floor((point.y - rect.y - kPadding) / kRowHeight);
    if (!axis.IsValid() || !rect.Contains(point) || row < 0 ||
        row >= static_cast<float>(coverage.GetFiles().size()))
        return {};
    const auto& file = coverage.GetFiles()[static_cast<std::size_t>(row)];
    const auto& time = stack.GetTimeText();
    if (!file.known) return SStripHit{file.name + ": " + std::string(GetText(EText::loading)), {}};
    if (!file.coverage.extent) return SStripHit{FormatText(EText::stripEmpty, {file.name}), {}};
    const auto format = [&](EText text, const SPeriod& period) {
        return FormatText(text, {file.name, time.Format(period.start), time.Format(period.end)});
    };
    for (const SClockJump& jump : file.coverage.jumps)
        if (std::abs(axis.ToX(jump.at) - point.x) < kJumpReach) {
            std::string by;
            time.span.ValueToText(jump.by, by);
            const CDateTimeSpan around((stack.GetPeriod().end - stack.GetPeriod().start).GetTicks() / 20);
            return SStripHit{FormatText(EText::stripJump, {file.name, by, time.Format(jump.at)}),
                             {jump.at - around, jump.at + around}};
        }
    for (const SPeriod& gap : file.coverage.gaps) {
        const float left = axis.ToX(gap.start), right = axis.ToX(gap.end);
        if (point.x < left - kReach / 2 || point.x > right + kReach / 2) continue;
        const CDateTimeSpan around((gap.end - gap.start).GetTicks() / 2);
        return SStripHit{format(EText::stripGap, gap), {gap.start - around, gap.end + around}};
    }
    return SStripHit{format(EText::stripData, *file.coverage.extent), *file.coverage.extent};
}

} // namespace Presentation_Tarvel_Graphics
