#include "runtime/rounding.h"

#include "tests/support/rows.h"

#include <climits>
#include <cmath>
#include <limits>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(Rounding, KnowsThePowersOfTen) {
    for (int power = -330; power <= 315; ++power)
        EXPECT_EQ(power_of_ten(power), std::strtod(("1e" + std::to_string(power)).c_str(), nullptr)) << power;
    EXPECT_EQ(power_of_ten(INT_MAX), infinity);
    EXPECT_EQ(power_of_ten(INT_MIN), 0);
}

TEST(Rounding, FollowsItsFormula) {
    const auto rounded = [](const std::string& row) { // number and power
        char *power = nullptr, text[32];
        const double number = std::strtod(row.c_str(), &power);
        const double result = round_to_power(number, std::atoi(power));
        std::snprintf(text, sizeof text, "%.17g", result);
        return std::string(std::isnan(result) ? "nan" : text);
    };
    expect_rows(rounded, "2.5 0 -> 3", "-2.5 0 -> -2", "1250 2 -> 1300", "-1250 2 -> -1200", "49 2 -> 0",
                "inf 3 -> inf", "1.234567 -5 -> 1.2345700000000002", "-1.5e-5 -5 -> -1.0000000000000001e-05",
                "1.234565 -5 -> 1.2345600000000001", // the double lies just below the half
                "0.49999999999999994 0 -> 1",        // the sum is rounded
                "nan 0 -> nan", "5 309 -> nan", "5 -324 -> nan");
}

TEST(Rounding, CutsOffFractions) {
    expect_rows(
        [](const std::string& number) {
            return std::to_string(whole_part(std::strtod(number.c_str(), nullptr)));
        },
        "2.7 -> 2", "-2.7 -> -2", "-0.9 -> 0", "2147483647.9 -> 2147483647", "2147483648 -> -2147483648",
        "-2147483648.9 -> -2147483648", "-2147483649 -> -2147483648", "1e300 -> -2147483648",
        "nan -> -2147483648", "inf -> -2147483648", "-inf -> -2147483648");
}

} // namespace
