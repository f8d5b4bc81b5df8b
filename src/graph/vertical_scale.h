// The vertical axis of a measure graph: values in the internal unit, ticks and texts in the unit shown. UI
// thread.
#pragma once

#include "plot/formater.h"
#include "plot/scale.h"
#include "values/adaptors.h"

#include <memory>
#include <string>

namespace Presentation_Tarvel_Graphics {

using Outils_Valeurs::CNumericValueAdaptor;

class CTrv1DGraphVerticalScale : public Outils_Plot2D::CPlot2DLinearScale {
  public:
    // `adaptor` must outlive the scale.
    explicit CTrv1DGraphVerticalScale(const CNumericValueAdaptor& adaptor) : m_adaptor(&adaptor) {}

    // Chooses the step for an axis of `length` pixels with labels `fontHeight` pixels high. A range without
    // width has no ticks.
    void ChooseStep(double length, double fontHeight);
    // `adaptor` must outlive the scale.
    void SetAdaptor(const CNumericValueAdaptor& adaptor) { m_adaptor = &adaptor; }
    const CNumericValueAdaptor& GetAdaptor() const { return *m_adaptor; }

  private:
    const CNumericValueAdaptor* m_adaptor; // not owned
};

// The text of a value. Holds an adaptor of its own, which may have more decimals than the settings ask for.
class CTrv1DGraphNumericAdaptorFormater : public Outils_Plot2D::CPlot2DValueFormater {
  public:
    explicit CTrv1DGraphNumericAdaptorFormater(const CNumericValueAdaptor& adaptor);

    std::string Format(double value) const override;
    // Takes the settings of the adaptor again, with as many more decimals as its ticks need to have different
    // texts.
    void FitPrecision(const CTrv1DGraphVerticalScale& scale);

  private:
    bool TellsApart(double value, double step) const;

    std::unique_ptr<CNumericValueAdaptor> m_adaptor;
};

} // namespace Presentation_Tarvel_Graphics
