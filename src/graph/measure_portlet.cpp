#include "graph/measure_portlet.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Presentation_Tarvel_Graphics {

using namespace Outils_Plot2D;

namespace {

constexpr double kRangePadding = 0.05; // of the width, above and below
// A constant is shown in the middle of a range as wide as this part of it, or this many internal units.
constexpr double kConstantWidth = 1e-3;

} // namespace

CTrv1DGraphMeasurePortlet::CTrv1DGraphMeasurePortlet(CPlot2DSettings& settings,
                                                     const SSimulationTimeText& timeText,
                                                     const SGraphDescription& description)
    : CTrv1DGraphPortlet(settings, timeText, description) {
    auto scale = std::make_unique<CTrv1DGraphVerticalScale>(*description.adaptor);
    auto formater = std::make_unique<CTrv1DGraphNumericAdaptorFormater>(*description.adaptor);
    m_scale = scale.get();
    m_formater = formater.get();
    GetPlot().GetVerticalAxis().SetScale(std::move(scale));
    GetPlot().GetVerticalAxis().SetFormater(std::move(formater));
    Update(description);
}

void CTrv1DGraphMeasurePortlet::Update(const SGraphDescription& description) {
    m_scale->SetAdaptor(*description.adaptor);
    CTrv1DGraphPortlet::Update(description);
    Reformat();
}

std::unique_ptr<CTrv1DGraphDataSource>
CTrv1DGraphMeasurePortlet::MakeSource(const SCurveDescription& curve) const {
    return std::make_unique<CTrv1DGraphDataSource>(curve.channel, curve.field, curve.factor);
}

CPlot2DSerie& CTrv1DGraphMeasurePortlet::AddSerie(std::unique_ptr<CTrv1DGraphDataSource> source,
                                                  std::string name) {
    return GetPlot().AddCurve(std::move(source), std::move(name));
}

void CTrv1DGraphMeasurePortlet::SetRange(const SRange& range) {
    if (!IsUsable(range)) return;
    m_automatic = false;
    m_scale->SetRange(range.low, range.high);
}

void CTrv1DGraphMeasurePortlet::SetRangeAutomatic() {
    m_automatic = true;
    FitRange();
}

std::optional<double> CTrv1DGraphMeasurePortlet::ReadValue(const std::string& text) const {
    double value = 0;
    if (!m_scale->GetAdaptor().TextToValue(text, value)) return {};
    return value;
}

void CTrv1DGraphMeasurePortlet::OnDataChanged() {
    if (m_automatic) FitRange();
}

void CTrv1DGraphMeasurePortlet::FitRange() {
    double low = std::numeric_limits<double>::infinity(), high = -low;
    bool found = false;
    ForEachVisible([&](const CPlot2DSerie&, const CTrv1DGraphDataSource& source) {
        if (source.IncludeValues(low, high)) found = true;
    });
    if (!found) return;
    double padding = (high - low) * kRangePadding;
    if (!IsUsable({low, high})) padding = std::max(std::abs(high) * kConstantWidth, kConstantWidth) / 2;
    m_scale->SetRange(low - padding, high + padding);
}

void CTrv1DGraphMeasurePortlet::Reformat() { m_formater->FitPrecision(*m_scale); }

void CTrv1DGraphMeasurePortlet::ChooseVerticalTicks(const CGraphics& graphics) {
    // A range that no data has given yet has no labels: they would show values that do not exist.
    if (m_automatic && !HasPoints())
        m_scale->SetStep(0);
    else
        m_scale->ChooseStep(GetPlot().GetPlottingArea().GetRect().height,
                            graphics.GetFontHeight(GetPlot().GetVerticalAxis().GetFont()));
    m_formater->FitPrecision(*m_scale);
}

} // namespace Presentation_Tarvel_Graphics
