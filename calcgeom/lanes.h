// The lanes that a comparison has set, and lists of them.
#pragma once

#include <cstdint>
#include <emmintrin.h>
#include <initializer_list>

constexpr unsigned all_of_eight = 255;

inline unsigned mask_of(__m128 comparison) {
    return static_cast<unsigned>(_mm_movemask_ps(comparison));
}

// The lanes set in a mask.
struct LanesOfEight {
    std::uint8_t lanes[8];
    std::uint32_t count;
};
struct LanesOfEightTable {
    LanesOfEight of_mask[256];
};
inline constexpr LanesOfEightTable lanes_of_eight = [] {
    LanesOfEightTable table{};
    for (unsigned mask = 0; mask < 256; ++mask)
        for (std::uint8_t lane = 0; lane < 8; ++lane)
            if (mask >> lane & 1) table.of_mask[mask].lanes[table.of_mask[mask].count++] = lane;
    return table;
}();

// first + lane for each of sixteen lanes that is set, where sixteen may be written; how many. Inlined in any
// case, for kernels of any instructions.
[[gnu::always_inline]] inline std::uint32_t list_lanes(std::uint32_t set, std::uint32_t first,
                                                       std::uint32_t* list) {
    const __m128i zero = _mm_setzero_si128();
    std::uint32_t count = 0;
    for (const std::uint32_t half : {0u, 8u}) {
        const LanesOfEight& lanes = lanes_of_eight.of_mask[set >> half & all_of_eight];
        const __m128i all_first = _mm_set1_epi32(static_cast<int>(first + half));
        const __m128i words =
            _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(lanes.lanes)), zero);
        auto* const to = reinterpret_cast<__m128i*>(list + count);
        _mm_storeu_si128(to, _mm_add_epi32(all_first, _mm_unpacklo_epi16(words, zero)));
        _mm_storeu_si128(to + 1, _mm_add_epi32(all_first, _mm_unpackhi_epi16(words, zero)));
        count += lanes.count;
    }
    return count;
}
