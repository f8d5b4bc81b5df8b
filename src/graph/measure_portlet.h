// The graph of curves of one kind of measure. UI thread.
#pragma once

#include "graph/portlet.h"
#include "graph/range.h"
#include "graph/vertical_scale.h"

#include <optional>

namespace Presentation_Tarvel_Graphics {

// Its vertical range fits the data until the user changes it.
class CTrv1DGraphMeasurePortlet : public CTrv1DGraphPortlet {
  public:
    // REQUIRES: `description` is of a measure graph.
    CTrv1DGraphMeasurePortlet(Outils_Plot2D::CPlot2DSettings& settings, const SSimulationTimeText& timeText,
                              const SGraphDescription& description);

    void Update(const SGraphDescription& description) override;

    double GetMinimum() const { return m_scale->GetMinimum(); }
    double GetMaximum() const { return m_scale->GetMaximum(); }
    SRange GetRange() const { return {GetMinimum(), GetMaximum()}; }
    // The range follows the data.
    bool IsRangeAutomatic() const { return m_automatic; }
    // The user's range; ignored unless it is usable.
    void SetRange(const SRange& range);
    void SetRangeAutomatic();

    // The value that a text of the axis says, with its unit or without; none for any other text.
    std::optional<double> ReadValue(const std::string& text) const;

    std::string FormatValue(double value) const override { return m_formater->Format(value); }
    void OnDataChanged() override;
    void Reformat() override;

  protected:
    std::unique_ptr<CTrv1DGraphDataSource> MakeSource(const SCurveDescription& curve) const override;
    CPlot2DSerie& AddSerie(std::unique_ptr<CTrv1DGraphDataSource> source, std::string name) override;
    void ChooseVerticalTicks(const CGraphics& graphics) override;

  private:
    void FitRange();

    CTrv1DGraphVerticalScale* m_scale;             // owned by the plot's axis
    CTrv1DGraphNumericAdaptorFormater* m_formater; // owned by the plot's axis
    bool m_automatic = true;
};

} // namespace Presentation_Tarvel_Graphics
