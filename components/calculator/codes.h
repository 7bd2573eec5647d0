// Result codes of the calculator, and what is known of a failure.
#pragma once

#include <cstddef>
#include <cstdint>

enum class Code : std::int32_t {
    success = 0x1000,
    syntax = 0x1001,
    empty = 0x1002,
    unknown_name = 0x1003,
    bad_option = 0x1004,
    argument_count = 0x1005,
    // 0x1006 is what the client library returns by itself; the calculator never does.
    division_by_zero = 0x1007,
    domain = 0x1008,
    overflow = 0x1009,
    too_complex = 0x100A,
    parenthesis = 0x100B,
    assignment = 0x100C,
    not_finite = 0x100D,
};

struct Failure {
    Code code = Code::success;
    std::size_t position = 0; // 1 for the first character; 0 when the failure is at no place in a text
};

enum class AngleUnit { degrees, radians, gradians };
