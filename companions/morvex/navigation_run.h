// A whole run: from the files of a plan to the result file.
#pragma once

#include "common/run_monitor.h"
#include "foundation/texts.h"
#include "morvex/alignment.h"
#include "morvex/fix_monitor.h"
#include "morvex/fix_reader.h"
#include "morvex/imu_reader.h"
#include "morvex/mark_reader.h"
#include "morvex/output_schedule.h"
#include "morvex/result_writer.h"
#include "morvex/run_plan.h"

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
    // Both must outlive the run.
    CNavigationRun(const SRunPlan& plan, IRunMonitor& monitor);

    // Everything. What went wrong has been told to the monitor.
    ERunEnd Execute();

  private:
    class CFixSource;

    bool OpenInputs();
    void FindUtcOrigin();
    bool NextSample(SImuSample& sample);
    bool ReadAhead(SStretch& stretch, double seconds);
    std::optional<SAlignment> Align(SStretch& stretch);
    bool NavigateSegment(const SStretch& stretch, const SAlignment& alignment);
    bool NavigateSample(CInsFilter& filter, const SImuSample& sample, CFixSource& fixes);
    bool WriteBetween(CInsFilter& filter, const SNavigation& before);
    void TellGpsGap(double time);
    bool KeepAlive(double time);
    void Finish();
    void Tell(ELevel level, EText code, std::initializer_list<std::string_view> arguments = {});

    const SRunPlan& m_plan;
    IRunMonitor& m_monitor;
    CImuReader m_imu;
    CFixReader m_fixes;
    CMarkReader m_marks;
    COutputSchedule m_schedule;
    CResultWriter m_result;
    CFixMonitor m_fixMonitor;
    SImuSample m_carry; // the first sample behind a long gap
    bool m_hasCarry = false;
    bool m_segmentEnded = false;
    bool m_stopped = false;
    bool m_writeFailed = false;
    bool m_navigated = false;
    double m_begin = 0.0, m_end = 0.0; // of the run, for the progress, s
    double m_time = 0.0;               // how far the run has come, s
    double m_nextOutput = 0.0;
    double m_nextHeightHold = 0.0;
    double m_lastFix = 0.0; // the last that was used, or the begin of the segment, s
    int m_gapsTold = 0;
    int m_samplesSinceAlive = 0;
};

} // namespace Morvex
