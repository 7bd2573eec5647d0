// The library's one conversion of text to a double, independent of the C locale.
#pragma once

#include <string_view>

// The number that the text begins with, 0 when it begins with none. White space in front is skipped; "d"
// and "D" are exponent marks as "e" and "E" are; an exponent mark without digits is not part of the number.
// Too large gives infinity, too small zero, both with the number's sign. Correctly rounded.
double text_to_double(std::string_view text);
