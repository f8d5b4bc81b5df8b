#include "graph/vertical_scale.h"

#include "graph/ticks.h"

#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Valeurs::CLatitudeLongitudeAdaptor;
using Outils_Valeurs::CPhysicalValueAdaptor;

namespace {

constexpr std::int32_t kMaximumDecimals = 12;
constexpr std::int32_t kDefaultDecimals = 6; // the meaning of a negative precision

std::unique_ptr<CNumericValueAdaptor> Copy(const CNumericValueAdaptor& adaptor) {
    if (const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(&adaptor))
        return std::make_unique<CPhysicalValueAdaptor>(*physical);
    if (const auto* angle = dynamic_cast<const CLatitudeLongitudeAdaptor*>(&adaptor))
        return std::make_unique<CLatitudeLongitudeAdaptor>(*angle);
    return std::make_unique<CNumericValueAdaptor>(adaptor);
}

} // namespace

void CTrv1DGraphVerticalScale::ChooseStep(double length, double fontHeight) {
    SDisplayUnit unit;
    if (const auto* physical = dynamic_cast<const CPhysicalValueAdaptor*>(m_adaptor)) {
        const auto& shown = physical->GetCurrentUnit();
        unit = {shown.A, shown.B, shown.C};
    }
    SetStep(ChooseVerticalStep(m_minimum, m_maximum, length, fontHeight, unit));
}

CTrv1DGraphNumericAdaptorFormater::CTrv1DGraphNumericAdaptorFormater(const CNumericValueAdaptor& adaptor)
    : m_adaptor(Copy(adaptor)) {}

std::string CTrv1DGraphNumericAdaptorFormater::Format(double value) const {
    std::string text;
    m_adaptor->ValueToText(value, text);
    return text;
}

void CTrv1DGraphNumericAdaptorFormater::FitPrecision(const CTrv1DGraphVerticalScale& scale) {
    m_adaptor = Copy(scale.GetAdaptor());
    if (m_adaptor->precision < 0) m_adaptor->precision = kDefaultDecimals;
    double first = scale.GetMinimum();
    double next = first;
    if (!scale.FirstTick(first) || !scale.NextTick(first, next)) return;
    const double step = next - first;
    while (m_adaptor->precision < kMaximumDecimals && !(TellsApart(first, step) && TellsApart(next, step)))
        ++m_adaptor->precision;
}

// The text says the value to within a tenth of a step. Texts that merely differ would not do: two labels a
// step apart must not look as if they were two.
bool CTrv1DGraphNumericAdaptorFormater::TellsApart(double value, double step) const {
    double shown = 0;
    return !m_adaptor->TextToValue(Format(value), shown) || std::abs(shown - value) <= step * 0.1;
}

} // namespace Presentation_Tarvel_Graphics
