#include "graph/time_scale.h"

#include "graph/ticks.h"

#include <cmath>

namespace Presentation_Tarvel_Graphics {

std::string CTrv1DGraphTimeAdaptorFormater::Format(double percent) const {
    if (!std::isfinite(percent)) return {};
    if (m_stride > 1 && (m_scale.GetTickNumber(percent) - m_first) % m_stride != 0) return {};
    return m_text.Format(m_scale.ToTime(percent));
}

CTrv1DGraphSimulationTimeScale::CTrv1DGraphSimulationTimeScale(const SSimulationTimeText& text)
    : CPlot2DLinearScale(0, 100, 0), m_text(text) {}

void CTrv1DGraphSimulationTimeScale::SetDisplay(CDateTimeSpan start, CDateTimeSpan end) {
    if (!(start < end)) return;
    m_start = start;
    m_end = end;
    m_tickSpan = ChooseTickSpan(end - start);
    const auto displayed = static_cast<double>((end - start).GetTicks());
    SetStep(static_cast<double>(m_tickSpan.GetTicks()) * 100.0 / displayed);
}

CDateTimeSpan CTrv1DGraphSimulationTimeScale::ToTime(double percent) const {
    const auto displayed = static_cast<double>((m_end - m_start).GetTicks());
    const double elapsed = std::trunc(displayed / 100 * percent);
    if (!(std::abs(elapsed) < 9e18)) return CDateTimeSpan::Invalid();
    return m_start + CDateTimeSpan(static_cast<std::int64_t>(elapsed));
}

double CTrv1DGraphSimulationTimeScale::ToPercent(CDateTimeSpan time) const {
    const auto displayed = static_cast<double>((m_end - m_start).GetTicks());
    return static_cast<double>((time - m_start).GetTicks()) * 100.0 / displayed;
}

CDateTimeSpan CTrv1DGraphSimulationTimeScale::GetOffset() const {
    if (!m_text.ShowsUtc()) return CDateTimeSpan();
    // Dates count from a midnight, so that the rest of a day is the time since the last one.
    const auto sinceMidnight = static_cast<std::int64_t>(
        m_text.utcReference->GetTicks() % static_cast<std::uint64_t>(Outils_Temps::kTicksPerDay));
    return m_start + CDateTimeSpan(sinceMidnight);
}

std::int64_t CTrv1DGraphSimulationTimeScale::GetTickNumber(double percent) const {
    if (m_tickSpan.GetTicks() <= 0) return 0;
    const double sinceOrigin = static_cast<double>(GetOffset().GetTicks()) +
                               percent / 100 * static_cast<double>((m_end - m_start).GetTicks());
    const double number = sinceOrigin / static_cast<double>(m_tickSpan.GetTicks());
    return std::abs(number) < 9e18 ? std::llround(number) : 0;
}

bool CTrv1DGraphSimulationTimeScale::FirstTick(double& value) const {
    const CDateTimeSpan offset = GetOffset();
    const auto displayed = static_cast<double>((m_end - m_start).GetTicks());
    value = displayed > 0 ? static_cast<double>((AlignFirstTick(offset, m_tickSpan) - offset).GetTicks()) /
                                displayed * 100
                          : 0;
    return true;
}

bool CTrv1DGraphSimulationTimeScale::NextTick(double value, double& next) const {
    next = value + GetStep();
    return GetStep() > 0 && next >= m_minimum && next <= m_maximum;
}

} // namespace Presentation_Tarvel_Graphics
