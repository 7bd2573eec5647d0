#include "bvutil/numeric.h"

#include "module/own_arithmetic.h"
#include "runtime/rounding.h"

namespace {

constexpr double radians_per_degree = 0.017453292519943295;
constexpr double degrees_per_radian = 57.29577951308232;

// The platform runtime's functions, by their import slots: the names alone would be bound to the compiler's
// own versions, whose sine is a rough one near multiples of pi.
extern "C" {
extern double(__cdecl* const runtime_sin)(double) __asm__("__imp__sin");
extern double(__cdecl* const runtime_cos)(double) __asm__("__imp__cos");
extern double(__cdecl* const runtime_atan)(double) __asm__("__imp__atan");
extern double(__cdecl* const runtime_atan2)(double, double) __asm__("__imp__atan2");
extern double(__cdecl* const runtime_acos)(double) __asm__("__imp__acos");
}

template <class Number>
Number divide_or_zero(Number a, Number b) {
    return b == 0 ? 0 : a / b;
}

} // namespace

extern "C" double BVUTIL_CALL BvUtil_PRound(double x, int p) {
    return with_own_arithmetic([&] { return round_to_power(x, p); });
}

extern "C" float BVUTIL_CALL BvUtil_FRound(float x, int p) {
    return with_own_arithmetic([&] { return static_cast<float>(round_to_power(x, p)); });
}

extern "C" long BVUTIL_CALL BvUtil_LRound(double x) {
    return with_own_arithmetic([&] { return whole_part(x); });
}

extern "C" double BVUTIL_CALL sin_deg(double degrees) {
    return with_own_arithmetic([&] { return runtime_sin(degrees * radians_per_degree); });
}

extern "C" double BVUTIL_CALL cos_deg(double degrees) {
    return with_own_arithmetic([&] { return runtime_cos(degrees * radians_per_degree); });
}

extern "C" double BVUTIL_CALL atan_deg(double x) {
    return with_own_arithmetic([&] { return runtime_atan(x) * degrees_per_radian; });
}

extern "C" double BVUTIL_CALL atan2_deg(double y, double x) {
    return with_own_arithmetic([&] { return runtime_atan2(y, x) * degrees_per_radian; });
}

extern "C" double BVUTIL_CALL acos_deg(double x) {
    return with_own_arithmetic([&] {
        return runtime_acos(x * radians_per_degree);
    }); // kept: the argument is converted, not the result
}

extern "C" double BVUTIL_CALL ddiv(double a, double b) {
    return with_own_arithmetic([&] { return divide_or_zero(a, b); });
}

extern "C" float BVUTIL_CALL fdiv(float a, float b) {
    return with_own_arithmetic([&] { return divide_or_zero(a, b); });
}

extern "C" double BVUTIL_CALL fsgn(double x) {
    return with_own_arithmetic([&] { return x < 0 ? -1.0 : x > 0 ? 1.0 : 0.0; });
}
