// Numbers as the profile and material files hold them: the same text in every locale.
#pragma once

#include <array>
#include <string>

// Room for any number in general form, with its terminating zero.
using GeneralText = std::array<char, 32>;

// The number as "%lg" writes it: six significant digits, "0.1", "1e+20". Returns the buffer's text.
const char* general_text(double value, GeneralText& buffer);

// Appends the number with six decimals, as "%f" writes it.
void append_fixed(std::string& text, double value);
