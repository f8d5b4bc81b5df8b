#include "graph/plan_picture.h"

#include "foundation/texts.h"
#include "plot/pens.h"
#include "plot/settings.h"
#include "xpf/layout.h"

#include <QPainter>

#include <array>
#include <cmath>
#include <numbers>

namespace Presentation_Tarvel_Graphics {

using namespace Outils_Plot2D;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr double kTickPixels = 90; // at least between two lines of the grid
constexpr float kMark = 3;         // pixels, half of a mark
constexpr float kCursor = 8;       // pixels, half of the cross at the cursor
constexpr float kPad = 6;          // pixels about texts
constexpr float kSample = 18;      // pixels, of a track in the legend
constexpr int kEllipsePoints = 72;
constexpr float kShownWidth = 2, kPaleWidth = 1;

// One picture at work.
class CPlanPainter {
  public:
    CPlanPainter(const CTrvPlan& plan, const SPlanScale& scale, CGraphics& graphics, const SPlanLook& look)
        : m_plan(plan), m_scale(scale), m_graphics(graphics), m_look(look), m_font(DefaultFont()) {}

    void Draw() {
        const SRect all{0, 0, m_scale.size.width, m_scale.size.height};
        m_graphics.FillRectangle(QBrush(ToNative(m_look.ground)), all);
        if (const std::string notice = m_plan.GetNotice(); !notice.empty()) {
            const SStringFormat format{StringAlignment::Center, StringAlignment::Center, StringTrimming::None,
                                       true};
            const SRect room{kPad, kPad, all.width - 2 * kPad, all.height - 2 * kPad};
            m_graphics.DrawString(notice, m_font, room, format, m_look.text);
            return;
        }
        m_graphics.SetClipRect(all);
        DrawGrid();
        const SGeoBox seen = m_plan.GetSeen();
        // The result lies on top.
        for (auto track = m_plan.GetTracks().rbegin(); track != m_plan.GetTracks().rend(); ++track)
            if (const STrack* drawn = track->GetBest(seen)) DrawTrack(*track, *drawn);
        DrawCursors();
        DrawLegend();
        m_graphics.ResetClip();
    }

  private:
    Colour ColourOf(const SPlanTrack& track) const {
        return kCurvePalette[track.colour % kCurvePalette.size()];
    }
    float LineHeight() const { return m_graphics.GetFontHeight(m_font); }

    // 1, 2 or 5 times a power of ten metres in the unit shown.
    double ChooseStep(const CFieldText& text) const {
        const double unit = text.GetScale();
        const double least = kTickPixels * m_scale.metresPerPixel * unit;
        const double power = std::pow(10.0, std::floor(std::log10(least)));
        for (const double factor : {1.0, 2.0, 5.0})
            if (factor * power >= least) return factor * power / unit;
        return 10 * power / unit;
    }

    void DrawGrid() {
        const CFieldText text(m_plan.GetAdaptors(), Persistance_Xpf::natureDistance);
        const double step = ChooseStep(text);
        const CPlot2DPen pen(m_look.grid);
        const SPlace low = m_scale.ToPlace({0, m_scale.size.height});
        const SPlace high = m_scale.ToPlace({m_scale.size.width, 0});
        const float bottom = m_scale.size.height - LineHeight() - kPad;
        for (double east = std::ceil(low.east / step); east * step <= high.east; ++east) {
            const float x = m_scale.ToPixel({east * step, 0}).x;
            m_graphics.DrawLine(pen.GetNative(), {x, 0}, {x, m_scale.size.height});
            m_graphics.DrawString(text.Format(east * step), m_font, SPoint{x + 2, bottom}, {}, m_look.text);
        }
        for (double north = std::ceil(low.north / step); north * step <= high.north; ++north) {
            const float y = m_scale.ToPixel({0, north * step}).y;
            m_graphics.DrawLine(pen.GetNative(), {0, y}, {m_scale.size.width, y});
            // The names of the axes take the corners.
            if (y > 2 * LineHeight() && y < bottom - LineHeight())
                m_graphics.DrawString(text.Format(north * step), m_font, SPoint{kPad, y - LineHeight()}, {},
                                      m_look.text);
        }
        m_graphics.DrawString(GetText(EText::planNorth), m_font, SPoint{kPad, kPad}, {}, m_look.text);
        const SStringFormat far{StringAlignment::Far, StringAlignment::Near, StringTrimming::None, true};
        m_graphics.DrawString(GetText(EText::planEast), m_font,
                              SPoint{m_scale.size.width - kPad, bottom - LineHeight()}, far, m_look.text);
    }

    bool IsShown(const SPlanTrack& track, const STrackPoint& point) const {
        const SPeriod period = m_plan.GetPeriod();
        const auto date = point.date + track.origin;
        return period.IsEmpty() || (date >= period.start && date <= period.end);
    }

    void DrawTrack(const SPlanTrack& track, const STrack& drawn) {
        const CPlot2DPen shown(ColourOf(track), kShownWidth), pale(m_look.pale, kPaleWidth);
        if (track.mark != ETrackMark::line) {
            const CPlot2DPen thin(ColourOf(track), kPaleWidth);
            const SRect seen{-kMark, -kMark, m_scale.size.width + 2 * kMark, m_scale.size.height + 2 * kMark};
            for (const STrackPoint& point : drawn.points)
                if (const SPoint at = m_scale.ToPixel(point.place); seen.Contains(at))
                    DrawMark(track.mark, at, IsShown(track, point) ? thin : pale);
            return;
        }
        // First what lies outside the shown period, so that the other is over it.
        for (const bool wanted : {false, true}) {
            std::vector<SPoint> line;
            const auto flush = [&] {
                if (line.size() > 1) m_graphics.DrawLines((wanted ? shown : pale).GetNative(), line);
                line.clear();
            };
            for (std::size_t i = 0; i < drawn.points.size(); ++i) {
                const STrackPoint& point = drawn.points[i];
                if (point.isBreak) flush();
                // The piece from one point to the next belongs to the period of either.
                const bool isOn = IsShown(track, point) == wanted;
                if (isOn || !line.empty()) line.push_back(m_scale.ToPixel(point.place));
                if (!isOn) flush();
            }
            flush();
        }
    }

    void DrawMark(ETrackMark mark, SPoint at, const CPlot2DPen& pen) {
        const auto line = [&](float x0, float y0, float x1, float y1) {
            m_graphics.DrawLine(pen.GetNative(), {at.x + x0 * kMark, at.y + y0 * kMark},
                                {at.x + x1 * kMark, at.y + y1 * kMark});
        };
        const auto ring = [&](std::initializer_list<SPoint> corners) {
            std::vector<SPoint> points;
            for (const SPoint corner : corners)
                points.push_back({at.x + corner.x * kMark, at.y + corner.y * kMark});
            points.push_back(points.front());
            m_graphics.DrawLines(pen.GetNative(), points);
        };
        switch (mark) {
        case ETrackMark::line: line(-1, 0, 1, 0); break;
        case ETrackMark::cross:
            line(-1, 0, 1, 0);
            line(0, -1, 0, 1);
            break;
        case ETrackMark::circle:
            ring({{1, 0},
                  {0.7f, 0.7f},
                  {0, 1},
                  {-0.7f, 0.7f},
                  {-1, 0},
                  {-0.7f, -0.7f},
                  {0, -1},
                  {0.7f, -0.7f}});
            break;
        case ETrackMark::square: ring({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}); break;
        case ETrackMark::triangle: ring({{0, -1}, {1, 1}, {-1, 1}}); break;
        case ETrackMark::diamond: ring({{0, -1.3f}, {1.3f, 0}, {0, 1.3f}, {-1.3f, 0}}); break;
        }
    }

    void DrawCursors() {
        const CPlot2DPen pen(m_look.cursor, kShownWidth);
        for (const SPlanCursor& cursor : m_plan.GetCursors()) {
            const SPoint at = m_scale.ToPixel(cursor.place);
            const float reach = cursor.track->mark == ETrackMark::line ? kCursor : kCursor / 2;
            m_graphics.DrawLine(pen.GetNative(), {at.x - reach, at.y}, {at.x + reach, at.y});
            m_graphics.DrawLine(pen.GetNative(), {at.x, at.y - reach}, {at.x, at.y + reach});
            if (!cursor.hasUncertainty) continue;
            std::vector<SPoint> ellipse;
            const double cosine = std::cos(cursor.ellipse.angle), sine = std::sin(cursor.ellipse.angle);
            for (int i = 0; i <= kEllipsePoints; ++i) {
                const double turn = 2 * std::numbers::pi * i / kEllipsePoints;
                const double major = cursor.ellipse.semiMajor * std::cos(turn);
                const double minor = cursor.ellipse.semiMinor * std::sin(turn);
                ellipse.push_back(m_scale.ToPixel({cursor.place.east + major * cosine - minor * sine,
                                                   cursor.place.north + major * sine + minor * cosine}));
            }
            m_graphics.DrawLines(CPlot2DPen(m_look.cursor).GetNative(), ellipse);
        }
    }

    // Which mark is which track, where the origin is, and the numbers at the cursor.
    void DrawLegend() {
        float y = kPad;
        const float x = m_scale.size.width - kPad;
        const SStringFormat far{StringAlignment::Far, StringAlignment::Near, StringTrimming::None, true};
        const auto write = [&](const std::string& text) {
            const SRect place = m_graphics.MeasureString(text, m_font, SPoint{x, y}, far);
            m_graphics.FillRectangle(QBrush(ToNative(m_look.ground)), place);
            m_graphics.DrawString(text, m_font, SPoint{x, y}, far, m_look.text);
            y += LineHeight();
            return place;
        };
        for (const SPlanTrack& track : m_plan.GetTracks()) {
            if (!track.whole || track.whole->points.empty()) continue;
            const auto text = track.whole->isCut ? EText::planCut : EText::planCount;
            const SRect place = write(FormatText(text, {track.name, std::to_string(track.whole->count)}));
            const SPoint at{place.x - kSample / 2 - kPad, place.y + place.height / 2};
            const CPlot2DPen pen(ColourOf(track), track.mark == ETrackMark::line ? kShownWidth : kPaleWidth);
            if (track.mark == ETrackMark::line)
                m_graphics.DrawLine(pen.GetNative(), {at.x - kSample / 2, at.y}, {at.x + kSample / 2, at.y});
            else
                DrawMark(track.mark, at, pen);
        }
        const auto& adaptors = m_plan.GetAdaptors();
        const CLocalFrame& frame = *m_plan.GetFrame();
        write(FormatText(
            EText::planOrigin,
            {CFieldText(adaptors, Persistance_Xpf::natureLatitude).Format(frame.GetLatitude()),
             CFieldText(adaptors, Persistance_Xpf::natureLongitude).Format(frame.GetLongitude())}));
        const CFieldText distance(adaptors, Persistance_Xpf::naturePositionStdDev);
        for (const SPlanCursor& cursor : m_plan.GetCursors()) {
            if (!cursor.hasUncertainty || cursor.track->mark != ETrackMark::line) continue;
            write(FormatText(EText::planDeviations,
                             {distance.Format(cursor.north), distance.Format(cursor.east)}));
            write(FormatText(EText::planEllipse, {distance.Format(cursor.ellipse.semiMajor),
                                                  distance.Format(cursor.ellipse.semiMinor)}));
        }
    }

    const CTrvPlan& m_plan;
    const SPlanScale& m_scale;
    CGraphics& m_graphics;
    const SPlanLook& m_look;
    const QFont m_font;
};

} // namespace

SPlanLook MakeDarkLook() { return {0xFF20242A, 0xFFE0E4EA, 0xFF3A404A, 0xFF66707E, 0xFFFF5050}; }

void DrawPlan(const CTrvPlan& plan, CGraphics& graphics, const SPlanLook& look) {
    CPlanPainter(plan, plan.GetScale(), graphics, look).Draw();
}

void DrawPlan(const CTrvPlan& plan, QPainter& painter, SSize size) {
    SPlanScale scale = plan.GetScale();
    if (!(size.width > 0) || !(size.height > 0) || !(scale.size.width > 0) || !(scale.size.height > 0))
        return;
    // All of what is seen.
    scale.metresPerPixel *=
        static_cast<double>(std::max(scale.size.width / size.width, scale.size.height / size.height));
    scale.size = size;
    CGraphics graphics(painter);
    CPlanPainter(plan, scale, graphics, {}).Draw();
}

} // namespace Presentation_Tarvel_Graphics
