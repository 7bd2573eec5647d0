// Lists of numbers as profile files hold them: '3,0.250000'.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

// Reads numbers until the text ends behind one or all of `values` (at least one) are read; one byte, whatever
// it is, separates two. Gives how many were read. Nothing when a number was expected and there is none; the
// values in front of that place are stored all the same.
std::optional<std::size_t> read_numbers(std::string_view text, std::span<double> values);
