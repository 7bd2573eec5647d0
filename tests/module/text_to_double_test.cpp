#include "module/text_to_double.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

TEST(TextToDouble, ReadsTheLeadingNumber) {
    const double infinity = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
    } cases[] = {
        {"12abc", 12},
        {"abc", 0},
        {"", 0},
        {" \t\r\n\v\f-7", -7},
        {"+.5", 0.5},
        {"5.", 5},
        {".", 0},
        {"-.e3", 0},
        {"1e", 1},
        {"1e+", 1},
        {"2.E5", 2e5},
        {"1d5", 1e5},
        {"1.5D-2x", .015},
        {"1d", 1},
        {"0x10", 0},
        {"inf", 0},
        {"nan", 0},
        {"+-1", 0},
        {"1,5", 1},
        {"0.1", 0.1},
        {"1e400", infinity},
        {"-1e400", -infinity},
        {"1e99999999999", infinity},
        {"1e-99999999999", 0},
        {"4.9e-324", 4.9e-324},
        {"1e-400", 0},
        {"123456789012345678901234567890", 123456789012345678901234567890.},
        {"1d400", infinity},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(text_to_double(text), value) << text;
    EXPECT_TRUE(std::signbit(text_to_double("-0")));
    EXPECT_TRUE(std::signbit(text_to_double("-1e-400")));
}

TEST(TextToDouble, WeighsLongMantissasAgainstExponents) {
    const std::string zeros(400, '0');
    EXPECT_EQ(text_to_double("0." + zeros + "1e401"), 1.0);
    EXPECT_EQ(text_to_double("1" + zeros + "e-400"), 1.0);
    EXPECT_EQ(text_to_double("1" + zeros), std::numeric_limits<double>::infinity());
    EXPECT_EQ(text_to_double("0." + zeros + "1"), 0.0);
    EXPECT_EQ(text_to_double("0." + zeros + "e999999"), 0.0);
}

} // namespace
