// The numeric exports under every precision that a caller may have set.
#include "bvutil/numeric.h"

#include <gtest/gtest.h>

#include <cfenv>
#include <climits>
#include <cmath>
#include <vector>

namespace {

unsigned short control_word() {
    unsigned short word;
    __asm__ volatile("fnstcw %0" : "=m"(word));
    return word;
}
void set_control_word(unsigned short word) {
    __asm__ volatile("fldcw %0" : : "m"(word));
}

std::vector<double> results() {
    std::vector<double> all;
    for (double x = -1000; x <= 1000; x += 1.37)
        for (double y : {BvUtil_PRound(x, -5), static_cast<double>(BvUtil_FRound(static_cast<float>(x), -2)),
                         static_cast<double>(BvUtil_LRound(x)), sin_deg(x), cos_deg(x), atan_deg(x / 100),
                         atan2_deg(x, 3), acos_deg(x / 18), ddiv(x, 7), static_cast<double>(fdiv(1, 3))})
            all.push_back(y);
    return all;
}

TEST(Numeric, DoesNotDependOnTheCallersPrecision) {
    const std::vector<double> expected = results();
    // 24 and 53 bits; 64 bits rounding down; 53 bits with invalid operations and zero divisions unmasked.
    for (const unsigned short word : std::initializer_list<unsigned short>{0x007F, 0x027F, 0x077F, 0x027A}) {
        const unsigned short former = control_word();
        set_control_word(word);
        const std::vector<double> found = results();
        const double none = acos_deg(1000);
        const unsigned short left = control_word();
        std::feclearexcept(FE_ALL_EXCEPT);
        set_control_word(former);
        EXPECT_TRUE(std::isnan(none));
        EXPECT_EQ(left & 0x0F3F, word & 0x0F3F);
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            EXPECT_TRUE(found[i] == expected[i] || (std::isnan(found[i]) && std::isnan(expected[i])))
                << "control word " << word << ", result " << i;
    }
}

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
