#include "filterhost/pixel_exchange.h"

#include "module/pixel_shuffle.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace {

constexpr std::size_t pixel_bytes = 4;
constexpr std::uint8_t byte_of_plane[] = {2, 1, 0, 3};
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
    if (row_start < 0 || row_start >= static_cast<std::int64_t>(image.bytes.size())) return {};
    const std::span<Byte> rest = image.bytes.subspan(static_cast<std::size_t>(row_start));
    const auto left = static_cast<std::size_t>(std::max<int>(tile.rect.left, 0));
    const auto image_right =
        static_cast<std::size_t>(std::max(std::min<int>(tile.rect.right, image.width), 0));
    const std::size_t right = std::min(image_right, rest.size() / pixel_bytes);
    if (left >= right) return {};
    return rest.subspan(left * pixel_bytes, (right - left) * pixel_bytes);
}

// The rows of a tile lie far apart in the image, where the processor does not foresee them. While it works on
// a piece of a row, it is told of the same piece of a row below: about 8 KB of the tile's pixels ahead.
constexpr std::size_t piece_bytes = 1024, bytes_ahead = 8 * 1024;
constexpr int most_rows_ahead = 16;
constexpr std::uintptr_t cache_line = 64;

template <class Byte>
void prefetch(std::span<Byte> row, std::size_t first) {
    if (first >= row.size()) return;
    const auto start = reinterpret_cast<std::uintptr_t>(row.data());
    const std::uintptr_t end = start + std::min(first + piece_bytes, row.size());
    for (std::uintptr_t line = (start + first) / cache_line * cache_line; line < end; line += cache_line)
        __builtin_prefetch(reinterpret_cast<const void*>(line), std::is_const_v<Byte> ? 0 : 1);
}

// Calls row_function(pixels, samples, count) for all pixels of the tile that are in the image, some of a row
// at a time. The tile's buffer has a size, so its planes are at least none.
template <class Byte, class Sample, class RowFunction>
void for_each_row(const BasicImage<Byte>& image, const Tile& tile, Sample* buffer, RowFunction row_function) {
    const int top = std::max<int>(tile.rect.top, 0);
    const int bottom = std::min<int>(tile.rect.bottom, image.height);
    // From here on the tile has a row, and fewer columns are left out than it has: offsets are within its
    // size.
    if (top >= bottom || tile.rect.right <= 0) return;
    const int samples_left_out = (std::max<int>(tile.rect.left, 0) - tile.rect.left) * planes(tile);
    const auto row_size = std::max<std::size_t>(clip_row(image, tile, top).size(), 1);
    const int rows_ahead = std::clamp(static_cast<int>(bytes_ahead / row_size), 1, most_rows_ahead);
    for (int y = top; y < std::min(top + rows_ahead, bottom); ++y)
        prefetch(clip_row(image, tile, y), 0);
    for (int y = top; y < bottom; ++y) {
        const std::span<Byte> row = clip_row(image, tile, y);
        const std::span<Byte> below =
            y + rows_ahead < bottom ? clip_row(image, tile, y + rows_ahead) : std::span<Byte>();
        Sample* samples = buffer + std::ptrdiff_t{y - tile.rect.top} * tile.row_bytes + samples_left_out;
        for (std::size_t at = 0; at < row.size(); at += piece_bytes) {
            prefetch(below, at);
            const std::size_t count = std::min(piece_bytes, row.size() - at) / pixel_bytes;
            row_function(row.data() + at, samples, count);
            samples += static_cast<int>(count) * planes(tile);
        }
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

// The order of samples in tiles whose planes all exist.
std::optional<SampleOrder> sample_order(const Tile& tile) {
    if (tile.lo_plane < 0 || tile.hi_plane > last_plane || tile.lo_plane > tile.hi_plane) return std::nullopt;
    return SampleOrder({byte_of_plane + tile.lo_plane, byte_of_plane + tile.hi_plane + 1});
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
    if (const auto order = sample_order(tile))
        for_each_row(image, tile, buffer,
                     [&](const std::byte* pixels, std::byte* samples, std::size_t count) {
                         gather_samples(*order, pixels, samples, count);
                     });
    else
        for_each_sample(image, tile, buffer,
                        [](const std::byte& pixel, std::byte& sample) { sample = pixel; });
}

void write_back(const Image& image, const Tile& tile, const std::byte* buffer) {
    if (const auto order = sample_order(tile))
        for_each_row(image, tile, buffer,
                     [&](std::byte* pixels, const std::byte* samples, std::size_t count) {
                         write_samples(*order, pixels, samples, count);
                     });
    else
        for_each_sample(image, tile, buffer,
                        [](std::byte& pixel, const std::byte& sample) { pixel = sample; });
}
