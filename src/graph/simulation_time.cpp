#include "graph/simulation_time.h"

#include "foundation/texts.h"

#include <algorithm>
#include <cmath>

namespace Presentation_Tarvel_Graphics {

using Outils_Temps::kTicksPerSecond;

namespace {

constexpr std::int32_t kMaximumDecimals = 7; // a tick of 100 ns

// Decimals that show a multiple of `tick` exactly.
std::int32_t CountDecimals(std::int64_t tick) {
    std::int32_t decimals = 0;
    for (std::int64_t unit = kTicksPerSecond; tick % unit != 0 && decimals < kMaximumDecimals; unit /= 10)
        ++decimals;
    return decimals;
}

} // namespace

std::string SSimulationTimeText::GetScaleName() const {
    using Outils_Texte::EText;
    return std::string(Outils_Texte::GetText(ShowsUtc() ? EText::scaleUtc : EText::scaleElapsed));
}

std::string SSimulationTimeText::Format(CDateTimeSpan time) const {
    std::string text;
    if (ShowsUtc())
        dateTime.ValueToText(*utcReference + time, text);
    else
        span.ValueToText(time, text);
    return text;
}

void SSimulationTimeText::FitPrecision(CDateTimeSpan tick) {
    if (!m_settings) m_settings = SDecimals{dateTime.precision, span.precision, span.total.precision};
    if (tick.GetTicks() <= 0) return;
    const std::int32_t decimals = CountDecimals(tick.GetTicks());
    const auto fit = [](std::int32_t settings, std::int32_t wanted) {
        return settings < 0 ? settings : std::max(settings, wanted);
    };
    dateTime.precision = fit(m_settings->dateTime, decimals);
    span.precision = fit(m_settings->span, decimals);
    // A total is in any unit: one place after the first that the tick changes.
    const double inUnit = std::abs(span.total.GetCurrentUnit().FromInternal(tick.GetTotalSeconds()));
    const double places = inUnit > 0 ? std::ceil(-std::log10(inUnit)) + 1 : 0;
    span.total.precision = fit(m_settings->total, static_cast<std::int32_t>(std::clamp(places, 0.0, 12.0)));
}

} // namespace Presentation_Tarvel_Graphics
