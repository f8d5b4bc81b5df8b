#include "dataaccess/directions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

using namespace Application_Tarvel;

namespace {

TEST(Directions, AnyCountAndSizeOfAngles) {
    for (std::size_t count = 0; count < 12; ++count)
        for (const double step : {0.7, -45.0, 89.9, 1234.5}) {
            std::vector<double> angles;
            SDirectionSums expected;
            for (std::size_t i = 0; i < count; ++i) {
                angles.push_back(static_cast<double>(i) * step - 180);
                expected.sine += std::sin(angles[i] * std::numbers::pi / 180);
                expected.cosine += std::cos(angles[i] * std::numbers::pi / 180);
                expected.squares += std::pow(std::remainder(angles[i], 360), 2);
            }
            SDirectionSums sums;
            AddDirections(angles, 360, sums);
            EXPECT_NEAR(sums.sine, expected.sine, 1e-11);
            EXPECT_NEAR(sums.cosine, expected.cosine, 1e-11);
            EXPECT_NEAR(sums.squares, expected.squares, 1e-6);
        }
}

TEST(Directions, DamagedAnglesStayOnTheCircle) {
    for (const double angle : {1e19, -1e38, 1e300}) {
        SDirectionSums sums;
        AddDirections({&angle, 1}, 2 * std::numbers::pi, sums);
        EXPECT_NEAR(std::hypot(sums.sine, sums.cosine), 1, 1e-11) << angle;
    }
}

} // namespace
