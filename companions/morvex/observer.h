// Corrects the filter by the packets of the sensors, and by what the vehicle cannot do.
#pragma once

#include "common/run_monitor.h"
#include "foundation/text_id.h"
#include "morvex/aiding.h"
#include "morvex/fix_monitor.h"
#include "morvex/rest_detector.h"
#include "morvex/run_plan.h"
#include "morvex/sensor_watch.h"
#include "morvex/timeline.h"

#include <array>
#include <functional>
#include <initializer_list>
#include <string_view>

namespace Morvex {

// Applies observations, keeps the account of them and reports sensors that seem wrong. One thread.
class CObserver {
  public:
    using CReport = std::function<void(Compagnon::ELevel level, Outils_Texte::EText code,
                                       std::initializer_list<std::string_view> arguments)>;
    // `plan` must outlive the observer. A log that is mounted turned is turned back in it.
    CObserver(SRunPlan& plan, CReport report);

    // Begins the account again: the plan has changed.
    void Reset();
    // Begins a segment of the navigation with the filter at its start.
    void Begin(const CInsFilter& filter, const SSensorGrade& grade, const SStretch& stretch);

    void Use(CInsFilter& filter, const SPositionFix& fix);
    EFixResult Use(CInsFilter& filter, const SAiding& aiding);
    // Follows the motion by which rest is found.
    void AddMotion(const CInsFilter& filter, double span);
    // Applies the measurements that are due at the end of a sample. `change(apply)` calls `apply`, and does
    // what every change of the filter needs before and after it.
    template <class Change>
    void ObserveDue(CInsFilter& filter, double time, Change&& change) {
        if (time >= m_nextRest) change([&] { ObserveRest(filter, time); });
        if (m_land && time >= m_nextLand) change([&] { ObserveLand(filter, time); });
        if (time >= m_nextHeightHold) change([&] { ObserveHeight(filter, time); });
        if (time >= m_nextScales) WatchScales(filter, time);
    }

    // The geoid above the ellipsoid, m, and the status words of a result.
    double GetGeoidHeight() const { return m_fixMonitor.GetGeoidHeight(); }
    std::uint32_t GetStatus1(double time, const NavigationCovariance& covariance) const {
        return m_fixMonitor.GetStatus1(time, covariance);
    }
    std::uint32_t GetStatus2(double time) const;

    // Reports the account at the end of a run, s.
    void Finish(double time);
    // Gaps of the positions up to now that were long enough to be reported.
    int GetGapCount() const { return m_gaps; }

  private:
    static constexpr std::size_t kKinds = static_cast<std::size_t>(EAiding::count);
    void ObserveRest(CInsFilter& filter, double time);
    void ObserveLand(CInsFilter& filter, double time);
    void ObserveHeight(CInsFilter& filter, double time);
    void WatchDirection(CInsFilter& filter, const SAiding& aiding, const SAidingContext& context);
    void WatchScales(CInsFilter& filter, double time);
    void ReportGpsGap(double time);
    std::string_view GetChannel(EAiding kind) const;

    SRunPlan& m_plan;
    CReport m_report;
    CFixMonitor m_fixMonitor;
    CSensorWatch m_watch;
    CRestDetector m_rest{0.0, 0.0};
    std::uint64_t m_restUsed = 0, m_restRejected = 0;
    double m_lastRest = -1e30; // that was used, s
    std::array<bool, kKinds> m_scaleReported{};
    std::array<double, kKinds> m_contradicted{}; // since when, by kind; NaN: not
    const SAidingPlan* m_land = nullptr;         // of a vehicle on wheels
    double m_landDoubt = 0.0;                    // how long its wheels have contradicted, s
    double m_heldHeight = 0.0;                   // when the height was aided last, m
    double m_lastFix = 0.0;                      // the last that was used, or the begin of the segment, s
    int m_gaps = 0;                              // without a position
    double m_nextRest = 0.0, m_nextLand = 0.0, m_nextHeightHold = 0.0, m_nextScales = 0.0; // s
};

} // namespace Morvex
