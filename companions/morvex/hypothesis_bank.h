// Filters that start from different headings, and the evidence for each.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/timeline.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Morvex {

// Levelled but without a heading: what the first seconds of a recording tell.
struct SLevelStart {
    double time = 0.0;                        // the first fix, s
    std::size_t firstSample = 0;              // the first sample that ends after it
    Vector3d position = Vector3d::Zero();     // of the antenna, as in SNavigation
    Vector3d velocity = Vector3d::Zero();     // north, west, up, m/s
    Vector3d acceleration = Vector3d::Zero(); // mean over the first seconds, the same axes, m/s²
    Vector3d force = Vector3d::Zero();        // mean specific force in the vessel axes of `time`, m/s²
};

// Empty as long as the stretch holds no fix with both parts in use and `needed` seconds behind it.
std::optional<SLevelStart> FindLevelStart(const SStretch& stretch, double needed = 10.0);

class CHypothesisBank {
  public:
    CHypothesisBank(const SLevelStart& start, const SPositionFix& first, const SSensorGrade& grade,
                    const CStateLayout& layout = {});

    // Runs all hypotheses over the samples up to `time`; false when `goOn` stopped it.
    bool RunTo(double time, const SStretch& stretch, const std::function<bool()>& goOn);

    const SSensorGrade& GetGrade() const { return m_grade; }
    // How far the bank has come since its start, s.
    double GetElapsed() const { return m_time - m_start.time; }
    // One hypothesis is left, or those left agree.
    bool IsDecided() const { return m_hypotheses.size() == 1; }
    // The most likely hypothesis.
    SFilterState GetBest();
    // Mean squared distance per component between the fixes and the best hypothesis, in standard deviations:
    // about 1 when the grade fits, far above when the unit is worse than the grade.
    double GetMisfit() const;

  private:
    struct SHypothesis {
        CInsFilter filter;
        double cost = 0.0;     // minus log likelihood
        double distance = 0.0; // sum of bounded squared distances
        int components = 0;
    };

    void Prune();

    SLevelStart m_start;
    SSensorGrade m_grade;
    std::vector<SHypothesis> m_hypotheses; // the best first after Prune
    double m_time;
    std::size_t m_nextSample;
    double m_nextPruning;
};

// Standard deviation of the heading, rad.
double HeadingDeviation(const SFilterState& state);

} // namespace Morvex
