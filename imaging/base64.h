// Base64 encoding with the standard alphabet and padding, without line breaks.
#pragma once

#include "module/cpu_level.h"

#include <cstddef>
#include <cstdint>
#include <span>

// Characters of the encoded form of so many bytes.
constexpr std::uint64_t base64_length(std::uint64_t bytes) {
    return (bytes + 2) / 3 * 4;
}

// Encodes all bytes to base64_length(bytes.size()) characters. The vector kernels follow W. Mula and D.
// Lemire, "Faster Base64 Encoding and Decoding Using AVX2 Instructions", ACM Trans. Web 12(3), 2018.
void base64_encode(std::span<const std::uint8_t> bytes, char* out, CpuLevel level = cpu_level());
