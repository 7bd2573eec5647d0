// One row of pixels (blue, green, red, fourth byte) to or from samples, for the plane ranges that filters
// usually ask for. Rows do not overlap, and neither side needs any alignment.
#pragma once

#include <cstddef>

// Samples are red, green, blue.
void gather_rgb(const std::byte* pixels, std::byte* samples, std::size_t count);
// The fourth byte of each pixel stays.
void write_back_rgb(std::byte* pixels, const std::byte* samples, std::size_t count);

// Pixels to samples of red, green, blue and fourth byte, or the other way: the same exchange.
void exchange_red_and_blue(const std::byte* from, std::byte* to, std::size_t count);
