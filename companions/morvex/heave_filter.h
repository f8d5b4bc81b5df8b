// Heave: the vertical motion about its mean, of a point of the vehicle.
#pragma once

#include <Eigen/Core>

#include <cstdint>
#include <deque>

namespace Morvex {

enum class EHeave : std::uint8_t {
    none,
    causal,    // from what was before a moment only
    zeroPhase, // from what was before and after it
};

// Takes the mean motion off a series of heights. An error of the height that is a constant, a speed or an
// acceleration, as errors of the unit cause them, goes with the mean.
//
// Zero phase: the mean is a parabola through a minute before and after, by least squares with Gaussian
// weights of 14.5 s; swell of up to 25 s passes within 1 %. Causal: a tracking filter of third order follows
// the mean and lags; swell comes earlier by the ratio of its period to half of the filter's, as with every
// such filter (Godhavn, Adaptive tuning of heave filter in motion sensor, Oceans 1998).
class CHeaveFilter {
  public:
    // Height of the inertial unit, m, and the vertical parts of its three axes: by these the height of every
    // point of the vehicle follows.
    using Values = Eigen::Vector4d;

    explicit CHeaveFilter(EHeave kind = EHeave::none, double period = 200.0)
        : m_kind(kind), m_period(period) {}

    // Starts over.
    void Reset();
    // Whether Add would take the values of this moment.
    bool Wants(double time) const {
        return m_kind != EHeave::none && (m_points.empty() || time - m_points.back().time >= kStep);
    }
    // Adds the values of a moment. Ascending times; those closer than 0.1 s are left out.
    void Add(double time, const Values& values);
    // Whether all that counts for a moment has been added.
    bool IsReady(double time) const;
    // The values without their mean. Ascending times, apart from a step or so.
    Values Get(double time);

  private:
    static constexpr double kStep = 0.1 * 0.999; // s, between two points

    struct SPoint {
        double time;
        Values values;
        Values mean; // of the causal filter
    };
    Values GetMean(double time) const;
    Values Fit(double time) const;
    std::size_t FindAfter(double time) const;

    EHeave m_kind;
    double m_period; // s, of the causal filter
    std::deque<SPoint> m_points;
    Values m_speed = Values::Zero(), m_acceleration = Values::Zero(); // of the causal mean
    // The two last nodes of the mean: it is smooth, so that it need not be found for every moment.
    double m_nodeTime[2] = {-1e30, -1e30};
    Values m_node[2] = {Values::Zero(), Values::Zero()};
};

} // namespace Morvex
