#include "plot/formater.h"

#include "foundation/numbers.h"

#include <cmath>

namespace Outils_Plot2D {

std::string CPlot2DSimpleFormater::Format(double value) const { return Outils_Texte::FormatFixed(value, 2); }

std::string CPlot2DChronogramFormater::Format(double value) const {
    if (!std::isfinite(value)) return {};
    const double position = std::trunc(value + 0.5);
    if (std::fabs(position) < 2147483648.0) {
        const auto text = m_texts.find(static_cast<std::int32_t>(position));
        if (text != m_texts.end()) return text->second;
    }
    // Plus zero: what rounds to zero from below has no sign.
    return Outils_Texte::FormatFixed(position + 0.0, 0);
}

} // namespace Outils_Plot2D
