// Runs of pixels that do not have the transparent colour, in rows of 32-bit pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <emmintrin.h>

// The first position at or behind `x` whose pixel is transparent (`wanted`) or is not; `width` when there is
// none. The highest byte of pixels and key does not count.
inline std::size_t find_pixel(const std::uint32_t* row, std::size_t width, std::size_t x, std::uint32_t key,
                              bool wanted) {
    constexpr std::uint32_t colour_mask = 0x00FFFFFF;
    key &= colour_mask;
    const __m128i keys = _mm_set1_epi32(static_cast<int>(key));
    const __m128i masks = _mm_set1_epi32(static_cast<int>(colour_mask));
    const int flip = wanted ? 0 : 0xF;
    for (; width - x >= 4; x += 4) {
        const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(row + x));
        const __m128i equal = _mm_cmpeq_epi32(_mm_and_si128(pixels, masks), keys);
        const int found = _mm_movemask_ps(_mm_castsi128_ps(equal)) ^ flip;
        if (found) return x + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(found)));
    }
    for (; x < width; ++x)
        if (((row[x] & colour_mask) == key) == wanted) break;
    return x;
}

// Calls add(first, end) for every run of opaque pixels of a row, from left to right.
template <class Add>
void for_each_opaque_run(const std::uint32_t* row, std::size_t width, std::uint32_t key, Add&& add) {
    for (std::size_t x = find_pixel(row, width, 0, key, false); x < width;) {
        const std::size_t end = find_pixel(row, width, x, key, true);
        add(x, end);
        x = find_pixel(row, width, end, key, false);
    }
}
