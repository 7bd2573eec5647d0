#include "imaging/raw_pixels.h"

#include "imaging/pixel_rows.h"

#include <algorithm>
#include <cstring>
#include <span>

namespace {

constexpr std::int64_t largest_size = 0x7FFFFFFF;

struct RowFormat {
    std::size_t width, source_step, target_step;
    FourthByte fourth;
};

bool is_whole_pixel(std::size_t bytes) {
    return bytes == 3 || bytes == 4;
}

// Rows of three- and four-byte pixels, as many as both ends hold. Gives how many those were.
std::size_t convert_whole_pixels(std::span<std::uint8_t> to, std::span<const std::uint8_t> from,
                                 const RowFormat& format) {
    if (!is_whole_pixel(format.source_step) || !is_whole_pixel(format.target_step)) return 0;
    const std::size_t pixels =
        std::min({format.width, from.size() / format.source_step, to.size() / format.target_step});
    const auto [value, key] = format.fourth;
    if (format.target_step == 3) {
        if (format.source_step == 3)
            std::memcpy(to.data(), from.data(), pixels * 3);
        else
            narrow_32(to.data(), from.data(), pixels);
        return pixels;
    }
    if (format.source_step == 3)
        (key ? widen_24_keyed : widen_24)(to.data(), from.data(), pixels, value);
    else
        (key ? key_white : set_fourth)(to.data(), from.data(), pixels, value);
    return pixels;
}

// The remaining pixels, byte by byte within both ends.
void convert_clipped(std::span<std::uint8_t> to, std::span<const std::uint8_t> from, const RowFormat& format,
                     std::size_t first) {
    for (std::size_t x = first; x < format.width && x * format.target_step < to.size(); ++x) {
        const std::size_t at = x * format.source_step;
        std::uint8_t pixel[4] = {};
        for (std::size_t i = 0; i < 3 && at + i < from.size(); ++i)
            pixel[i] = from[at + i];
        const bool white = pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 255;
        pixel[3] = format.fourth.white_is_transparent && white ? std::uint8_t{0} : format.fourth.value;
        const std::size_t target = x * format.target_step;
        std::memcpy(to.data() + target, pixel, std::min<std::size_t>(4, to.size() - target));
    }
}

} // namespace

PixelBuffer convert_rows(const RawRows& from, int target_row_bytes, int target_pixel_bytes, FourthByte fourth,
                         bool flipped) {
    if (from.width < 1 || from.height < 1 || from.row_bytes < 1 || from.pixel_bytes < 1) return {};
    if (target_row_bytes < 1 || target_pixel_bytes < 1) return {};
    const std::int64_t source_total = std::int64_t{from.row_bytes} * from.height;
    const std::int64_t target_total = std::int64_t{target_row_bytes} * from.height;
    const std::int64_t spare = std::max(std::int64_t{4} * from.width - target_row_bytes, std::int64_t{0});
    if (source_total > largest_size || target_total + spare > largest_size) return {};

    const RowFormat format{static_cast<std::size_t>(from.width), static_cast<std::size_t>(from.pixel_bytes),
                           static_cast<std::size_t>(target_pixel_bytes), fourth};
    const auto height = static_cast<std::size_t>(from.height);
    const auto row_bytes = static_cast<std::size_t>(target_row_bytes);
    const std::span source(from.bits, static_cast<std::size_t>(source_total));
    PixelBuffer buffer{
        std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(target_total + spare)),
        target_row_bytes};
    const bool every_byte_is_set = format.width * format.target_step == row_bytes && format.target_step <= 4;
    std::uint8_t* to = buffer.bits.get();
    for (std::size_t y = 0; y < height; ++y, to += row_bytes) {
        const std::size_t source_y = flipped ? height - 1 - y : y;
        const auto rest = source.subspan(source_y * static_cast<std::size_t>(from.row_bytes));
        if (!every_byte_is_set) std::memset(to, 0, row_bytes);
        const std::size_t done = convert_whole_pixels({to, row_bytes}, rest, format);
        convert_clipped({to, row_bytes}, rest, format, done);
    }
    std::memset(to, 0, static_cast<std::size_t>(spare));
    return buffer;
}
