// Scales turn values into pixels along an axis and choose the ticks. Values are 64-bit floats, pixels 32-bit.
// Any thread; nothing fails, but a range of zero width gives pixels that are not finite, which the surface
// leaves out.
#pragma once

#include <cmath>

namespace Outils_Plot2D {

class CPlot2DScale {
  public:
    virtual ~CPlot2DScale() = default;

    // The offset of `value` from the start of an axis `length` pixels long.
    virtual float ToPixel(double value, float length) const = 0;
    // The inverse.
    virtual double FromPixel(float pixel, float length) const = 0;
    // Moves `value` to the first tick at or above it; false: there are no ticks.
    virtual bool FirstTick(double& value) const;
    // The tick after `value` in `next`; false: it lies beyond the maximum, or there is none.
    virtual bool NextTick(double value, double& next) const;
    virtual void SetRange(double minimum, double maximum);

    double GetMinimum() const { return m_minimum; }
    double GetMaximum() const { return m_maximum; }

  protected:
    CPlot2DScale(double minimum, double maximum) : m_minimum(minimum), m_maximum(maximum) {}

    double m_minimum;
    double m_maximum;
};

class CPlot2DLinearScale : public CPlot2DScale {
  public:
    explicit CPlot2DLinearScale(double minimum = 0, double maximum = 100, double step = 10)
        : CPlot2DScale(minimum, maximum), m_step(step) {}

    float ToPixel(double value, float length) const override;
    double FromPixel(float pixel, float length) const override;
    // Multiples of the step. A step that is not a positive number, or too small to separate two values of the
    // range apart, gives no ticks.
    bool FirstTick(double& value) const override;
    // Two steps further, apart from rounding: a step is chosen as half of what is to stand between two
    // labels.
    bool NextTick(double value, double& next) const override;

    double GetStep() const { return m_step; }
    void SetStep(double step) { m_step = step; }

  private:
    double m_step;
};

// Whole positions, the rows of a chronogram: position n has the band from n to n + 1 and is drawn in its
// middle.
class CPlot2DChronogramScale : public CPlot2DScale {
  public:
    // The range is rounded as by SetRange.
    CPlot2DChronogramScale(double minimum, double maximum);

    float ToPixel(double value, float length) const override;
    double FromPixel(float pixel, float length) const override;
    bool FirstTick(double& value) const override;
    bool NextTick(double value, double& next) const override;
    void SetRange(double minimum, double maximum) override;
};

// No axis shows more ticks than this, whatever range and step it is given.
inline constexpr int kMaximumTickCount = 1000;

// Calls `visit(value)` for each tick from the minimum of the scale on. Ends in any case: ticks must grow and
// are counted.
template <class Visitor>
void ForEachTick(const CPlot2DScale& scale, Visitor&& visit) {
    double value = scale.GetMinimum();
    if (!scale.FirstTick(value)) return;
    for (int count = 0; count < kMaximumTickCount && std::isfinite(value); ++count) {
        visit(value);
        double next = value;
        if (!scale.NextTick(value, next) || !(next > value)) return;
        value = next;
    }
}

} // namespace Outils_Plot2D
