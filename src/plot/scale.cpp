#include "plot/scale.h"

#include <algorithm>

namespace Outils_Plot2D {

namespace {

// A finite value beyond what a float holds must not be converted, and stays finite; what is not finite stays
// so.
float ToFloat(double value) {
    return static_cast<float>(std::isfinite(value) ? std::clamp(value, -1e30, 1e30) : value);
}

double Round(double value) { return std::trunc(value + 0.5); }

} // namespace

bool CPlot2DScale::FirstTick(double&) const { return false; }

bool CPlot2DScale::NextTick(double, double&) const { return false; }

void CPlot2DScale::SetRange(double minimum, double maximum) {
    m_minimum = minimum;
    m_maximum = maximum;
}

float CPlot2DLinearScale::ToPixel(double value, float length) const {
    return ToFloat((value - m_minimum) / (m_maximum - m_minimum) * length);
}

double CPlot2DLinearScale::FromPixel(float pixel, float length) const {
    return static_cast<double>(pixel) / length * (m_maximum - m_minimum) + m_minimum;
}

bool CPlot2DLinearScale::FirstTick(double& value) const {
    if (!(m_step > 0) || !std::isfinite(m_step)) return false;
    value = std::ceil(value / m_step) * m_step;
    return true;
}

bool CPlot2DLinearScale::NextTick(double value, double& next) const {
    if (!(m_step > 0) || !std::isfinite(m_step)) return false;
    next = std::trunc(value / m_step + 1) * m_step;
    // Rounding may have put it back on the value. One step mends that, unless the step is lost in the value's
    // precision.
    for (int mends = 0; next <= value; ++mends) {
        if (mends == 4) return false;
        next += m_step;
    }
    next = std::trunc(next / m_step + 1) * m_step;
    return next >= m_minimum && next <= m_maximum;
}

CPlot2DChronogramScale::CPlot2DChronogramScale(double minimum, double maximum)
    : CPlot2DScale(Round(minimum), Round(maximum)) {}

float CPlot2DChronogramScale::ToPixel(double value, float length) const {
    return ToFloat((Round(value) - m_minimum + 0.5) / (m_maximum - m_minimum + 1) * length);
}

double CPlot2DChronogramScale::FromPixel(float pixel, float length) const {
    return Round(m_minimum - 0.5 + (m_maximum - m_minimum + 1) * pixel / length);
}

bool CPlot2DChronogramScale::FirstTick(double& value) const {
    value = Round(value);
    return true;
}

bool CPlot2DChronogramScale::NextTick(double value, double& next) const {
    next = Round(value) + 1;
    return next >= m_minimum && next <= m_maximum;
}

void CPlot2DChronogramScale::SetRange(double minimum, double maximum) {
    CPlot2DScale::SetRange(Round(minimum), Round(maximum));
}

} // namespace Outils_Plot2D
