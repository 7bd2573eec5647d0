// Failures in words.
#pragma once

#include "components/calculator/codes.h"

#include <string>
#include <string_view>

// Whether the number is one of the calculator's codes.
bool is_code(std::int32_t number);

// "Division durch null an Stelle 5", "division by zero at position 5"; without the place when it is 0.
std::u16string failure_text(const Failure& failure, bool german);

// ASCII text, unit for unit.
inline std::u16string widened(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}
