// Four lanes at a time: the lanes that a comparison has set.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <emmintrin.h>

constexpr unsigned all_lanes = 15, all_of_eight = 255;

inline unsigned mask_of(__m128 comparison) {
    return static_cast<unsigned>(_mm_movemask_ps(comparison));
}

inline unsigned highest_lane(unsigned lanes) {
    return static_cast<unsigned>(std::bit_width(lanes)) - 1;
}

// The lanes set in a mask, the highest first.
struct LanesOfMask {
    alignas(16) std::uint32_t lanes[4];
    std::uint32_t count;
};
inline constexpr std::array<LanesOfMask, all_lanes + 1> lanes_of = [] {
    std::array<LanesOfMask, all_lanes + 1> table{};
    for (unsigned mask = 0; mask <= all_lanes; ++mask)
        for (unsigned lane = 4; lane-- > 0;)
            if (mask >> lane & 1) table[mask].lanes[table[mask].count++] = lane;
    return table;
}();

// The same of eight lanes.
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
        for (std::uint8_t lane = 8; lane-- > 0;)
            if (mask >> lane & 1) table.of_mask[mask].lanes[table.of_mask[mask].count++] = lane;
    return table;
}();

// first + lane for each lane, where eight may be written.
inline void list_lanes(const LanesOfEight& lanes, std::uint32_t first, std::uint32_t* list) {
    const __m128i zero = _mm_setzero_si128(), all_first = _mm_set1_epi32(static_cast<int>(first));
    const __m128i words =
        _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(lanes.lanes)), zero);
    auto* const to = reinterpret_cast<__m128i*>(list);
    _mm_storeu_si128(to, _mm_add_epi32(all_first, _mm_unpacklo_epi16(words, zero)));
    _mm_storeu_si128(to + 1, _mm_add_epi32(all_first, _mm_unpackhi_epi16(words, zero)));
}
