// Fills in what lost inertial packets would have held, and says how far off that may be.
#pragma once

#include "morvex/measurements.h"

#include <array>
#include <deque>
#include <span>
#include <vector>

namespace Morvex {

// Remembers the last minute of motion. A hole is bridged by a polynomial through the rates on both sides, by
// a straight line between them, or by the mean of the minute: whichever errs least when it is tried on holes
// of the same length all over that minute. The errors of these trials are the deviation of the bridge, so
// that no property of a vehicle has to be assumed.
class CGapBridge {
  public:
    // Seconds of samples that Fill wants to see after a hole of this length.
    static double GetLookAhead(double gap);

    // Learns a sample without a hole.
    void Learn(const SImuSample& sample);
    // Bridges the hole before `sample`, whose span and `gap` include it and whose increments do not.
    // `after`: samples that follow, as far as they are without a hole. `nominal`: seconds of one sample.
    // Appends to `filled` the samples that replace it: pieces of a short hole and the sample itself, or one
    // sample for all.
    void Fill(const SImuSample& sample, std::span<const SImuSample> after, double nominal,
              std::vector<SImuSample>& filled);

  private:
    using Vector6d = Eigen::Matrix<double, 6, 1>; // rotation and velocity, or their rates
    // Sums up to the end of a sample.
    struct SPoint {
        double time;
        Vector6d sum;
    };
    enum EMethod { polynomial, line, mean, methodCount };
    // The rate in a hole, by the time from its middle.
    struct SBridge {
        Vector6d constant = Vector6d::Zero(), slope = Vector6d::Zero(), bend = Vector6d::Zero();
        Vector6d GetSum(double from, double to) const;
    };
    struct STrial {
        Vector6d squares[methodCount]; // mean squared errors of the sums over the hole
        bool isGood = false;
    };

    SBridge Make(EMethod method, double gap, double window, const std::array<Vector6d, 4>& rates) const;
    STrial Try(int samples, int window) const;
    Vector6d GetRate(std::ptrdiff_t from, std::ptrdiff_t to) const;
    Vector6d GetMeanRate() const { return GetRate(0, static_cast<std::ptrdiff_t>(m_points.size()) - 1); }

    std::deque<SPoint> m_points;
};

} // namespace Morvex
