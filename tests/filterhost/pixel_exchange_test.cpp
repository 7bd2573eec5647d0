// Gather and write-back against a plain reference, for rectangles and planes of every kind; the sanitizer
// watches the edges.
#include "filterhost/pixel_exchange.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

namespace {

struct Picture {
    Picture(int width, int height, int row_bytes, std::size_t size)
        : image{{}, width, height, row_bytes}, bytes(new std::byte[size]) {
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<std::byte>(i * 7 + i / 256);
        image.bytes = {bytes.get(), size};
    }
    ConstImage as_const() const { return {image.bytes, image.width, image.height, image.row_bytes}; }

    Image image;
    std::unique_ptr<std::byte[]> bytes; // ends where the allocation ends
};

// Where the sample of a pixel's plane stands in the image; -1 outside.
std::ptrdiff_t place(const Image& image, int x, int y, int plane) {
    const int byte[] = {2, 1, 0, 3};
    if (x < 0 || y < 0 || x >= image.width || y >= image.height || plane < 0 || plane > 3) return -1;
    const std::ptrdiff_t pixel = std::ptrdiff_t{y} * image.row_bytes + 4 * x;
    if (std::ptrdiff_t{y} * image.row_bytes < 0) return -1;
    return pixel + 4 <= static_cast<std::ptrdiff_t>(image.bytes.size()) ? pixel + byte[plane] : -1;
}

// Calls visit(buffer index, image index or -1) for every sample of the tile.
template <class Visit>
void for_each_sample(const Image& image, const Tile& tile, Visit visit) {
    std::size_t index = 0;
    for (int y = tile.rect.top; y < tile.rect.bottom; ++y)
        for (int x = tile.rect.left; x < tile.rect.right; ++x)
            for (int plane = tile.lo_plane; plane <= tile.hi_plane; ++plane)
                visit(index++, place(image, x, y, plane));
}

void expect_exact_exchange(const Picture& source, const Tile& tile) {
    const auto size = tile.buffer_size();
    ASSERT_TRUE(size);
    constexpr std::byte untouched{0xA5};
    const std::unique_ptr<std::byte[]> buffer(new std::byte[*size]);
    std::fill_n(buffer.get(), *size, untouched);
    gather(source.as_const(), tile, buffer.get());
    std::vector<std::byte> expected_samples(*size, untouched);
    for_each_sample(source.image, tile, [&](std::size_t sample, std::ptrdiff_t pixel) {
        if (pixel >= 0) expected_samples[sample] = source.bytes[static_cast<std::size_t>(pixel)];
    });
    ASSERT_TRUE(std::equal(expected_samples.begin(), expected_samples.end(), buffer.get()));

    Picture result(source.image.width, source.image.height, source.image.row_bytes,
                   source.image.bytes.size());
    std::vector<std::byte> expected(result.image.bytes.begin(), result.image.bytes.end());
    for (std::size_t i = 0; i < *size; ++i)
        buffer[i] = static_cast<std::byte>(i * 31 + 5);
    for_each_sample(source.image, tile, [&](std::size_t sample, std::ptrdiff_t pixel) {
        if (pixel >= 0) expected[static_cast<std::size_t>(pixel)] = buffer[sample];
    });
    write_back(result.image, tile, buffer.get());
    ASSERT_TRUE(std::equal(expected.begin(), expected.end(), result.image.bytes.begin()));
}

TEST(PixelExchange, CopiesExactlyWhatLiesInside) {
    const struct {
        int width, height, row_bytes;
        std::size_t size;
    } pictures[] = {
        {50, 9, 200, 1800},                         // rows without a gap
        {37, 5, 151, 755},                          // rows on odd addresses
        {20, 6, 40, 240},                           // rows shorter than their pixels: the last ones end early
        {20, 6, 0, 0},           {20, 6, -80, 480}, // only the first row lies in the bytes
        {700, 40, 2801, 112040},                    // rows in several pieces, on odd addresses
    };
    // What tiles can begin and end with: inside, at and beyond the edges.
    const int edges[][2] = {{0, 50},  {-3, 4}, {3, 37},  {-32768, -32760},
                            {40, 70}, {0, 1},  {17, 34}, {1, 710}};
    const int planes[][2] = {{0, 2}, {0, 3}, {0, 0}, {2, 2}, {3, 3}, {1, 3}, {-2, 1}, {2, 6}, {4, 9}, {1, 0}};
    for (const auto& p : pictures) {
        const Picture picture(p.width, p.height, p.row_bytes, p.size);
        for (const auto& across : edges)
            for (const auto& down : {edges[0], edges[1], edges[5]})
                for (const auto& range : planes) {
                    const auto short_int = [](int value) { return static_cast<std::int16_t>(value); };
                    const ps::Rect rect{short_int(down[0]), short_int(across[0]), short_int(down[1]),
                                        short_int(across[1])};
                    SCOPED_TRACE(testing::Message()
                                 << "width " << p.width << " columns " << across[0] << ".." << across[1]
                                 << " planes " << range[0] << ".." << range[1]);
                    expect_exact_exchange(picture, Tile(rect, short_int(range[0]), short_int(range[1])));
                    if (HasFatalFailure()) return;
                }
    }
}

TEST(PixelExchange, CountsInEnoughBits) {
    const Picture picture(4, 4, 16, 64);
    expect_exact_exchange(picture, Tile({0, -32768, 1, -32767}, -32768, 32767));
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
