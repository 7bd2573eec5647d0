// The functions and constants that expressions can use.
#pragma once

#include "components/calculator/codes.h"

#include <optional>
#include <span>
#include <string_view>

struct Function {
    std::string_view name; // lower case
    std::size_t fewest;
    std::size_t most; // arguments
    // Sets the code when the function is not defined for the arguments.
    double (*evaluate)(std::span<const double> arguments, AngleUnit unit, Code& code);
};

// The function of this name (lower case), null when there is none.
const Function* find_function(std::string_view name);

std::optional<double> find_constant(std::string_view name);

// base ^ exponent, with 0^0 = 1.
double power(double base, double exponent, Code& code);
