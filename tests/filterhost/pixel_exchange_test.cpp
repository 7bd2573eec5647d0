// Gather and write-back against a plain reference, for rectangles and planes of every kind; the sanitizer
// watches the edges.
#include "filterhost/pixel_exchange.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<std::byte>;

Bytes pattern(std::size_t size, unsigned step) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::byte>(i * step + i / 256);
    bytes.shrink_to_fit();
    return bytes;
}

struct Layout {
    int width, height, row_bytes;
    std::size_t size;
};

// Where the sample of a pixel's plane stands in the image; -1 outside.
std::int64_t place(const Layout& image, int x, int y, int plane) {
    if (x < 0 || y < 0 || x >= image.width || y >= image.height || plane < 0 || plane > 3) return -1;
    const std::int64_t row = std::int64_t{y} * image.row_bytes, pixel = row + 4 * x;
    if (row < 0 || pixel + 4 > static_cast<std::int64_t>(image.size)) return -1;
    return pixel + (plane == 3 ? 3 : 2 - plane);
}

void expect_exact_exchange(const Layout& layout, const Tile& tile) {
    const auto size = tile.buffer_size();
    ASSERT_TRUE(size);
    const auto [width, height, row_bytes, image_size] = layout;
    const Bytes source = pattern(image_size, 7), samples = pattern(*size, 31);
    Bytes gathered(*size, std::byte{0xA5}), written = source;
    Bytes should_be_gathered = gathered, should_be_written = written;
    std::size_t index = 0;
    for (int y = tile.rect.top; y < tile.rect.bottom; ++y)
        for (int x = tile.rect.left; x < tile.rect.right; ++x)
            for (int plane = tile.lo_plane; plane <= tile.hi_plane; ++plane, ++index)
                if (const auto at = place(layout, x, y, plane); at >= 0) {
                    should_be_gathered[index] = source[static_cast<std::size_t>(at)];
                    should_be_written[static_cast<std::size_t>(at)] = samples[index];
                }
    gather({source, width, height, row_bytes}, tile, gathered.data());
    write_back({written, width, height, row_bytes}, tile, samples.data());
    ASSERT_TRUE(gathered == should_be_gathered);
    ASSERT_TRUE(written == should_be_written);
}

TEST(PixelExchange, CopiesExactlyWhatLiesInside) {
    const Layout pictures[] = {
        {50, 9, 200, 1800},                         // rows without a gap
        {37, 5, 151, 755},                          // rows on odd addresses
        {20, 6, 40, 240},                           // rows shorter than their pixels: the last ones end early
        {20, 6, 0, 0},           {20, 6, -80, 480}, // only the first row lies in the bytes
        {700, 40, 2801, 112040},                    // rows in several pieces, on odd addresses
    };
    // What tiles can begin and end with: inside, at and beyond the edges.
    using Range = std::pair<std::int16_t, std::int16_t>;
    const Range across[] = {{0, 50},  {-3, 4}, {3, 37},  {-32768, -32760},
                            {40, 70}, {0, 1},  {17, 34}, {1, 710}};
    const Range down[] = {{0, 50}, {-3, 4}, {0, 1}};
    const Range planes[] = {{0, 2}, {0, 3}, {0, 0}, {2, 2}, {3, 3}, {1, 3}, {-2, 1}, {2, 6}, {4, 9}, {1, 0}};
    for (const Layout& picture : pictures)
        for (const auto& [left, right] : across)
            for (const auto& [top, bottom] : down)
                for (const auto& [lo, hi] : planes) {
                    SCOPED_TRACE(testing::Message() << "width " << picture.width << " columns " << left
                                                    << ".." << right << " planes " << lo << ".." << hi);
                    expect_exact_exchange(picture, Tile({top, left, bottom, right}, lo, hi));
                    if (HasFatalFailure()) return;
                }
    // All planes that there can be: offsets that 16 bits do not hold.
    expect_exact_exchange({4, 4, 16, 64}, Tile({0, -32768, 1, -32767}, -32768, 32767));
}

TEST(PixelExchange, SizesBuffersByTheRectangleAsAsked) {
    const struct {
        ps::Rect rect;
        std::int16_t lo, hi;
        std::int32_t row_bytes;
        std::optional<std::size_t> size;
    } cases[] = {
        {{-10, -5, 10, 5}, 0, 2, 30, 600},
        {{0, 0, 1, 1}, 3, 3, 1, 1},
        {{0, 0, 4, 4}, 1, 0, 0, 0},
        {{0, 0, 4, 4}, 2, 0, -4, std::nullopt},
        {{0, 4, 4, 0}, 0, 2, -12, std::nullopt},
        {{4, 0, 0, 4}, 0, 2, 12, std::nullopt},
        {{-32768, -32768, 32767, 32767}, 0, 0, 65535, std::nullopt},
        {{0, 0, 2, 32767}, -32768, 32767, 32767 * 65536, std::nullopt},
    };
    for (const auto& each : cases) {
        const Tile tile(each.rect, each.lo, each.hi);
        EXPECT_EQ(tile.row_bytes, each.row_bytes);
        EXPECT_EQ(tile.buffer_size(), each.size);
    }
}

} // namespace
