#include "graph/enum_portlet.h"

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

using namespace Outils_Plot2D;

namespace {

constexpr float kRowHeight = 16;
constexpr float kRowsSurround = 44; // title, time labels and frame
constexpr float kMaximumRowsHeight = 400;

} // namespace

CTrv1DGraphEnumPortlet::CTrv1DGraphEnumPortlet(CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                                               const SGraphDescription& description)
    : CTrv1DGraphPortlet(settings, timeText, description) {
    Update(description);
}

void CTrv1DGraphEnumPortlet::Update(const SGraphDescription& description) {
    SetStates(description.states);
    CTrv1DGraphPortlet::Update(description);
}

void CTrv1DGraphEnumPortlet::SetStates(const std::vector<std::string>& states) {
    m_rows = std::max<std::size_t>(states.size(), 1);
    auto formater = std::make_unique<CPlot2DChronogramFormater>();
    for (std::size_t i = 0; i < states.size(); ++i)
        formater->SetText(static_cast<std::int32_t>(i), states[i]);
    GetPlot().GetVerticalAxis().SetScale(
        std::make_unique<CPlot2DChronogramScale>(0, static_cast<double>(m_rows - 1)));
    GetPlot().GetVerticalAxis().SetFormater(std::move(formater));
}

std::unique_ptr<CTrv1DGraphDataSource>
CTrv1DGraphEnumPortlet::MakeSource(const SCurveDescription& curve) const {
    return std::make_unique<CTrv1DGraphDataSourceEnum>(curve.channel, curve.field);
}

CPlot2DSerie& CTrv1DGraphEnumPortlet::AddSerie(std::unique_ptr<CTrv1DGraphDataSource> source,
                                               std::string name) {
    return GetPlot().AddChronogram(std::move(source), std::move(name));
}

std::string CTrv1DGraphEnumPortlet::FormatValue(double value) const {
    return GetPlot().GetVerticalAxis().GetFormater()->Format(value);
}

float CTrv1DGraphEnumPortlet::GetMinimumHeight() const {
    const float rows = static_cast<float>(m_rows) * kRowHeight + kRowsSurround;
    return std::clamp(rows, kMinimumPortletHeight, kMaximumRowsHeight);
}

} // namespace Presentation_Tarvel_Graphics
