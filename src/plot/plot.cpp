#include "plot/plot.h"

#include <algorithm>

namespace Outils_Plot2D {

CPlot2D::CPlot2D(CPlot2DSettings& settings)
    : m_settings(settings),
      m_horizontalAxis(*this, Orientation::Horizontal),
      m_verticalAxis(*this, Orientation::Vertical),
      m_plottingArea(*this),
      m_legend(*this) {}

CPlot2D::~CPlot2D() = default;

void CPlot2D::Draw(CGraphics& graphics) {
    const QTransform transform = graphics.GetTransform();
    DrawArea(graphics);
    graphics.Translate(GetRect().x, GetRect().y);
    m_plottingArea.DrawArea(graphics);
    m_horizontalAxis.Draw(graphics);
    m_verticalAxis.Draw(graphics);
    for (const auto& serie : m_series)
        if (serie->IsVisible()) serie->Draw(graphics);
    if (m_legendVisible) m_legend.Draw(graphics);
    graphics.SetTransform(transform);
}

unsigned CPlot2D::HitTest(SPoint point) const {
    const SPoint inner = {point.x - GetRect().x, point.y - GetRect().y};
    unsigned hit = 0;
    if (GetRect().Contains(point)) hit |= HitPlot;
    if (m_plottingArea.GetRect().Contains(inner)) hit |= HitPlottingArea;
    if (m_legendVisible && m_legend.GetRect().Contains(inner)) hit |= HitLegend;
    return hit;
}

CPlot2DSerieCurve& CPlot2D::AddCurve(std::unique_ptr<CPlot2DDataSource> source, std::string name) {
    auto serie = std::make_unique<CPlot2DSerieCurve>(*this, std::move(source), std::move(name));
    CPlot2DSerieCurve& added = *serie;
    m_series.push_back(std::move(serie));
    return added;
}

CPlot2DSerieChronogram& CPlot2D::AddChronogram(std::unique_ptr<CPlot2DDataSource> source, std::string name) {
    auto serie = std::make_unique<CPlot2DSerieChronogram>(*this, std::move(source), std::move(name));
    CPlot2DSerieChronogram& added = *serie;
    m_series.push_back(std::move(serie));
    return added;
}

void CPlot2D::RemoveSerie(CPlot2DSerie* serie) {
    if (m_hoveredSerie == serie) m_hoveredSerie = nullptr;
    if (m_selectedSerie == serie) m_selectedSerie = nullptr;
    std::erase_if(m_series, [&](const auto& own) { return own.get() == serie; });
}

} // namespace Outils_Plot2D
