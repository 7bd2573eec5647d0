#include "module/text_to_double.h"

#include "module/own_arithmetic.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

std::size_t count_digits(std::string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_digit) - text.begin());
}

// Where an exponent begins whose mark from_chars does not know; npos when there is none.
std::size_t find_d_exponent(std::string_view text) {
    std::size_t at = count_digits(text);
    if (at < text.size() && text[at] == '.') at += 1 + count_digits(text.substr(at + 1));
    return at < text.size() && (text[at] == 'd' || text[at] == 'D') ? at : std::string_view::npos;
}

// Which way an out-of-range number lies: from_chars does not say.
double out_of_range(std::string_view matched) {
    const std::size_t mark = matched.find_first_of("eE");
    const std::string_view mantissa = matched.substr(0, mark);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos) return 0;
    // An exponent beyond any mantissa decides alone; else both together.
    long exponent = 0;
    if (mark != std::string_view::npos) {
        const bool negative = matched[mark + 1] == '-';
        const char* digits = matched.data() + mark + 1 + (negative || matched[mark + 1] == '+');
        if (std::from_chars(digits, matched.data() + matched.size(), exponent).ec != std::errc{})
            return negative ? 0 : std::numeric_limits<double>::infinity();
        exponent = negative ? -exponent : exponent;
    }
    const double magnitude = static_cast<double>(point) - static_cast<double>(first) + exponent;
    return magnitude > 0 ? std::numeric_limits<double>::infinity() : 0;
}

double convert(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range)
        return out_of_range(text.substr(0, static_cast<std::size_t>(end - text.data())));
    return error == std::errc{} ? value : 0;
}

double converted(std::string_view text) {
    while (!text.empty() && is_space(text.front()))
        text.remove_prefix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    // from_chars also knows signs, "inf" and "nan"; the runtime's conversion does not.
    const std::size_t first_digit = !text.empty() && text.front() == '.' ? 1 : 0;
    if (text.size() <= first_digit || !is_digit(text[first_digit])) return 0;

    double value;
    if (const std::size_t mark = find_d_exponent(text); mark != std::string_view::npos) {
        std::string marked(text);
        marked[mark] = 'e';
        value = convert(marked);
    } else {
        value = convert(text);
    }
    return negative ? -value : value;
}

} // namespace

double text_to_double(std::string_view text) {
    return with_own_arithmetic([&] { return converted(text); });
}
