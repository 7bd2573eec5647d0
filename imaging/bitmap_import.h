// Bitmaps from rows of pixels in memory.
#pragma once

#include "imaging/gdiplus_objects.h"
#include "imaging/raw_pixels.h"

// What an independent copy is drawn on.
enum class Ground { none, white };

// A bitmap of its own pixels, like one whose rows lie in a buffer. None when a bitmap cannot be made.
unique_gp_bitmap import_rows(int width, int height, int row_bytes, Gdiplus::PixelFormat format,
                             const std::uint8_t* bits, Ground ground = Ground::none);

// The same of rows that are converted first.
unique_gp_bitmap import_converted(const RawRows& rows, int target_row_bytes, int target_pixel_bytes,
                                  FourthByte fourth, bool flipped, Gdiplus::PixelFormat format,
                                  Ground ground = Ground::none);
