// BMP files made in memory.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

struct BmpFields {
    std::int32_t width = 0, height = 0;
    std::uint16_t bits = 24;
    std::uint32_t colours_used = 0, compression = 0, header_size = 40;
};

inline void put(std::string& to, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        to += static_cast<char>(value >> (8 * i));
}

inline std::string info_header(const BmpFields& f) {
    std::string header;
    put(header, f.header_size, 4);
    put(header, static_cast<std::uint32_t>(f.width), 4);
    put(header, static_cast<std::uint32_t>(f.height), 4);
    put(header, 1, 2);
    put(header, f.bits, 2);
    put(header, f.compression, 4);
    put(header, 0x11223344, 4); // image size: carried along, never looked at
    put(header, 2835, 4);
    put(header, 2836, 4);
    put(header, f.colours_used, 4);
    put(header, 5, 4);
    return header;
}

inline std::string file_header() {
    std::string header = "BM";
    put(header, 0xAAAA, 4);
    put(header, 0x00010002, 4);
    put(header, 0xBBBB, 4);
    return header;
}

// A file of these headers, followed by what is given: palette and rows.
inline std::string bmp_file(const BmpFields& f, const std::string& rest) {
    return file_header() + info_header(f) + rest;
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
            for (const std::uint32_t value :
                 {0u, 1u, 0x7Fu, 0xFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
                std::string bytes = good, four;
                put(four, value, field == 0 || field == 26 || field == 28 ? 2 : 4);
                files.push_back(bytes.replace(field, four.size(), four));
            }
    }
    return files;
}
