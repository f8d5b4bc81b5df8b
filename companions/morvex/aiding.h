// The aiding sensors other than positions: one row a kind.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/packet_stream.h"
#include "morvex/run_plan.h"

#include <array>
#include <memory>
#include <span>
#include <vector>

namespace Morvex {

// One packet of a sensor, in SI units.
struct SAiding {
    double time = 0.0; // instant of validity, s
    EAiding kind = EAiding::count;
    Vector3d value = Vector3d::Zero();     // as its row says
    Vector3d deviation = Vector3d::Ones(); // standard deviations of the value
    Vector3d place = Vector3d::Zero();     // of a beacon: latitude, longitude, height above the ellipsoid
    EUse use = EUse::tested;
    const SAidingPlan* plan = nullptr;
};

// What an observation needs besides the filter.
struct SAidingContext {
    double geoidHeight = 0.0;         // above the ellipsoid, m
    Vector3d rate = Vector3d::Zero(); // of the vessel against the earth, vessel axes, rad/s
};

// How far a vehicle on wheels may move sideways and upwards, standard deviations in m/s, at a speed along,
// m/s, while it turns at these rates, rad/s.
Eigen::Vector2d GetLandDeviation(double speed, const Vector3d& rate);

// What the plan of a vehicle on wheels says at an instant, as if a sensor had measured it.
SAiding MakeLandAiding(const SAidingPlan& plan, double time);

// The observation of a packet by the filter's present state: innovation, derivative and noise.
SObservation ObserveAiding(const SAiding& aiding, const CInsFilter& filter, const SAidingContext& context);

// The groups of states that the sensors of a plan bring.
CStateLayout MakeStateLayout(const SRunPlan& plan);

// The packets of all aiding sensors of a plan in one order of time.
class CAidingReader {
  public:
    // Opens every sensor; `plan` must outlive the reader. Gives the plans that could not be opened.
    std::vector<const SAidingPlan*> Open(const SRunPlan& plan);

    // The next packet; null at the end. Valid until Pop.
    const SAiding* Peek() const { return m_first < m_sources.size() ? &m_sources[m_first]->next : nullptr; }
    void Pop();
    void SkipTo(double time) {
        while (Peek() && Peek()->time < time) Pop();
    }

  private:
    struct SSource {
        const SAidingPlan* plan = nullptr;
        CPacketStream stream;
        SAiding next;
        double lastDate = 0.0;
        bool hasNext = false;
    };
    void Advance(SSource& source);
    void FindFirst();
    bool Read(SSource& source, const CPayload& payload, SAiding& aiding) const;

    const SRunPlan* m_plan = nullptr;
    std::vector<std::unique_ptr<SSource>> m_sources;
    std::size_t m_first = 0;
};

} // namespace Morvex
