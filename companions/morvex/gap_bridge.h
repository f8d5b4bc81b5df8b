// Fills in what lost inertial packets would have held, and tells how far off that may be.
#pragma once

#include "morvex/measurements.h"

namespace Morvex {

// Learns the motion of the vehicle from the samples around a gap. A gap of a few samples is bridged from its
// neighbours, and errs by their curvature; a longer one by the mean of the last while, and errs by what the
// vehicle's motion usually adds in that time. A longer gap never counts as better known than a shorter one.
class CGapBridge {
  public:
    // Turns `sample`, whose increments are those of its last `span - gap` seconds, into the whole span.
    // `nominal`: seconds of one sample. Samples without a gap pass unchanged.
    void Fill(SImuSample& sample, double nominal);

  private:
    // The same statistics for rates and for specific forces, by axis.
    struct SMotion {
        Vector3d mean = Vector3d::Zero();
        Vector3d variance = Vector3d::Zero();  // about the mean
        Vector3d curvature = Vector3d::Zero(); // mean square of second differences
        Vector3d last[2] = {Vector3d::Zero(), Vector3d::Zero()};
    };
    static void Learn(SMotion& motion, const Vector3d& rate, double span, int count);
    static Vector3d GetDeviation(const SMotion& motion, double gap, double samples);

    SMotion m_turn, m_force;
    int m_count = 0; // samples in a row without a gap
};

} // namespace Morvex
