#include "plot/serie.h"

namespace Outils_Plot2D {

CPlot2DSerie::CPlot2DSerie(CPlot2D& plot, std::unique_ptr<CPlot2DDataSource> source, std::string name)
    : m_plot(plot), m_name(std::move(name)), m_source(std::move(source)) {}

std::unique_ptr<CPlot2DDataSource> CPlot2DSerie::SetDataSource(std::unique_ptr<CPlot2DDataSource> source,
                                                               bool deletePrevious) {
    m_source.swap(source);
    if (deletePrevious) source.reset();
    return source;
}

void CPlot2DSerie::Draw(CGraphics&) {}

void CPlot2DSerie::SetColor(Colour colour) { m_color = colour; }

} // namespace Outils_Plot2D
