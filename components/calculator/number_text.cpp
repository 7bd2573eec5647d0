#include "components/calculator/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <numeric>

namespace {

constexpr std::size_t longest_literal = 1000;
constexpr double largest_fixed = 1e15;
constexpr int largest_denominator = 1'000'000;

bool is_digit(char16_t c) {
    return c >= u'0' && c <= u'9';
}
bool is_space(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0';
}

std::size_t digits_at(std::u16string_view text, std::size_t at) {
    std::size_t end = at;
    while (end < text.size() && is_digit(text[end]))
        ++end;
    return end - at;
}

// What the runtime's conversion leaves undecided: whether a number outside the range is too large or too
// small. The number's text is well formed.
bool is_too_large(std::string_view number) {
    const std::size_t mark = std::min(number.find('e'), number.size());
    const std::size_t point = std::min(number.find('.'), mark);
    const std::size_t first = number.find_first_of("123456789");
    if (first >= mark) return false;
    const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    if (mark == number.size()) return place > 0;
    const bool negative = number[mark + 1] == '-';
    std::int64_t exponent = 0;
    for (const char c : number.substr(mark + 1))
        if (c >= '0') exponent = std::min<std::int64_t>(exponent * 10 + (c - '0'), 1'000'000'000);
    return place + (negative ? -exponent : exponent) > 0;
}

ReadNumber convert(std::u16string_view literal) {
    ReadNumber read{0, literal.size(), Code::success};
    std::string narrow;
    for (const char16_t c : literal)
        if (c != u'+') narrow += c == u',' ? '.' : c == u'E' ? 'e' : static_cast<char>(c);
    const char* end = narrow.data() + narrow.size();
    if (std::from_chars(narrow.data(), end, read.value).ec == std::errc::result_out_of_range) {
        read.value = 0;
        if (is_too_large(narrow)) read.code = Code::overflow;
    }
    return read;
}

} // namespace

ReadNumber read_number(std::u16string_view text) {
    std::size_t end = digits_at(text, 0);
    std::size_t digits = end;
    if (end < text.size() && (text[end] == u'.' || text[end] == u',')) {
        const std::size_t behind = digits_at(text, end + 1);
        digits += behind;
        end += 1 + behind;
    }
    if (digits == 0) return {};
    if (end < text.size() && (text[end] == u'.' || text[end] == u',')) return {0, end, Code::syntax};
    if (end < text.size() && (text[end] == u'e' || text[end] == u'E')) {
        const bool has_sign = end + 1 < text.size() && (text[end + 1] == u'+' || text[end + 1] == u'-');
        const std::size_t mark = end + 1 + (has_sign ? 1 : 0);
        const std::size_t exponent = digits_at(text, mark);
        if (exponent > 0) end = mark + exponent;
    }
    if (end > longest_literal) return {0, end, Code::too_complex};
    return convert(text.substr(0, end));
}

namespace {

// Reads the parts of a number text one after the other.
class NumberTextReader {
  public:
    explicit NumberTextReader(std::u16string_view text) : m_text(text) {}

    Failure read(double& value) {
        skip_spaces();
        if (at_end()) return {Code::empty, m_at + 1};
        const bool negative = m_text[m_at] == u'-';
        if (negative || m_text[m_at] == u'+') ++m_at;
        const std::size_t start = m_at;
        double sum = 0;
        if (Failure failure = read_sum(sum); failure.code != Code::success) return failure;
        skip_spaces();
        if (!at_end()) return {Code::syntax, m_at + 1};
        if (!std::isfinite(sum)) return {Code::overflow, start + 1};
        value = negative ? -sum : sum;
        return {};
    }

  private:
    bool at_end() const { return m_at == m_text.size(); }
    void skip_spaces() {
        while (!at_end() && is_space(m_text[m_at]))
            ++m_at;
    }

    // A decimal number, a fraction, or a whole number and a fraction.
    Failure read_sum(double& sum) {
        if (Failure failure = read_part(sum); failure.code != Code::success) return failure;
        const bool whole = m_plain;
        if (!at_end() && m_text[m_at] == u'/' && whole) return read_denominator(sum);
        const std::size_t behind = m_at;
        skip_spaces();
        if (!whole || at_end() || m_at == behind || !is_digit(m_text[m_at])) return {};
        double fraction = 0;
        if (Failure failure = read_part(fraction); failure.code != Code::success) return failure;
        if (at_end() || m_text[m_at] != u'/' || !m_plain) return {Code::syntax, m_at + 1};
        if (Failure failure = read_denominator(fraction); failure.code != Code::success) return failure;
        sum += fraction;
        return {};
    }

    Failure read_part(double& value) {
        const std::u16string_view rest = m_text.substr(m_at);
        const ReadNumber number = read_number(rest);
        if (number.length == 0) return {Code::syntax, m_at + 1};
        if (number.code != Code::success) return {number.code, m_at + 1};
        m_plain = digits_at(rest, 0) == number.length;
        m_at += number.length;
        value = number.value;
        return {};
    }

    Failure read_denominator(double& numerator) {
        const std::size_t slash = m_at++;
        double denominator = 0;
        if (Failure failure = read_part(denominator); failure.code != Code::success) return failure;
        if (!m_plain) return {Code::syntax, slash + 2};
        if (denominator == 0) return {Code::division_by_zero, slash + 1};
        numerator /= denominator;
        return {};
    }

    std::u16string_view m_text;
    std::size_t m_at = 0;
    bool m_plain = false; // the last part had digits alone
};

using Buffer = std::array<char, 512>;

std::string_view written(const Buffer& buffer, std::to_chars_result result) {
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

// `size` is the number without its sign.
Code write_general(double size, const Format& format, std::string& text) {
    if (format.digits < 0 || format.digits > 17) return Code::bad_option;
    Buffer buffer;
    char* const end = buffer.data() + buffer.size();
    // The digits, then their place: 1.2345e+02.
    const auto result =
        format.digits == 0
            ? std::to_chars(buffer.data(), end, size, std::chars_format::scientific)
            : std::to_chars(buffer.data(), end, size, std::chars_format::scientific, format.digits - 1);
    const std::string_view number = written(buffer, result);
    const std::size_t mark = number.find('e');
    int exponent = 0;
    const std::size_t exponent_at = mark + (number[mark + 1] == '+' ? 2 : 1);
    std::from_chars(number.data() + exponent_at, number.data() + number.size(), exponent);
    std::string digits(1, number[0]);
    if (mark > 2) digits += number.substr(2, mark - 2);
    if (!format.padded) digits.erase(std::max<std::size_t>(digits.find_last_not_of('0') + 1, 1));

    if (exponent < -5 || exponent >= 15) {
        text += digits[0];
        if (digits.size() > 1) (text += '.').append(digits, 1);
        text += number.substr(mark);
    } else if (exponent < 0) {
        text.append("0.").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
    } else {
        const auto whole = static_cast<std::size_t>(exponent) + 1;
        if (digits.size() < whole) digits.append(whole - digits.size(), '0');
        text.append(digits, 0, whole);
        if (digits.size() > whole) (text += '.').append(digits, whole);
    }
    return Code::success;
}

Code write_fixed(double size, const Format& format, std::string& text) {
    if (format.digits < 0 || format.digits > 15) return Code::bad_option;
    if (size >= largest_fixed) return Code::overflow;
    Buffer buffer;
    text += written(buffer, std::to_chars(buffer.data(), buffer.data() + buffer.size(), size,
                                          std::chars_format::fixed, format.digits));
    return Code::success;
}

Code write_scientific(double size, const Format& format, std::string& text) {
    if (format.digits < -1 || format.digits > 16) return Code::bad_option;
    Buffer buffer;
    char* const end = buffer.data() + buffer.size();
    text += written(
        buffer, format.digits < 0
                    ? std::to_chars(buffer.data(), end, size, std::chars_format::scientific)
                    : std::to_chars(buffer.data(), end, size, std::chars_format::scientific, format.digits));
    return Code::success;
}

Code write_fraction(double size, const Format& format, std::string& text) {
    if (format.digits < 2 || format.digits > largest_denominator) return Code::bad_option;
    if (size >= largest_fixed) return Code::overflow;
    auto denominator = static_cast<std::int64_t>(format.digits);
    // The parts apart: their sum would not hold the fraction's digits.
    auto whole = static_cast<std::int64_t>(size);
    auto numerator = static_cast<std::int64_t>(
        std::nearbyint((size - std::trunc(size)) * static_cast<double>(denominator)));
    if (numerator == denominator) {
        ++whole;
        numerator = 0;
    }
    if (!format.padded) {
        const auto divisor = std::gcd(numerator, denominator);
        numerator /= divisor;
        denominator /= divisor;
    }
    if (whole != 0 || numerator == 0) text += std::to_string(whole);
    if (whole != 0 && numerator != 0) text += ' ';
    if (numerator != 0)
        text.append(std::to_string(numerator)).append("/").append(std::to_string(denominator));
    return Code::success;
}

Code write_number(double size, const Format& format, std::string& text) {
    switch (format.form) {
    case Form::general:
        return write_general(size, format, text);
    case Form::fixed:
        return write_fixed(size, format, text);
    case Form::scientific:
        return write_scientific(size, format, text);
    case Form::fraction:
        break;
    }
    return write_fraction(size, format, text);
}

} // namespace

Failure parse_number_text(std::u16string_view text, double& value) {
    return NumberTextReader(text).read(value);
}

Code format_number(double value, const Format& format, std::string& text) {
    if (!std::isfinite(value)) return Code::not_finite;
    std::string number;
    const Code code = write_number(std::fabs(value), format, number);
    if (code != Code::success) return code;
    // What is written as zero has no sign.
    const bool zero = number.substr(0, number.find('e')).find_first_of("123456789") == std::string::npos;
    if (format.comma) std::ranges::replace(number, '.', ',');
    text.clear();
    if (!zero && (value < 0 || format.plus)) text += value < 0 ? '-' : '+';
    text += number;
    return Code::success;
}
