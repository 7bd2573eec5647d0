// Pictures as BMP files.
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

// Reads a BMP file of any depth. Throws CommandFailed: exit_io_error when it cannot be read, exit_bad_input
// when it is no BMP.
Picture read_bmp(const std::string& path);

// Writes a BMP file of 24 bits per pixel, replacing a former one only when all is written. Throws
// CommandFailed (exit_io_error).
void write_bmp(const std::string& path, const Picture& picture);
