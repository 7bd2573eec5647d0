#include "filterhost/pixel_exchange.h"

#include "filterhost/pixel_rows.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace {

constexpr std::size_t pixel_bytes = 4;
constexpr std::size_t byte_of_plane[] = {2, 1, 0, 3};
constexpr int last_plane = 3;

int columns(const ps::Rect& rect) {
    return rect.right - rect.left;
}
int planes(const Tile& tile) {
    return tile.hi_plane - tile.lo_plane + 1;
}

// The part of a row that lies both in the tile and in the image.
template <class Byte>
std::span<Byte> clip_row(const BasicImage<Byte>& image, const Tile& tile, int y) {
    const std::int64_t row_start = std::int64_t{y} * image.row_bytes;
    const std::int64_t bytes_left = static_cast<std::int64_t>(image.bytes.size()) - row_start;
    if (row_start < 0 || bytes_left <= 0) return {};
    const std::int64_t pixels_in_row = std::min<std::int64_t>(image.width, bytes_left / pixel_bytes);
    const std::int64_t right = std::min<std::int64_t>(tile.rect.right, pixels_in_row);
    const std::int64_t left = std::max<std::int64_t>(tile.rect.left, 0);
    if (left >= right) return {};
    return image.bytes.subspan(static_cast<std::size_t>(row_start + left * pixel_bytes),
                               static_cast<std::size_t>((right - left) * pixel_bytes));
}

// The rows of a tile lie far apart in the image, where the processor does not foresee them.
constexpr int rows_ahead = 8;
constexpr std::size_t cache_line = 64;

template <class Byte>
void prefetch(std::span<Byte> row) {
    for (std::size_t i = 0; i < row.size(); i += cache_line)
        __builtin_prefetch(row.data() + i, std::is_const_v<Byte> ? 0 : 1);
}

// Calls row_function(pixels, samples, count) for every row of the tile that has pixels in the image. The
// tile's buffer has a size, so its planes are at least none.
template <class Byte, class Sample, class RowFunction>
void for_each_row(const BasicImage<Byte>& image, const Tile& tile, Sample* buffer, RowFunction row_function) {
    const int top = std::max<int>(tile.rect.top, 0);
    const int bottom = std::min<int>(tile.rect.bottom, image.height);
    // From here on the tile has a row, and fewer columns are left out than it has: offsets are within its
    // size.
    if (top >= bottom || tile.rect.right <= 0) return;
    const int samples_left_out = (std::max<int>(tile.rect.left, 0) - tile.rect.left) * planes(tile);
    for (int y = top; y < bottom; ++y) {
        if (y + rows_ahead < bottom) prefetch(clip_row(image, tile, y + rows_ahead));
        const std::span<Byte> row = clip_row(image, tile, y);
        if (row.empty()) continue;
        Sample* const samples =
            buffer + std::ptrdiff_t{y - tile.rect.top} * tile.row_bytes + samples_left_out;
        row_function(row.data(), samples, row.size() / pixel_bytes);
    }
}

// Rows of any range of planes: one pass per plane that exists. copy(pixel byte, sample).
template <class Byte, class Sample, class Copy>
void for_each_sample(const BasicImage<Byte>& image, const Tile& tile, Sample* buffer, Copy copy) {
    const auto step = static_cast<std::size_t>(planes(tile));
    const int first = std::max<int>(tile.lo_plane, 0);
    const int last = std::min<int>(tile.hi_plane, last_plane);
    for_each_row(image, tile, buffer, [&](Byte* pixels, Sample* samples, std::size_t count) {
        for (int plane = first; plane <= last; ++plane) {
            Byte* pixel = pixels + byte_of_plane[plane];
            Sample* sample = samples + (plane - tile.lo_plane);
            for (std::size_t i = 0; i < count; ++i)
                copy(pixel[i * pixel_bytes], sample[i * step]);
        }
    });
}

bool covers_planes(const Tile& tile, int lo, int hi) {
    return tile.lo_plane == lo && tile.hi_plane == hi;
}

} // namespace

Tile::Tile(const ps::Rect& area, std::int16_t lo, std::int16_t hi)
    : rect(area), lo_plane(lo), hi_plane(hi),
      row_bytes(static_cast<std::int32_t>(std::int64_t{columns(area)} * planes(*this))) {}

std::optional<std::size_t> Tile::buffer_size() const {
    const std::int64_t rows = rect.bottom - rect.top;
    // 17 bits each: the product of three fits.
    const std::int64_t size = rows * columns(rect) * planes(*this);
    if (rows < 0 || columns(rect) < 0 || planes(*this) < 0 || size > std::numeric_limits<std::int32_t>::max())
        return std::nullopt;
    return static_cast<std::size_t>(size);
}

void gather(const ConstImage& image, const Tile& tile, std::byte* buffer) {
    if (covers_planes(tile, 0, 2))
        for_each_row(image, tile, buffer, gather_rgb);
    else if (covers_planes(tile, 0, 3))
        for_each_row(image, tile, buffer, [](const std::byte* pixels, std::byte* samples, std::size_t count) {
            exchange_red_and_blue(pixels, samples, count);
        });
    else
        for_each_sample(image, tile, buffer,
                        [](const std::byte& pixel, std::byte& sample) { sample = pixel; });
}

void write_back(const Image& image, const Tile& tile, const std::byte* buffer) {
    if (covers_planes(tile, 0, 2))
        for_each_row(image, tile, buffer, write_back_rgb);
    else if (covers_planes(tile, 0, 3))
        for_each_row(image, tile, buffer, [](std::byte* pixels, const std::byte* samples, std::size_t count) {
            exchange_red_and_blue(samples, pixels, count);
        });
    else
        for_each_sample(image, tile, buffer,
                        [](std::byte& pixel, const std::byte& sample) { pixel = sample; });
}
