#include "morvex/heave_filter.h"

#include <Eigen/Cholesky>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace Morvex {
namespace {

constexpr double kDeviation = 14.5; // s, of the weights
constexpr double kReach = 4.0 * kDeviation;
constexpr double kNodeStep = 0.5;    // s
constexpr std::size_t kThinning = 3; // the mean takes one point of so many

} // namespace

void CHeaveFilter::Reset() {
    m_points.clear();
    m_speed.setZero();
    m_acceleration.setZero();
    m_nodeTime[0] = m_nodeTime[1] = -1e30;
}

void CHeaveFilter::Add(double time, const Values& values) {
    if (!Wants(time)) return;
    if (m_points.empty()) {
        m_points.push_back({time, values, values});
        return;
    }
    const double step = time - m_points.back().time;
    Values mean = m_points.back().mean;
    if (m_kind == EHeave::causal) {
        // A Butterworth filter of third order as a tracker of height, speed and acceleration.
        const double omega = 2.0 * std::numbers::pi / m_period;
        const double turn = std::min(omega * step, 1.0);
        mean += step * (m_speed + 0.5 * step * m_acceleration);
        m_speed += step * m_acceleration;
        const Values off = values - mean;
        mean += 2.0 * turn * off;
        m_speed += 2.0 * turn * omega * off;
        m_acceleration += turn * omega * omega * off;
    }
    m_points.push_back({time, values, mean});
}

bool CHeaveFilter::IsReady(double time) const {
    if (m_kind == EHeave::none) return true;
    const double reach = m_kind == EHeave::zeroPhase ? kReach + kNodeStep : 0.0;
    return !m_points.empty() && m_points.back().time >= time + reach;
}

std::size_t CHeaveFilter::FindAfter(double time) const {
    const auto after = std::partition_point(m_points.begin(), m_points.end(),
                                            [time](const SPoint& point) { return point.time < time; });
    return static_cast<std::size_t>(after - m_points.begin());
}

CHeaveFilter::Values CHeaveFilter::Fit(double time) const {
    const std::size_t first = FindAfter(time - kReach);
    const std::size_t last = FindAfter(time + kReach);
    // Against the nearest point: what has drifted for hours must not cost digits.
    const Values origin = m_points[std::min(FindAfter(time), m_points.size() - 1)].values;
    Eigen::Matrix3d normal = Eigen::Matrix3d::Zero();
    Eigen::Matrix<double, 3, 4> right = Eigen::Matrix<double, 3, 4>::Zero();
    for (std::size_t i = first; i < last; i += kThinning) {
        const double u = (m_points[i].time - time) / kDeviation;
        const double weight = std::exp(-0.5 * u * u);
        const Eigen::Vector3d row(1.0, u, u * u);
        normal += weight * row * row.transpose();
        right += weight * row * (m_points[i].values - origin).transpose();
    }
    if (last <= first + 3 * kThinning) return origin;
    return origin + normal.ldlt().solve(right).row(0).transpose();
}

CHeaveFilter::Values CHeaveFilter::GetMean(double time) const {
    const std::size_t after = std::clamp<std::size_t>(FindAfter(time), 1, m_points.size() - 1);
    const SPoint &a = m_points[after - 1], &b = m_points[after];
    const double share = std::clamp((time - a.time) / (b.time - a.time), 0.0, 1.0);
    return a.mean + share * (b.mean - a.mean);
}

CHeaveFilter::Values CHeaveFilter::Get(double time) {
    if (m_kind == EHeave::none || m_points.size() < 2) return Values::Zero();
    const std::size_t after = std::clamp<std::size_t>(FindAfter(time), 1, m_points.size() - 1);
    const SPoint &a = m_points[after - 1], &b = m_points[after];
    const double share = std::clamp((time - a.time) / (b.time - a.time), 0.0, 1.0);
    const Values values = a.values + share * (b.values - a.values);
    Values mean;
    if (m_kind == EHeave::causal) {
        mean = GetMean(time);
    } else {
        const double from = std::floor(time / kNodeStep) * kNodeStep;
        for (const double node : {from, from + kNodeStep})
            if (m_nodeTime[0] != node && m_nodeTime[1] != node) {
                const std::size_t older = m_nodeTime[0] < m_nodeTime[1] ? 0 : 1;
                m_nodeTime[older] = node;
                m_node[older] = Fit(node);
            }
        const std::size_t left = m_nodeTime[0] == from ? 0 : 1;
        mean = m_node[left] + (time - from) / kNodeStep * (m_node[1 - left] - m_node[left]);
    }
    const double keep = time - kReach - 2.0 * kNodeStep;
    while (m_points.size() > 2 && m_points[1].time < keep) m_points.pop_front();
    return values - mean;
}

} // namespace Morvex
