#include "graph/pages.h"

#include <QTransform>

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

namespace {

constexpr float kCentimetersPerInch = 2.54f;

SRect ComputeBox(const SPageMetrics& metrics, const SPageMargins& margins) {
    const float x = metrics.resolution.width / kCentimetersPerInch;
    const float y = metrics.resolution.height / kCentimetersPerInch;
    return {margins.left * x - metrics.offset.x, margins.top * y - metrics.offset.y,
            metrics.paper.width - (margins.left + margins.right) * x,
            metrics.paper.height - (margins.top + margins.bottom) * y};
}

} // namespace

SPrintedPages ComputePages(const SPageMetrics& metrics, const SPageMargins& margins,
                           std::span<const SSize> sizes) {
    SPrintedPages result{ComputeBox(metrics, margins), {}, {}};
    const SRect& box = result.box;
    const bool isSound =
        std::ranges::all_of(sizes, [](SSize size) { return size.width > 0 && size.height > 0; });
    if (!(box.width > 0) || !(box.height > 0) || !isSound) return result;

    const float spacing = margins.spacing * metrics.resolution.height / kCentimetersPerInch;
    float y = 0; // below the portlets of the page, in the box
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const float wanted = box.width / sizes[i].width * sizes[i].height;
        const float height = std::min(wanted, box.height), width = box.width * height / wanted;
        if (i == 0 || y + spacing + height > box.height) {
            result.pages.push_back({i, i});
            y = 0;
        } else {
            result.pages.back().last = i;
            y += spacing;
        }
        result.places.push_back({box.x, box.y + y, width, height});
        y += height;
    }
    return result;
}

SPrintedPages ComputePages(const SPageMetrics& metrics, const SPageMargins& margins,
                           const CTrv1DGraphStack& stack) {
    std::vector<SSize> sizes;
    for (const auto* portlet : stack.GetShown())
        sizes.push_back({portlet->GetRect().width, portlet->GetRect().height});
    return ComputePages(metrics, margins, sizes);
}

void DrawPage(const CTrv1DGraphStack& stack, CGraphics& graphics, const SPrintedPages& pages,
              std::size_t page) {
    const auto portlets = stack.GetShown();
    if (page >= pages.pages.size() || pages.places.size() != portlets.size()) return;
    const QTransform former = graphics.GetTransform();
    for (std::size_t i = pages.pages[page].first; i <= pages.pages[page].last; ++i) {
        CTrv1DGraphPortlet& portlet = *portlets[i];
        const SRect &place = pages.places[i], &screen = portlet.GetRect();
        QTransform transform = former;
        transform.translate(static_cast<double>(place.x), static_cast<double>(place.y));
        transform.scale(static_cast<double>(place.width / screen.width),
                        static_cast<double>(place.height / screen.height));
        transform.translate(static_cast<double>(-screen.x), static_cast<double>(-screen.y));
        graphics.SetTransform(transform);
        portlet.Draw(graphics, false);
    }
    graphics.SetTransform(former);
}

} // namespace Presentation_Tarvel_Graphics
