// A whole run: from the files of a plan to the result file.
#pragma once

#include "common/run_monitor.h"
#include "foundation/text_id.h"
#include "morvex/aiding.h"
#include "morvex/alignment.h"
#include "morvex/estimates.h"
#include "morvex/mark_reader.h"
#include "morvex/mount_reader.h"
#include "morvex/mounting_probe.h"
#include "morvex/observer.h"
#include "morvex/output_schedule.h"
#include "morvex/result_queue.h"
#include "morvex/result_writer.h"
#include "morvex/run_inputs.h"
#include "morvex/run_plan.h"
#include "morvex/smoother.h"

#include <initializer_list>
#include <string_view>

namespace Morvex {

using Outils_Texte::EText;

using Compagnon::ELevel;
using Compagnon::ERunEnd;
using Compagnon::IRunMonitor;

// Reads forward only, a sample at a time, so that the length of a recording does not matter; what the
// alignment reads ahead is bounded. Where inertial data is missing for longer than can be bridged, the
// navigation ends and a new alignment begins. One thread.
class CNavigationRun {
  public:
    // The monitor must outlive the run.
    CNavigationRun(const SRunPlan& plan, IRunMonitor& monitor);

    // Everything. What went wrong has gone to the monitor.
    ERunEnd Execute();

  private:
    class CItems;

    bool OpenInputs();
    // Looks for settings that are forgotten or wrong, and sets them right in the plan.
    void Prepare();
    void UseMounting(const SMounting& mounting);
    void FindUtcOrigin();
    std::optional<SAlignment> Align(SStretch& stretch);
    bool NavigateSegment(const SStretch& stretch, const SAlignment& alignment);
    bool NavigateAll(CInsFilter& filter, const SStretch& stretch, CItems& items);
    bool NavigateSample(CInsFilter& filter, const SImuSample& sample, CItems& items);
    // Writes the estimates and, less often, the internal states.
    void WriteStates(CInsFilter& filter);
    // Writes what is wanted up to `until`, interpolated from `before` to the filter's state.
    bool WriteBetween(CInsFilter& filter, const SNavigation& before, double until);
    // What the pass backwards needs of a date: around every change of the filter's state.
    void BeginEpoch(CInsFilter& filter);
    void EndEpoch(CInsFilter& filter, bool begins = false);
    bool Smooth();
    bool KeepAlive(double time);
    void Finish();
    std::string MakeFinishedText() const;
    void Tell(ELevel level, EText code, std::initializer_list<std::string_view> arguments = {});

    SRunPlan m_plan;
    IRunMonitor& m_monitor;
    CRunInputs m_inputs;
    CAidingReader m_aidings;
    CStateLayout m_layout;
    CMarkReader m_marks;
    COutputSchedule m_schedule;
    CResultWriter m_result;
    CResultQueue m_results;
    CObserver m_observer;
    CMountReader m_mount;
    std::vector<SEstimateText> m_estimates;           // of the last segment
    double m_nextEstimates = 0.0, m_nextStates = 0.0; // s
    // With the algorithm Backward the results wait for their smoothed errors.
    bool m_smoothing = false;
    CSmoother m_smoother;
    SEpoch m_epoch;
    double m_lastEpoch = 0.0;
    bool m_segmentEnded = false;
    bool m_stopped = false;
    bool m_writeFailed = false;
    bool m_navigated = false;
    double m_begin = 0.0, m_end = 0.0; // of the run, for the progress, s
    double m_time = 0.0;               // how far the run has come, s
    double m_nextOutput = 0.0;
    int m_samplesSinceAlive = 0;
};

} // namespace Morvex
