// Finding the initial state: from the first stretch of a recording, with no knowledge of the heading and none
// of the unit's quality, at rest or under way.
//
// A bank of filters starts from headings all around the circle, and the fixes decide between them: at rest
// and with a fine unit through the turning of gravity with the earth, under way through the accelerations.
// One bank runs for each grade of unit, and the finest that agrees with the fixes and with the noise is kept.
// When it has settled, the stretch is filtered backwards to its beginning, from where the recording can be
// navigated. So disturbances of a vehicle at rest, waves and an unlevel start need no treatment of their own.
//
// Several hypotheses instead of one filter for large angles: compare Groves, 2nd ed., section 3.4.5.
#pragma once

#include "morvex/hypothesis_bank.h"
#include "morvex/ins_filter.h"
#include "morvex/noise_probe.h"
#include "morvex/timeline.h"

#include <functional>
#include <optional>
#include <vector>

namespace Morvex {

struct SAlignment {
    SFilterState start; // at the beginning of the first sample of the stretch
    SSensorGrade grade;
    double headingDeviation = 0.0; // rad, at the end of the stretch
    bool headingKnown = false;     // one heading was left and it was settled
    double duration = 0.0;         // of the stretch, s
};

class CAlignment {
  public:
    // `goOn` is asked every second of the recording and ends the work when it answers false.
    // `layout`: states that the search has besides the fifteen.
    explicit CAlignment(
        std::function<bool()> goOn = [] { return true; }, const CStateLayout& layout = {});

    enum class EState : unsigned char { needsMore, settled, stopped };

    // Works on what has been added to the stretch since the last call. Only the caller appends, and always
    // the same object is given. Add about half a minute at a time.
    EState Continue(const SStretch& stretch);

    // The result, from what there is; empty when there was no fix to start from or the work was stopped.
    std::optional<SAlignment> Finish(const SStretch& stretch);

    // A stretch beyond this brings nothing more, s.
    static constexpr double kLongestStretch = 1200.0;

  private:
    struct SBackward {
        SFilterState start;
        double misfit = 0.0; // mean squared distance per component
    };

    bool Start(const SStretch& stretch);
    SSensorGrade GetGrade(std::size_t index) const;
    SBackward FilterBackwards(const SStretch& reversed, const SFilterState& found,
                              const SSensorGrade& grade) const;

    std::function<bool()> m_goOn;
    CStateLayout m_layout;
    std::vector<CHypothesisBank> m_banks; // by grade, finest first; empty until the first fix
    std::vector<bool> m_givenUp;          // by bank
    std::size_t m_active = 0;             // the finest that the noise allows and that has not been given up
    CNoiseProbe m_noise, m_accelNoise;
    std::size_t m_probed = 0; // samples that the probe has seen
    double m_start = 0.0;     // the first fix, s
    bool m_stopped = false;
};

} // namespace Morvex
