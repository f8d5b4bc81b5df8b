#include "graph/hit_test.h"

#include "graph/stack_picture.h"

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

SGraphHit HitTest(const CTrv1DGraphStack& stack, SPoint point) {
    if (CTrv1DGraphPortlet* border = BorderAt(stack, point.y)) return {border, EGraphPart::border, nullptr};
    CTrv1DGraphPortlet* portlet = PortletAt(stack, point);
    if (!portlet) return {};
    auto& plot = portlet->GetPlot();
    const unsigned hit = plot.HitTest(point);
    if (hit & CPlot2D::HitLegend) {
        CPlot2DSerie* serie = plot.GetLegend().SerieAt(point);
        if (!serie) return {portlet, EGraphPart::legend, nullptr};
        return {portlet, plot.GetLegend().BoxAt(point) ? EGraphPart::legendBox : EGraphPart::legendRow,
                serie};
    }
    const SRect& area = portlet->GetPlottingRect();
    if (area.Contains(point)) return {portlet, EGraphPart::plot, nullptr};
    if (point.y < area.y) return {portlet, EGraphPart::title, nullptr};
    if (point.y > area.Bottom()) return {portlet, EGraphPart::timeAxis, nullptr};
    return {portlet, EGraphPart::valueAxis, nullptr};
}

int IndexOf(const CTrv1DGraphStack& stack, const CTrv1DGraphPortlet* portlet) {
    const auto& portlets = stack.GetPortlets();
    const auto place = std::ranges::find(portlets, portlet, [](const auto& own) { return own.get(); });
    return place == portlets.end() ? -1 : static_cast<int>(place - portlets.begin());
}

} // namespace Presentation_Tarvel_Graphics
