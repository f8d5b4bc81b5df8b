// The horizontal axis of all graphs: percentages of the displayed time, ticks at readable times. UI thread.
#pragma once

#include "graph/simulation_time.h"
#include "plot/formater.h"
#include "plot/scale.h"

namespace Presentation_Tarvel_Graphics {

class CTrv1DGraphSimulationTimeScale;

// Turns a percentage back into a time. Only every n-th tick gets a text when more would run into each other.
class CTrv1DGraphTimeAdaptorFormater : public Outils_Plot2D::CPlot2DValueFormater {
  public:
    // `scale` and `text` must outlive the formatter.
    CTrv1DGraphTimeAdaptorFormater(const CTrv1DGraphSimulationTimeScale& scale,
                                   const SSimulationTimeText& text)
        : m_scale(scale), m_text(text) {}

    std::string Format(double percent) const override;
    // 1: every tick has its text; n: those whose number leaves `first` when it is divided by n.
    void SetStride(std::int64_t stride, std::int64_t first = 0) {
        m_stride = stride;
        m_first = first;
    }

  private:
    const CTrv1DGraphSimulationTimeScale& m_scale;
    const SSimulationTimeText& m_text;
    std::int64_t m_stride = 1, m_first = 0;
};

class CTrv1DGraphSimulationTimeScale : public Outils_Plot2D::CPlot2DLinearScale {
  public:
    // `text` says whether ticks are at round UTC times or count from the start of the display; it must
    // outlive the scale.
    explicit CTrv1DGraphSimulationTimeScale(const SSimulationTimeText& text);

    // Chooses the ticks again. Ignored unless start < end.
    void SetDisplay(CDateTimeSpan start, CDateTimeSpan end);
    CDateTimeSpan GetDisplayStart() const { return m_start; }
    CDateTimeSpan GetDisplayEnd() const { return m_end; }
    CDateTimeSpan GetTickSpan() const { return m_tickSpan; }

    // The time at a percentage of the display, and back.
    CDateTimeSpan ToTime(double percent) const;
    double ToPercent(CDateTimeSpan time) const;
    // The number of the tick nearest to `percent`, counted from the origin of the ticks.
    std::int64_t GetTickNumber(double percent) const;

    bool FirstTick(double& value) const override;
    bool NextTick(double value, double& next) const override;

  private:
    // From the origin of the ticks to the start of the display.
    CDateTimeSpan GetOffset() const;

    const SSimulationTimeText& m_text;
    CDateTimeSpan m_start;
    CDateTimeSpan m_end;
    CDateTimeSpan m_tickSpan;
};

} // namespace Presentation_Tarvel_Graphics
