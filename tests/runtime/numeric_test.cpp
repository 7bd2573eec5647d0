// The numeric exports.
#include "bvutil/numeric.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Numeric, TakesAndGivesDegrees) {
    const std::pair<double, double> exact[] = {{sin_deg(180), 1.2246467991473532e-16},
                                               {sin_deg(90), 1},
                                               {cos_deg(180), -1},
                                               {atan_deg(1), 45},
                                               {atan2_deg(1, -1), 135},
                                               {atan2_deg(-0.0, -1), -180},
                                               {acos_deg(0), 1.5707963267948966},
                                               {acos_deg(57.29577951308232), 0}};
    for (const auto& [value, expected] : exact)
        EXPECT_EQ(value, expected);
    EXPECT_NEAR(cos_deg(60), 0.5, 1e-15);
    EXPECT_NEAR(sin_deg(1e15), -0.9849545422887984, 1e-15);
    EXPECT_TRUE(std::isnan(acos_deg(58)));
}

TEST(Numeric, GuardsDivisionAndTellsSigns) {
    const double nan = std::nan("");
    EXPECT_FALSE(std::signbit(ddiv(-1, -0.0)));
    EXPECT_TRUE(std::isnan(ddiv(1, nan)));
    EXPECT_EQ(fdiv(1, 3), 1.0f / 3.0f);
    const std::pair<double, double> exact[] = {{ddiv(1, 0), 0},     {ddiv(1, 4), 0.25}, {fdiv(1, -0.0f), 0},
                                               {fsgn(-1e-300), -1}, {fsgn(5), 1},       {fsgn(-0.0), 0},
                                               {fsgn(nan), 0}};
    for (const auto& [value, expected] : exact)
        EXPECT_EQ(value, expected);
}

} // namespace
