// BMP files made in memory.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

struct BmpFields {
    std::int32_t width = 0, height = 0;
    std::uint16_t bits = 24;
    std::uint32_t colours_used = 0, compression = 0, header_size = 40;
};

// Numbers as they lie in a file, each with its size in bytes.
inline std::string packed(std::initializer_list<std::pair<std::int64_t, int>> numbers) {
    std::string bytes;
    for (const auto& [number, size] : numbers)
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}

inline std::string info_header(const BmpFields& f) {
    constexpr int image_size = 0x11223344; // carried along, never looked at
    return packed({{f.header_size, 4},
                   {f.width, 4},
                   {f.height, 4},
                   {1, 2},
                   {f.bits, 2},
                   {f.compression, 4},
                   {image_size, 4},
                   {2835, 4},
                   {2836, 4},
                   {f.colours_used, 4},
                   {5, 4}});
}

// A file of these headers, followed by what is given: palette and rows.
inline std::string bmp_file(const BmpFields& f, const std::string& rest) {
    return "BM" + packed({{0xAAAA, 4}, {0x00010002, 4}, {0xBBBB, 4}}) + info_header(f) + rest;
}

// Counting bytes: distinct values in every place.
inline std::string counting(std::size_t size, unsigned first = 1) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(first + i * 7);
    return bytes;
}

// Files cut short at every byte of their headers, and with every header field but the sizes at its extremes.
inline std::vector<std::string> hostile_files() {
    std::vector<std::string> files;
    for (const unsigned bits : {8u, 16u, 24u, 32u}) {
        const std::string good =
            bmp_file({3, 3, static_cast<std::uint16_t>(bits)}, std::string(1100, '\x05'));
        for (std::size_t end = 0; end < 70; ++end)
            files.push_back(good.substr(0, end));
        for (const std::size_t field : {0u, 10u, 14u, 26u, 28u, 30u, 34u, 46u})
            for (const std::int64_t value : {0ll, 1ll, 0x7Fll, 0xFFFFll, 0x7FFFFFFFll, 0x80000000ll, -1ll}) {
                const std::string bytes = packed({{value, field == 0 || field == 26 || field == 28 ? 2 : 4}});
                files.push_back(std::string(good).replace(field, bytes.size(), bytes));
            }
    }
    return files;
}
