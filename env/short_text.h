// Names, paths and most values are a few bytes long: measuring and copying them in place takes less than the
// calls of the C library would.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace env {

inline std::string_view view_of(const char* text) {
    constexpr std::size_t short_length = 16;
    std::size_t length = 0;
    while (length < short_length && text[length])
        ++length;
    return {text, length < short_length ? length : length + std::strlen(text + length)};
}

// Copies bytes to where they do not overlap.
inline void copy_apart(char* to, std::string_view text) {
    const auto copy_ends = [&](auto word) {
        std::memcpy(&word, text.data(), sizeof word);
        std::memcpy(to, &word, sizeof word);
        std::memcpy(&word, text.data() + text.size() - sizeof word, sizeof word);
        std::memcpy(to + text.size() - sizeof word, &word, sizeof word);
    };
    if (text.size() > 16)
        std::memcpy(to, text.data(), text.size());
    else if (text.size() >= 8)
        copy_ends(std::uint64_t{});
    else if (text.size() >= 4)
        copy_ends(std::uint32_t{});
    else
        for (std::size_t i = 0; i < text.size(); ++i)
            to[i] = text[i];
}

} // namespace env
