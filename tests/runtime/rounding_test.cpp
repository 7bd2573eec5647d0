#include "runtime/rounding.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

TEST(Rounding, KnowsThePowersOfTen) {
    for (int power = -330; power <= 315; ++power)
        EXPECT_EQ(power_of_ten(power), std::strtod(("1e" + std::to_string(power)).c_str(), nullptr)) << power;
    EXPECT_EQ(power_of_ten(INT_MAX), infinity);
    EXPECT_EQ(power_of_ten(INT_MIN), 0);
}

TEST(Rounding, FollowsItsFormula) {
    const struct {
        double x;
        int power;
        double rounded;
    } cases[] = {{2.5, 0, 3},
                 {-2.5, 0, -2},
                 {1.234567, -5, 123457 * 1e-5},
                 {1250, 2, 1300},
                 {-1250, 2, -1200},
                 {49, 2, 0},
                 {-1.5e-5, -5, -1e-5},
                 {infinity, 3, infinity},
                 {0.49999999999999994, 0, 1},    // the sum is rounded
                 {1.234565, -5, 123456 * 1e-5}}; // the double lies just below the half
    for (const auto& [x, power, rounded] : cases)
        EXPECT_EQ(round_to_power(x, power), rounded) << x << " to " << power;
    for (const double none : {round_to_power(nan, 0), round_to_power(5, 309), round_to_power(5, -324)})
        EXPECT_TRUE(std::isnan(none));
}

TEST(Rounding, CutsOffFractions) {
    const std::pair<double, long> cases[] = {
        {2.7, 2},          {-2.7, -2},           {2147483647.9, LONG_MAX},  {2147483648.0, LONG_MIN},
        {1e300, LONG_MIN}, {nan, LONG_MIN},      {-2147483648.9, LONG_MIN}, {-2147483649.0, LONG_MIN},
        {-0.9, 0},         {infinity, LONG_MIN}, {-infinity, LONG_MIN}};
    for (const auto& [x, whole] : cases)
        EXPECT_EQ(whole_part(x), whole) << x;
}

} // namespace
