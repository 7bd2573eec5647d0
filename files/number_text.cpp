#include "files/number_text.h"

#include <charconv>
#include <limits>

const char* general_text(double value, GeneralText& buffer) {
    char* const last = buffer.data() + buffer.size() - 1;
    *std::to_chars(buffer.data(), last, value, std::chars_format::general, 6).ptr = '\0';
    return buffer.data();
}

void append_fixed(std::string& text, double value) {
    // A sign, the digits of the largest double, the point and six decimals.
    char buffer[1 + std::numeric_limits<double>::max_exponent10 + 1 + 1 + 6];
    text.append(buffer,
                std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 6).ptr);
}
