// The numeric exports.
#include "bvutil/numeric.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

TEST(Numeric, TakesAndGivesDegrees) {
    EXPECT_EQ(sin_deg(180), 1.2246467991473532e-16);
    EXPECT_EQ(sin_deg(90), 1);
    EXPECT_NEAR(sin_deg(30), 0.5, 1e-15);
    EXPECT_EQ(cos_deg(180), -1);
    EXPECT_NEAR(cos_deg(60), 0.5, 1e-15);
    EXPECT_NEAR(sin_deg(1e15), -0.9849545422887984, 1e-15);
    EXPECT_EQ(atan_deg(1), 45);
    EXPECT_EQ(atan2_deg(1, -1), 135);
    EXPECT_EQ(atan2_deg(0, -1), 180);
    EXPECT_EQ(atan2_deg(-0.0, -1), -180);
    EXPECT_EQ(acos_deg(0), 1.5707963267948966);
    EXPECT_EQ(acos_deg(57.29577951308232), 0);
    EXPECT_TRUE(std::isnan(acos_deg(58)));
}

TEST(Numeric, GuardsDivisionAndTellsSigns) {
    const double nan = std::nan("");
    EXPECT_EQ(ddiv(1, 0), 0);
    EXPECT_FALSE(std::signbit(ddiv(-1, -0.0)));
    EXPECT_EQ(ddiv(1, 4), 0.25);
    EXPECT_TRUE(std::isnan(ddiv(1, nan)));
    EXPECT_EQ(fdiv(1, -0.0f), 0.0f);
    EXPECT_EQ(fdiv(1, 3), 1.0f / 3.0f);
    EXPECT_EQ(fsgn(-1e-300), -1);
    EXPECT_EQ(fsgn(5), 1);
    EXPECT_EQ(fsgn(-0.0), 0);
    EXPECT_EQ(fsgn(nan), 0);
}

} // namespace
