// Numbers as text: read with point or comma, written in one of four forms.
#pragma once

#include "components/calculator/codes.h"

#include <string>
#include <string_view>

// A number without sign at the front of a text: digits, with one point or comma among, before or behind them,
// and an exponent ("e" or "E", a sign, digits). Its length is 0 when the text begins with none.
struct ReadNumber {
    double value = 0;
    std::size_t length = 0;
    Code code = Code::success; // overflow, too_complex (more than 1,000 characters), syntax (a second sign)
};
ReadNumber read_number(std::u16string_view text);

// A whole text that is one number with an optional sign, or a mixed fraction ("-5 3/8", "3/8"); white space
// around it is skipped.
Failure parse_number_text(std::u16string_view text, double& value);

enum class Form { general, fixed, scientific, fraction };

struct Format {
    Form form = Form::general;
    int digits = 0;
    bool comma = false;
    bool plus = false;   // a sign in front of positive numbers too
    bool padded = false; // general: trailing zeros stay; fraction: not reduced
};

// The largest text, in characters.
inline constexpr std::size_t longest_number_text = 40;

// Writes a number. not_finite; overflow when the fixed form would take more than 15 digits before the point,
// or the fraction form's numbers are too large; bad_option when the form does not take that many digits.
Code format_number(double value, const Format& format, std::string& text);
