// Conversions of rows of pixels. All pixels are blue, green, red in memory, with a fourth byte in 32-bit
// ones; no row needs any alignment.
#pragma once

#include <cstddef>
#include <cstdint>

// 24 to 32 bits, every fourth byte set to `fourth`.
void widen_24(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth);

// 32 to 24 bits, the fourth bytes dropped.
void narrow_32(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels);

// Palette entries (blue, green, red, unused) to 32 bits, the fourth bytes 0.
void widen_8(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
             const std::uint8_t palette[1024]);

// 5-5-5 to 32 bits: each channel keeps its value, 0 to 31; the fourth bytes are 0.
void widen_555(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels);

// Copies 32-bit pixels, every fourth byte set to `fourth`. May work in place.
void set_fourth(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth);

// Copies 32-bit pixels, the fourth byte set to 0 in pure white ones and to `fourth` in all others. May work
// in place.
void key_white(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth);

// widen_24 and key_white in one.
void widen_24_keyed(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth);
