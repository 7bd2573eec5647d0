// A picture's pixels in memory, as filters take them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Top-down rows of 4 bytes per pixel: blue, green, red and one unused.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    int row_bytes() const { return 4 * width; }
};

// Both need a GdiPlusSession, and throw CommandFailed as PictureFile and save_bitmap() do.
Picture read_picture(const std::string& path);
void write_picture(const std::string& path, int format, const Picture& picture);
