// The chronogram of one enumerated field. UI thread.
#pragma once

#include "graph/portlet.h"

namespace Presentation_Tarvel_Graphics {

class CTrv1DGraphEnumPortlet : public CTrv1DGraphPortlet {
  public:
    // REQUIRES: `description` is of a chronogram.
    CTrv1DGraphEnumPortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                           const SGraphDescription& description);

    void Update(const SGraphDescription& description) override;
    std::string FormatValue(double value) const override;
    float GetMinimumHeight() const override;

  protected:
    std::unique_ptr<CTrv1DGraphDataSource> MakeSource(const SCurveDescription& curve) const override;
    CPlot2DSerie& AddSerie(std::unique_ptr<CTrv1DGraphDataSource> source, std::string name) override;
    void ChooseVerticalTicks(const CGraphics&) override {}

  private:
    void SetStates(const std::vector<std::string>& states);

    std::size_t m_rows = 1;
};

} // namespace Presentation_Tarvel_Graphics
