// Pixels between an image and the buffers that plug-ins work on.
#pragma once

#include "filterhost/filter_record.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

// An image of 4 bytes per pixel (blue, green, red, fourth byte), the first row at the lowest address. The
// bytes bound every access, whatever the width, the height and the row bytes claim.
template <class Byte>
struct BasicImage {
    std::span<Byte> bytes;
    int width = 0;
    int height = 0;
    int row_bytes = 0;
};
using Image = BasicImage<std::byte>;
using ConstImage = BasicImage<const std::byte>;

// A rectangle of an image and a range of its planes (0 red, 1 green, 2 blue, 3 the fourth byte), as a plug-in
// asked for them: any values, the rectangle not clipped. Its buffer holds the rows of the rectangle, in each
// row the columns, in each column one byte per plane of the range.
struct Tile {
    ps::Rect rect{};
    std::int16_t lo_plane = 0;
    std::int16_t hi_plane = 0;
    std::int32_t row_bytes = 0; // of the buffer

    Tile() = default;
    Tile(const ps::Rect& area, std::int16_t lo, std::int16_t hi);

    // The size of the buffer; none for an inverted range of planes and for a size beyond the address space.
    std::optional<std::size_t> buffer_size() const;
};

// Whether the rectangle holds a pixel.
constexpr bool is_non_empty(const ps::Rect& rect) {
    return rect.left < rect.right && rect.top < rect.bottom;
}

// Copies the tile's samples out of the image into a buffer of the tile's size. What lies outside the image,
// and planes that do not exist, stay as they are in the buffer.
void gather(const ConstImage& image, const Tile& tile, std::byte* buffer);

// Copies the samples of such a buffer into the image, where it and its planes exist.
void write_back(const Image& image, const Tile& tile, const std::byte* buffer);
