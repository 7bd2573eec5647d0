// Stable sorting by a 32-bit key in linear time, and keys that order floats.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

// A number whose unsigned order is the order of the floats: both zeros have one key, what is not a number
// comes after everything.
inline std::uint32_t float_key(float value) {
    if (std::isnan(value)) return 0xFFFFFFFFu;
    const auto bits = std::bit_cast<std::uint32_t>(value + 0.0f); // makes -0 a +0
    return bits & 0x80000000u ? ~bits : bits | 0x80000000u;
}

// Sorts the items by `key(item)`, least digit first, and leaves them in `to`; `from` ends with rubbish.
template <class Item, class Key>
void radix_sort(std::span<Item> from, std::span<Item> to, Key key) {
    constexpr int digit_bits = 11, digits = 3;
    constexpr std::uint32_t mask = (1u << digit_bits) - 1;
    std::array<std::array<std::uint32_t, mask + 1>, digits> counts{};
    for (const Item& item : from) {
        const std::uint32_t k = key(item);
        for (std::size_t d = 0; d < digits; ++d)
            ++counts[d][k >> (digit_bits * d) & mask];
    }
    const std::span<Item> sorted = to;
    for (std::size_t d = 0; d < digits; ++d) {
        auto& starts = counts[d];
        const std::uint32_t shift = digit_bits * static_cast<std::uint32_t>(d);
        if (from.empty() || starts[key(from[0]) >> shift & mask] == from.size()) continue; // all alike
        std::uint32_t sum = 0;
        for (std::uint32_t& start : starts)
            sum += std::exchange(start, sum);
        for (const Item& item : from)
            to[starts[key(item) >> shift & mask]++] = item;
        std::swap(from, to);
    }
    if (from.data() != sorted.data()) std::copy(from.begin(), from.end(), sorted.begin());
}
