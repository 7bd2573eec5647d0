// Stable sorting by a 32-bit key in linear time, and keys that order floats.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

// A number whose unsigned order is the order of the floats: both zeros have one key, what is not a number
// comes after everything.
inline std::uint32_t float_key(float value) {
    if (std::isnan(value)) return 0xFFFFFFFFu;
    const auto bits = std::bit_cast<std::uint32_t>(value + 0.0f); // makes -0 a +0
    return bits & 0x80000000u ? ~bits : bits | 0x80000000u;
}

// Sorts `items` by `key(item)`, least digit first; `spare` has the same size and ends with rubbish.
template <class Item, class Key>
void radix_sort(std::vector<Item>& items, std::vector<Item>& spare, Key key) {
    constexpr int digit_bits = 11, digits = 3;
    constexpr std::uint32_t mask = (1u << digit_bits) - 1;
    std::array<std::array<std::uint32_t, mask + 1>, digits> counts{};
    for (const Item& item : items) {
        const std::uint32_t k = key(item);
        for (std::size_t d = 0; d < digits; ++d)
            ++counts[d][k >> (digit_bits * d) & mask];
    }
    for (std::size_t d = 0; d < digits; ++d) {
        auto& starts = counts[d];
        const std::uint32_t shift = digit_bits * static_cast<std::uint32_t>(d);
        if (items.empty() || starts[key(items[0]) >> shift & mask] == items.size()) continue; // all alike
        std::uint32_t sum = 0;
        for (std::uint32_t& start : starts)
            sum += std::exchange(start, sum);
        for (const Item& item : items)
            spare[starts[key(item) >> shift & mask]++] = item;
        items.swap(spare);
    }
}
