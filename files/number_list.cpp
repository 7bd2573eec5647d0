#include "files/number_list.h"

#include "bvutil/strings.h"

#include <algorithm>
#include <string>

namespace {

bool is_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}
bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t skip_digits(std::string_view text, std::size_t at) {
    while (at < text.size() && is_digit(text[at]))
        ++at;
    return at;
}
std::size_t skip_sign(std::string_view text, std::size_t at) {
    return at < text.size() && (text[at] == '-' || text[at] == '+') ? at + 1 : at;
}

// Where an exponent at this position ends; the position itself when there is none, or one without digits.
std::size_t skip_exponent(std::string_view text, std::size_t at) {
    if (at == text.size() || std::string_view("eEdD").find(text[at]) == std::string_view::npos) return at;
    const std::size_t digits = skip_sign(text, at + 1);
    const std::size_t end = skip_digits(text, digits);
    return end == digits ? at : end;
}

// Length of the number that the text begins with, its leading white space included; 0 when there is none.
// These are the numbers that BvUtil_StringToDouble converts.
std::size_t number_length(std::string_view text) {
    const auto first = std::find_if_not(text.begin(), text.end(), is_space);
    const std::size_t whole = skip_sign(text, static_cast<std::size_t>(first - text.begin()));
    std::size_t end = skip_digits(text, whole);
    std::size_t digits = end - whole;
    if (end < text.size() && text[end] == '.') {
        const std::size_t fraction = end + 1;
        end = skip_digits(text, fraction);
        digits += end - fraction;
    }
    return digits == 0 ? 0 : skip_exponent(text, end);
}

} // namespace

std::optional<std::size_t> read_numbers(std::string_view text, std::span<double> values) {
    for (std::size_t count = 0;;) {
        const std::size_t length = number_length(text);
        if (length == 0) return std::nullopt;
        values[count++] = BvUtil_StringToDouble(std::string(text.substr(0, length)).c_str());
        if (count == values.size() || length == text.size()) return count;
        text.remove_prefix(length + 1);
    }
}
