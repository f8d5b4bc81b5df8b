#include "morvex/run_inputs.h"

namespace Morvex {

bool CRunInputs::OpenImu(const SRunPlan& plan) {
    m_plan = &plan;
    m_hasCarry = false;
    return m_imu.Open(plan);
}

void CRunInputs::PutBack(const SImuSample& sample) {
    m_carry = sample;
    m_hasCarry = true;
}

bool CRunInputs::NextSample(SImuSample& sample) {
    if (m_hasCarry) {
        sample = m_carry;
        m_hasCarry = false;
        return true;
    }
    while (m_imu.Next(sample)) {
        if (m_plan->begin && sample.time <= *m_plan->begin) continue;
        return !m_plan->end || sample.time <= *m_plan->end;
    }
    return false;
}

bool CRunInputs::ReadAhead(SStretch& stretch, double seconds) {
    SImuSample sample;
    double until = 0.0;
    bool more = true;
    for (bool first = true;; first = false) {
        if (!NextSample(sample)) {
            more = false;
            break;
        }
        if (stretch.samples.empty()) {
            // Nothing is known of what was before the first sample.
            if (sample.gap > 0.0) {
                const double nominal = sample.span - sample.gap;
                sample = {sample.time, nominal, sample.angle * (nominal / sample.span),
                          sample.velocity * (nominal / sample.span), 0.0};
            }
            while (m_fixes.Peek() && m_fixes.Peek()->time < sample.time - sample.span) m_fixes.Pop();
        } else if (sample.gap > kLongestGap) {
            PutBack(sample);
            more = false;
            break;
        }
        if (first) until = sample.time + seconds;
        stretch.samples.push_back(sample);
        if (sample.time >= until) break;
    }
    if (stretch.samples.empty()) return false;
    while (m_fixes.Peek() && m_fixes.Peek()->time <= stretch.samples.back().time) {
        stretch.fixes.push_back(*m_fixes.Peek());
        m_fixes.Pop();
    }
    return more;
}

} // namespace Morvex
