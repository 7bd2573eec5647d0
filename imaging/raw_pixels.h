// Rows of pixels in a caller's memory, and their way into buffers that a bitmap can be made from. Whatever
// the strides and widths say, nothing is read or written beyond `height` rows of a stride's bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

struct RawRows {
    const std::uint8_t* bits;
    int width, height;
    int row_bytes;   // from one row to the next
    int pixel_bytes; // from one pixel to the next
};

// What byte 3 of a pixel becomes.
struct FourthByte {
    std::uint8_t value;
    bool white_is_transparent; // 0 for pure white
};

struct PixelBuffer {
    std::unique_ptr<std::uint8_t[]> bits;
    int row_bytes = 0;
};

// Copies bytes 0 to 2 of every pixel in turn and sets byte 3; what does not fit a target row is cut, what no
// pixel reaches is 0. A platform bitmap of up to 32 bits per pixel may be laid over the result, whatever the
// row length: it has room for the last row's last pixel. Nothing when there are no pixels, for sizes below 1,
// and above 2 GB.
PixelBuffer convert_rows(const RawRows& from, int target_row_bytes, int target_pixel_bytes, FourthByte fourth,
                         bool flipped);
