#include "runtime/rounding.h"

#include <cmath>
#include <iterator>
#include <limits>

namespace {

// The powers of ten as literals, which the compiler rounds correctly: a runtime's pow() does not everywhere,
// and some follow the precision of the x87 unit. TEN(1e-31) is 1e-310 to 1e-319.
#define TEN(e) e##0, e##1, e##2, e##3, e##4, e##5, e##6, e##7, e##8, e##9
#define HUNDRED(e)                                                                                           \
    TEN(e##0), TEN(e##1), TEN(e##2), TEN(e##3), TEN(e##4), TEN(e##5), TEN(e##6), TEN(e##7), TEN(e##8),       \
        TEN(e##9)

// 10 to the power of the index, and of minus the index.
constexpr double powers[] = {HUNDRED(1e0), HUNDRED(1e1), HUNDRED(1e2), 1e300, 1e301, 1e302,
                             1e303,        1e304,        1e305,        1e306, 1e307, 1e308};
constexpr double negative_powers[] = {HUNDRED(1e-0), HUNDRED(1e-1), HUNDRED(1e-2), TEN(1e-30), TEN(1e-31),
                                      1e-320,        1e-321,        1e-322,        1e-323};
static_assert(std::size(powers) == 309 && std::size(negative_powers) == 324);

#undef HUNDRED
#undef TEN

} // namespace

double power_of_ten(int power) {
    constexpr int highest = static_cast<int>(std::size(powers)) - 1;
    constexpr int lowest = 1 - static_cast<int>(std::size(negative_powers));
    if (power > highest) return std::numeric_limits<double>::infinity();
    if (power < lowest) return 0;
    return power >= 0 ? powers[power] : negative_powers[-power];
}

double round_to_power(double x, int power) {
    const double unit = power_of_ten(power);
    return std::floor(x / unit + 0.5) * unit;
}

long whole_part(double x) {
    // Both bounds are doubles, and both comparisons fail for NaN.
    if (!(x > -2147483649.0 && x < 2147483648.0)) return std::numeric_limits<long>::min();
    return static_cast<long>(x);
}
