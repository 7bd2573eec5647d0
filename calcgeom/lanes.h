// Four lanes at a time: the lanes that a comparison has set.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <emmintrin.h>

constexpr unsigned all_lanes = 15;

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
