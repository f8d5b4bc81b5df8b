#include "morvex/noise_probe.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

constexpr double kWindow = 20.0;       // s
constexpr int kFewestDifferences = 12; // in a window
constexpr double kQuiet = 0.05;        // share of the windows that are taken for quiet
constexpr double kLongestBridge = 0.2; // s
constexpr double kUnknown = 1e3;
// A third difference of white noise has the variance of 1 + 9 + 9 + 1 of it.
constexpr double kDifferenceVariance = 20.0;

} // namespace

void CNoiseProbe::Add(const SImuSample& sample) { Add(sample.time, sample.span, sample.gap, sample.angle); }

void CNoiseProbe::Add(double time, double span, double gap, const Vector3d& increment) {
    for (std::size_t i = 0; i < kLengths.size(); ++i) {
        SLength& length = m_lengths[i];
        // A few lost samples are bridged from their neighbours, which adds next to nothing.
        if (gap > kLongestBridge) {
            length.sum.setZero();
            length.duration = 0.0;
            length.count = 0;
            continue;
        }
        length.sum += increment;
        length.duration += span;
        if (length.duration >= kLengths[i] - 0.25 * span) AddSum(length, time);
    }
}

void CNoiseProbe::AddSum(SLength& length, double time) {
    // Dates jitter and the increments with them: as rates they are smooth.
    const Vector3d rate = length.sum / length.duration;
    if (length.count >= 3) {
        const Vector3d difference = (rate - 3.0 * length.last[2] + 3.0 * length.last[1] - length.last[0]) *
                                    std::sqrt(length.duration);
        length.squares += difference.cwiseAbs2();
        ++length.differences;
    }
    if (length.count == 0) length.windowBegin = time;
    length.last = {length.last[1], length.last[2], rate};
    ++length.count;
    length.sum.setZero();
    length.duration = 0.0;
    if (time - length.windowBegin < kWindow) return;
    if (length.differences >= kFewestDifferences)
        for (int axis = 0; axis < 3; ++axis)
            length.windows[static_cast<std::size_t>(axis)].push_back(
                std::sqrt(length.squares[axis] / length.differences / kDifferenceVariance));
    length.windowBegin = time;
    length.squares.setZero();
    length.differences = 0;
}

double CNoiseProbe::GetNoise() const {
    double bound = kUnknown;
    for (const SLength& length : m_lengths)
        for (std::vector<double> windows : length.windows) {
            if (windows.empty()) continue;
            const auto quiet =
                windows.begin() + static_cast<std::ptrdiff_t>(kQuiet * static_cast<double>(windows.size()));
            std::nth_element(windows.begin(), quiet, windows.end());
            // No axis that stands still to the last digit is noiseless: such data is missing or made up.
            if (*quiet > 0.0) bound = std::min(bound, *quiet);
        }
    return bound;
}

std::size_t CNoiseProbe::GetFinestGrade() const {
    const double noise = GetNoise();
    std::size_t grade = 0;
    while (grade + 1 < kSensorGrades.size() && noise > kSensorGrades[grade].noiseLimit) ++grade;
    return grade;
}

} // namespace Morvex
