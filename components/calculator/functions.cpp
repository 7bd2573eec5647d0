#include "components/calculator/functions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace {

using Arguments = std::span<const double>;
using std::numbers::pi;

constexpr double right_angle(AngleUnit unit) {
    switch (unit) {
    case AngleUnit::degrees:
        return 90;
    case AngleUnit::gradians:
        return 100;
    case AngleUnit::radians:
        break;
    }
    return pi / 2;
}

// An angle as a number of right angles and a rest of at most half of one. In degrees and gradians that is
// exact, so that what people know by heart comes out exactly: sin(180) = 0, cos(60) = 0.5, tan(45) = 1.
class Angle {
  public:
    Angle(double angle, AngleUnit unit) : m_exact(unit != AngleUnit::radians) {
        const double right = right_angle(unit);
        if (!m_exact) {
            m_radians = angle;
            return;
        }
        const double turn = std::fmod(angle, 4 * right);
        const double quarters = std::nearbyint(turn / right);
        const double rest = turn - quarters * right;
        m_quarter = (static_cast<int>(quarters) + 4) % 4;
        m_thirds = 3 * rest / right;
        m_radians = rest / right * (pi / 2);
    }

    double sine() const { return m_exact ? of_quarter(m_quarter) : std::sin(m_radians); }
    double cosine() const { return m_exact ? of_quarter((m_quarter + 1) % 4) : std::cos(m_radians); }
    double tangent(Code& code) const {
        if (!m_exact) return std::tan(m_radians);
        if (std::fabs(m_thirds) == 1.5) return (m_thirds > 0) == (m_quarter % 2 == 0) ? 1 : -1;
        if (m_quarter % 2 == 0) return std::tan(m_radians);
        if (m_thirds == 0) code = Code::domain;
        return -1 / std::tan(m_radians);
    }

  private:
    double of_quarter(int quarter) const {
        const double size = quarter % 2 == 0 ? sine_of_rest() : std::cos(m_radians);
        return quarter < 2 ? size : 0 - size;
    }
    double sine_of_rest() const { return std::fabs(m_thirds) == 1 ? m_thirds / 2 : std::sin(m_radians); }

    bool m_exact;
    int m_quarter = 0;
    double m_thirds = 0; // the rest in thirds of a right angle
    double m_radians = 0;
};

// The angle in the unit of its number of right angles' worth of radians; exact where sine and tangent are.
double angle_in(AngleUnit unit, double radians) {
    if (unit == AngleUnit::radians) return radians;
    return radians / (pi / 2) * right_angle(unit);
}

double arc_sine(double sine, AngleUnit unit, Code& code) {
    if (std::fabs(sine) > 1) code = Code::domain;
    if (std::fabs(sine) == 0.5 && unit != AngleUnit::radians)
        return std::copysign(right_angle(unit) / 3, sine);
    return angle_in(unit, std::asin(sine));
}

double arc_cosine(double cosine, AngleUnit unit, Code& code) {
    if (std::fabs(cosine) > 1) code = Code::domain;
    if (std::fabs(cosine) == 0.5 && unit != AngleUnit::radians)
        return right_angle(unit) * (cosine > 0 ? 2 : 4) / 3;
    return angle_in(unit, std::acos(cosine));
}

double defined(bool is, Code& code, double value) {
    if (!is) code = Code::domain;
    return value;
}

double remainder_of(double dividend, double divisor, Code& code) {
    if (divisor == 0) code = Code::division_by_zero;
    const double rest = std::fmod(dividend, divisor);
    return rest != 0 && (rest < 0) != (divisor < 0) ? rest + divisor : rest;
}

double logarithm(Arguments a, Code& code) {
    if (a[0] <= 0) return defined(false, code, 0);
    if (a.size() == 1) return std::log10(a[0]);
    if (a[1] <= 0 || a[1] == 1) return defined(false, code, 0);
    return std::log2(a[0]) / std::log2(a[1]);
}

// Alphabetical: found by halving.
constexpr std::size_t any_count = static_cast<std::size_t>(-1);
constexpr auto functions = std::to_array<Function>({
    {"abs", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::fabs(a[0]); }},
    {"acos", 1, 1, [](Arguments a, AngleUnit unit, Code& code) { return arc_cosine(a[0], unit, code); }},
    {"asin", 1, 1, [](Arguments a, AngleUnit unit, Code& code) { return arc_sine(a[0], unit, code); }},
    {"atan", 1, 1, [](Arguments a, AngleUnit unit, Code&) { return angle_in(unit, std::atan(a[0])); }},
    {"atan2", 2, 2,
     [](Arguments a, AngleUnit unit, Code&) { return angle_in(unit, std::atan2(a[0], a[1])); }},
    {"cbrt", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::cbrt(a[0]); }},
    {"ceil", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::ceil(a[0]); }},
    {"cos", 1, 1, [](Arguments a, AngleUnit unit, Code&) { return Angle(a[0], unit).cosine(); }},
    {"cosh", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::cosh(a[0]); }},
    {"deg", 1, 1, [](Arguments a, AngleUnit, Code&) { return a[0] / pi * 180; }},
    {"exp", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::exp(a[0]); }},
    {"floor", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::floor(a[0]); }},
    {"frac", 1, 1, [](Arguments a, AngleUnit, Code&) { return a[0] - std::trunc(a[0]); }},
    {"hypot", 2, 2, [](Arguments a, AngleUnit, Code&) { return std::hypot(a[0], a[1]); }},
    {"ln", 1, 1, [](Arguments a, AngleUnit, Code& code) { return defined(a[0] > 0, code, std::log(a[0])); }},
    {"log", 1, 2, [](Arguments a, AngleUnit, Code& code) { return logarithm(a, code); }},
    {"max", 2, any_count,
     [](Arguments a, AngleUnit, Code&) { return *std::max_element(a.begin(), a.end()); }},
    {"min", 2, any_count,
     [](Arguments a, AngleUnit, Code&) { return *std::min_element(a.begin(), a.end()); }},
    {"mod", 2, 2, [](Arguments a, AngleUnit, Code& code) { return remainder_of(a[0], a[1], code); }},
    {"rad", 1, 1, [](Arguments a, AngleUnit, Code&) { return a[0] / 180 * pi; }},
    {"round", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::round(a[0]); }},
    {"sgn", 1, 1, [](Arguments a, AngleUnit, Code&) { return double((a[0] > 0) - (a[0] < 0)); }},
    {"sin", 1, 1, [](Arguments a, AngleUnit unit, Code&) { return Angle(a[0], unit).sine(); }},
    {"sinh", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::sinh(a[0]); }},
    {"sqrt", 1, 1,
     [](Arguments a, AngleUnit, Code& code) { return defined(a[0] >= 0, code, std::sqrt(a[0])); }},
    {"tan", 1, 1, [](Arguments a, AngleUnit unit, Code& code) { return Angle(a[0], unit).tangent(code); }},
    {"tanh", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::tanh(a[0]); }},
    {"trunc", 1, 1, [](Arguments a, AngleUnit, Code&) { return std::trunc(a[0]); }},
});
static_assert(std::ranges::is_sorted(functions, {}, &Function::name));

} // namespace

const Function* find_function(std::string_view name) {
    const auto* found = std::ranges::lower_bound(functions, name, {}, &Function::name);
    return found != functions.end() && found->name == name ? found : nullptr;
}

std::optional<double> find_constant(std::string_view name) {
    if (name == "pi") return pi;
    if (name == "e") return std::numbers::e;
    return std::nullopt;
}

double power(double base, double exponent, Code& code) {
    if (base == 0 && exponent < 0) code = Code::division_by_zero;
    if (base < 0 && exponent != std::trunc(exponent)) code = Code::domain;
    return code == Code::success ? std::pow(base, exponent) : 0;
}
