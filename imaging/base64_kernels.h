// The vector part of Base64 encoding: each kernel encodes a multiple of three bytes from the front, as many
// as it can without reading or writing beyond the ends, and returns how many bytes that were.
#pragma once

#include <cstddef>
#include <cstdint>

std::size_t base64_encode_sse2(const std::uint8_t* from, std::size_t size, char* to);
std::size_t base64_encode_ssse3(const std::uint8_t* from, std::size_t size, char* to);
std::size_t base64_encode_avx2(const std::uint8_t* from, std::size_t size, char* to);
