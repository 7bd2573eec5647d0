// Rows of 32-bit pixels to and from rows of samples, which are one to four bytes of each pixel in a chosen
// order. No row needs any alignment; the two rows of a call do not overlap.
#pragma once

#include "module/cpu_level.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

// Which bytes of a pixel its samples are, as the kernels need it.
struct SampleOrder {
    // The places in a pixel, 0 to 3, of its one to four samples; no place twice.
    explicit constexpr SampleOrder(std::span<const std::uint8_t> places) : samples(places.size()) {
        for (std::size_t i = 0; i < 16; ++i)
            to_samples[i] = to_pixels[i] = nothing;
        for (std::size_t k = 0; k < samples; ++k) {
            place[k] = places[k];
            others &= ~(0xFFu << 8 * places[k]);
            for (std::size_t pixel = 0; pixel < 4; ++pixel) {
                to_samples[pixel * samples + k] = static_cast<std::uint8_t>(pixel * 4 + places[k]);
                to_pixels[pixel * 4 + places[k]] = static_cast<std::uint8_t>(pixel * samples + k);
            }
        }
    }

    static constexpr std::uint8_t nothing = 0x80; // in a byte shuffle: this byte becomes 0
    std::size_t samples;
    std::array<std::uint8_t, 4> place{};
    std::uint32_t others = 0xFFFFFFFF;          // the bits of a pixel that are in no sample
    std::uint8_t to_samples[16], to_pixels[16]; // byte shuffles of four pixels
};

// Takes the samples of so many pixels out of them.
void gather_samples(const SampleOrder& order, const void* pixels, void* samples, std::size_t count,
                    CpuLevel level = cpu_level());

// Puts samples into pixels, whose other bytes stay.
void write_samples(const SampleOrder& order, void* pixels, const void* samples, std::size_t count,
                   CpuLevel level = cpu_level());

// Makes pixels of samples; their other bytes become `other`.
void widen_samples(const SampleOrder& order, void* pixels, const void* samples, std::size_t count,
                   std::uint8_t other, CpuLevel level = cpu_level());
