// How noisy the gyroscopes are, from the increments alone and whatever the vehicle does.
#pragma once

#include "morvex/measurements.h"
#include "morvex/sensor_grade.h"

#include <array>
#include <cstddef>
#include <vector>

namespace Morvex {

// Sums up the increments over several lengths and takes third differences of the sums, in windows of 20 s. A
// smooth motion leaves nearly nothing in them, rounding and vibration less the longer the sums, white noise
// the same in all when scaled by the square root of the length (as the Allan deviation scales, IEEE Std 952).
// Whatever else is in the data adds to it: the smallest value among lengths, quiet windows and axes bounds
// the noise from above.
class CNoiseProbe {
  public:
    void Add(const SImuSample& sample);

    // Increments of any kind, by the axes of the unit: rotation, or velocity.
    void Add(double time, double span, double gap, const Vector3d& increment);
    // The bound of the random walk, in the increments' unit by √s; a huge value before the first whole
    // window.
    double GetNoise() const;
    // The first grade of kSensorGrades that may have such noise.
    std::size_t GetFinestGrade() const;

  private:
    static constexpr std::array<double, 3> kLengths{0.0, 0.1, 1.0}; // s; 0: every increment for itself

    struct SLength {
        Vector3d sum = Vector3d::Zero();
        double duration = 0.0;
        std::array<Vector3d, 3> last{Vector3d::Zero(), Vector3d::Zero(), Vector3d::Zero()};
        int count = 0;
        Vector3d squares = Vector3d::Zero(); // of third differences
        int differences = 0;
        double windowBegin = 0.0;
        std::array<std::vector<double>, 3> windows; // by axis: noise of each window, rad/√s
    };
    static void AddSum(SLength& length, double time);

    std::array<SLength, kLengths.size()> m_lengths;
};

} // namespace Morvex
