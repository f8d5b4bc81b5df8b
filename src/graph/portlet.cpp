#include "graph/portlet.h"

#include <QFont>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <optional>

namespace Presentation_Tarvel_Graphics {

using namespace Outils_Plot2D;

namespace {

constexpr float kTitleHeight = 20;
constexpr float kPadding = 4;
constexpr float kLegendWidth = 150;
constexpr float kLabelGap = 6; // labels are three pixels from the plotting area; as much again to their left
constexpr float kTimeLabelGap = 14;
constexpr float kNoticeHeight = 14;
constexpr double kMiddle = 50;               // percent
constexpr std::int64_t kOnlyOne = 1'000'000; // ticks, more than any display has

// By the place of a curve in its graph: the first has none.
constexpr EMarker kMarkers[] = {EMarker::none,     EMarker::square,  EMarker::disc,
                                EMarker::triangle, EMarker::diamond, EMarker::cross};

// The numbers of ticks from one label to the next among which to choose.
constexpr int kStrides[] = {1, 2, 4, 5, 10, 20, 50, 100};

} // namespace

CTrv1DGraphPortlet::CTrv1DGraphPortlet(CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                                       const SGraphDescription& description)
    : m_plot(settings), m_graph(description.graph), m_title(description.title), m_timeText(timeText) {
    auto scale = std::make_unique<CTrv1DGraphSimulationTimeScale>(timeText);
    auto formater = std::make_unique<CTrv1DGraphTimeAdaptorFormater>(*scale, timeText);
    m_timeScale = scale.get();
    m_timeFormater = formater.get();
    m_plot.GetHorizontalAxis().SetScale(std::move(scale));
    m_plot.GetHorizontalAxis().SetFormater(std::move(formater));
    m_plot.GetLegend().SetValueLines(true);
    ApplyTheme(kLightTheme);
}

CTrv1DGraphPortlet::~CTrv1DGraphPortlet() = default;

namespace {

// Both are the same curve, whatever its colour, name or factor. Default curves have no saved one until they
// become part of the project.
bool IsSameCurve(const SCurveDescription& a, const SCurveDescription& b) {
    if (a.curve && b.curve) return a.curve == b.curve;
    return a.channel == b.channel && a.field == b.field;
}

bool ReadsTheSame(const SCurveDescription& a, const SCurveDescription& b) {
    return a.channel == b.channel && a.field == b.field && a.factor == b.factor;
}

} // namespace

void CTrv1DGraphPortlet::Update(const SGraphDescription& description) {
    m_graph = description.graph;
    m_title = description.title;
    RemoveSeries(description.curves);
    for (std::size_t i = 0; i < description.curves.size(); ++i) {
        const SCurveDescription& wanted = description.curves[i];
        if (i == m_entries.size()) m_entries.push_back({&AddSerie(MakeSource(wanted), wanted.name), wanted});
        UpdateSerie(m_entries[i], wanted);
        m_entries[i].serie->SetMarker(kMarkers[i % std::size(kMarkers)]);
    }
    OnDataChanged();
}

// Leaves a beginning of `wanted`, so that the rest can be appended in drawing order.
void CTrv1DGraphPortlet::RemoveSeries(const std::vector<SCurveDescription>& wanted) {
    const auto isUnwanted = [&](const SEntry& entry) {
        return std::none_of(wanted.begin(), wanted.end(),
                            [&](const SCurveDescription& curve) { return IsSameCurve(entry.shown, curve); });
    };
    const auto remove = [this](const SEntry& entry) { m_plot.RemoveSerie(entry.serie); };
    std::erase_if(m_entries, [&](const SEntry& entry) {
        const bool unwanted = isUnwanted(entry);
        if (unwanted) remove(entry);
        return unwanted;
    });
    std::size_t kept = 0;
    while (kept < std::min(m_entries.size(), wanted.size()) &&
           IsSameCurve(m_entries[kept].shown, wanted[kept]))
        ++kept;
    for (std::size_t i = kept; i < m_entries.size(); ++i) remove(m_entries[i]);
    m_entries.erase(m_entries.begin() + static_cast<std::ptrdiff_t>(kept), m_entries.end());
}

void CTrv1DGraphPortlet::UpdateSerie(SEntry& entry, const SCurveDescription& wanted) {
    if (!ReadsTheSame(entry.shown, wanted)) {
        auto source = MakeSource(wanted);
        if (wanted.channel == entry.shown.channel)
            if (const auto* former = static_cast<CTrv1DGraphDataSource*>(entry.serie->GetDataSource()))
                source->SetDataset(former->GetDataset(), former->GetPreview());
        entry.serie->SetDataSource(std::move(source));
    }
    entry.serie->SetName(wanted.name);
    entry.serie->SetColor(wanted.colour);
    entry.serie->SetLineStyle(wanted.style);
    entry.shown = wanted;
    if (m_timeScale->GetDisplayStart() < m_timeScale->GetDisplayEnd())
        static_cast<CTrv1DGraphDataSource*>(entry.serie->GetDataSource())
            ->SetDisplay(m_timeScale->GetDisplayStart(), m_timeScale->GetDisplayEnd());
}

std::vector<SCurveDescription> CTrv1DGraphPortlet::GetCurves() const {
    std::vector<SCurveDescription> curves;
    for (const SEntry& entry : m_entries) curves.push_back(entry.shown);
    return curves;
}

const SCurveDescription* CTrv1DGraphPortlet::FindShown(const CPlot2DSerie* serie) const {
    for (const SEntry& entry : m_entries)
        if (entry.serie == serie) return &entry.shown;
    return nullptr;
}

const Metier_Tarvel_Graphics::CTrv1DCurve* CTrv1DGraphPortlet::GetCurve(const CPlot2DSerie* serie) const {
    const SCurveDescription* shown = FindShown(serie);
    return shown ? shown->curve : nullptr;
}

void CTrv1DGraphPortlet::ForEachSource(const std::function<void(CTrv1DGraphDataSource&)>& visit) const {
    // Series of a portlet are made here, each with a source of this class.
    for (const auto& serie : m_plot.GetSeries())
        if (auto* source = static_cast<CTrv1DGraphDataSource*>(serie->GetDataSource())) visit(*source);
}

void CTrv1DGraphPortlet::ForEachVisible(
    const std::function<void(CPlot2DSerie&, CTrv1DGraphDataSource&)>& visit) const {
    for (const auto& serie : m_plot.GetSeries())
        if (auto* source = static_cast<CTrv1DGraphDataSource*>(serie->GetDataSource());
            source && serie->IsVisible())
            visit(*serie, *source);
}

void CTrv1DGraphPortlet::SetDisplay(CDateTimeSpan start, CDateTimeSpan end) {
    m_timeScale->SetDisplay(start, end);
    ForEachSource([&](CTrv1DGraphDataSource& source) { source.SetDisplay(start, end); });
    ChooseTimeLabels(CGraphics());
}

void CTrv1DGraphPortlet::OnDataChanged() {}

bool CTrv1DGraphPortlet::HasPoints() const {
    bool found = false;
    ForEachVisible([&found](const CPlot2DSerie&, const CTrv1DGraphDataSource& source) {
        found = found || source.HasPoints();
    });
    return found;
}

void CTrv1DGraphPortlet::Layout(const SRect& rect, float margin) {
    m_rect = rect;
    m_margin = margin;
    const CGraphics graphics;
    LayoutPlot(graphics);
    ChooseTimeLabels(graphics);
}

void CTrv1DGraphPortlet::LayoutPlot(const CGraphics& graphics) {
    const float width = m_rect.width - 2 * kPadding, height = m_rect.height - kTitleHeight - kPadding;
    m_plot.SetRect({m_rect.x + kPadding, m_rect.y + kTitleHeight, width - 1, height - 1});
    m_plot.GetLegend().SetRect({0, 2, kLegendWidth, height - 5});

    SRect area;
    area.height =
        std::max(1.0f, height - 1 - graphics.GetFontHeight(m_plot.GetHorizontalAxis().GetFont()) - 2);
    m_plot.GetPlottingArea().SetRect(area);
    // The ticks want the height, their labels make the margin, and that makes the width.
    ChooseVerticalTicks(graphics);
    m_wantedMargin = std::ceil(m_plot.GetVerticalAxis().MeasureLabels(graphics).width) + kLabelGap;
    const float margin = std::max(m_margin, m_wantedMargin);
    area.x = margin + (m_plot.IsLegendVisible() ? kLegendWidth : 0);
    area.width = std::max(1.0f, width - area.x - 3);
    m_plot.GetPlottingArea().SetRect(area);
    m_plottingRect = {area.x + m_plot.GetRect().x, area.y + m_plot.GetRect().y, area.width, area.height};
}

// The ticks of the time are closer than their texts are wide: this leaves out as many texts as necessary.
void CTrv1DGraphPortlet::ChooseTimeLabels(const CGraphics& graphics) {
    m_timeFormater->SetStride(1);
    const auto& axis = m_plot.GetHorizontalAxis();
    const float width =
        graphics.MeasureString(m_timeFormater->Format(50), axis.GetFont(), SPoint{}, SStringFormat{}).width;
    const float spacing =
        static_cast<float>(m_timeScale->GetStep()) / 100 * m_plot.GetPlottingArea().GetRect().width;
    if (!(spacing > 0)) return;
    for (const int stride : kStrides) {
        m_timeFormater->SetStride(stride);
        if (spacing * static_cast<float>(stride) >= width + kTimeLabelGap) break;
    }
    LabelAnyTick(width);
}

// In a narrow plot the labels may all cross its edges: then the tick next to the middle has one.
void CTrv1DGraphPortlet::LabelAnyTick(float labelWidth) {
    const float width = m_plot.GetPlottingArea().GetRect().width;
    bool isLabelled = false;
    std::optional<double> middle;
    ForEachTick(*m_timeScale, [&](double percent) {
        const float x = m_timeScale->ToPixel(percent, width);
        if (x < labelWidth / 2 || x > width - labelWidth / 2) return;
        isLabelled = isLabelled || !m_timeFormater->Format(percent).empty();
        if (!middle || std::abs(percent - kMiddle) < std::abs(*middle - kMiddle)) middle = percent;
    });
    if (!isLabelled && middle) m_timeFormater->SetStride(kOnlyOne, m_timeScale->GetTickNumber(*middle));
}

void CTrv1DGraphPortlet::ApplyTheme(const STheme& theme) {
    if (m_theme == &theme) return;
    m_theme = &theme;
    for (CPlot2DAxis* axis : {&m_plot.GetHorizontalAxis(), &m_plot.GetVerticalAxis()}) {
        axis->SetPen(std::make_unique<CPlot2DPen>(theme.axis));
        axis->GetGrid().SetPen(std::make_unique<CPlot2DPen>(theme.grid));
    }
    m_plot.GetPlottingArea().SetBrush(std::make_unique<CPlot2DSolidBrush>(theme.ground));
}

void CTrv1DGraphPortlet::Draw(CGraphics& graphics, bool selected) {
    const STheme& theme = graphics.GetTheme();
    ApplyTheme(theme);
    const SRect frame = {m_rect.x, m_rect.y, m_rect.width - 1, m_rect.height - 1};
    const SRect title = {frame.x, frame.y, frame.width, kTitleHeight - 3};
    CPlot2DSolidBrush(theme.ground).Fill(graphics, frame);
    if (selected)
        CPlot2DLinearGradientBrush(theme.selectedFrom, theme.selectedTo, LinearGradientMode::Vertical)
            .Fill(graphics, title);
    else
        CPlot2DSolidBrush(theme.titleGround).Fill(graphics, title);
    const CPlot2DPen pen(selected ? theme.frameSelected : theme.frame);
    graphics.DrawRectangle(pen.GetNative(), frame);

    DrawTitle(graphics, title);
    m_plot.Draw(graphics);
    if (!HasPoints() && !m_notice.empty()) DrawNotice(graphics);
}

// On the right what the time axis counts, where the title leaves room for it.
void CTrv1DGraphPortlet::DrawTitle(CGraphics& graphics, const SRect& title) {
    const STheme& theme = graphics.GetTheme();
    const QFont& font = m_plot.GetHorizontalAxis().GetFont();
    const float middle = title.y + title.height / 2;
    SStringFormat format;
    format.lineAlign = StringAlignment::Center;
    const SPoint left = {title.x + 2 * kPadding, middle}, right = {m_plottingRect.Right(), middle};
    graphics.SetClipRect(title);
    graphics.DrawString(m_title, font, left, format, theme.text);
    const float end = graphics.MeasureString(m_title, font, left, format).Right();
    const std::string scale = m_timeText.GetScaleName();
    format.align = StringAlignment::Far;
    if (graphics.MeasureString(scale, font, right, format).x > end + 2 * kPadding)
        graphics.DrawString(scale, font, right, format, theme.notice);
    graphics.ResetClip();
}

void CTrv1DGraphPortlet::DrawNotice(CGraphics& graphics) const {
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(static_cast<int>(kNoticeHeight));
    SStringFormat format;
    format.align = StringAlignment::Center;
    format.lineAlign = StringAlignment::Center;
    const SRect& area = m_plottingRect;
    graphics.DrawString(m_notice, font, SPoint{area.x + area.width / 2, area.y + area.height / 2}, format,
                        graphics.GetTheme().notice);
}

} // namespace Presentation_Tarvel_Graphics
