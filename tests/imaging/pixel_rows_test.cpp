// Pixel conversions and what is built on them, on exact heap buffers, so that a sanitizer sees every stray
// byte.
#include "imaging/bitmap_ex.h"
#include "imaging/pixel_rows.h"
#include "imaging/raw_pixels.h"
#include "tests/imaging/bmp_bytes.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes random_bytes(std::size_t size) {
    static std::mt19937 random(11);
    Bytes bytes(size);
    for (std::uint8_t& byte : bytes)
        byte = random() % 3 ? std::uint8_t{255} : static_cast<std::uint8_t>(random()); // whites among them
    return bytes;
}

bool is_white(const std::uint8_t* pixel) {
    return pixel[0] == 255 && pixel[1] == 255 && pixel[2] == 255;
}

TEST(PixelRows, EqualThePixelwiseDefinitionForEveryLength) {
    const Bytes palette = random_bytes(1024);
    const auto three = [](auto* to, auto* from, unsigned fourth) {
        std::copy(from, from + 3, to);
        to[3] = static_cast<std::uint8_t>(fourth);
    };
    const struct {
        const char* name;
        std::size_t source_step, target_step;
        std::function<void(std::uint8_t*, const std::uint8_t*, std::size_t)> convert;
        std::function<void(std::uint8_t*, const std::uint8_t*)> pixel;
    } cases[] = {
        {"widen 24", 3, 4, [](auto* to, auto* from, std::size_t n) { widen_24(to, from, n, 0xC3); },
         [&](auto* to, auto* from) { three(to, from, 0xC3); }},
        {"widen 24, keyed", 3, 4,
         [](auto* to, auto* from, std::size_t n) { widen_24_keyed(to, from, n, 0xC3); },
         [&](auto* to, auto* from) { three(to, from, is_white(from) ? 0 : 0xC3); }},
        {"narrow 32", 4, 3, narrow_32, [](auto* to, auto* from) { std::copy(from, from + 3, to); }},
        {"widen 8", 1, 4, [&](auto* to, auto* from, std::size_t n) { widen_8(to, from, n, palette.data()); },
         [&](auto* to, auto* from) { three(to, &palette[*from * 4u], 0); }},
        {"widen 5-5-5", 2, 4, widen_555,
         [](auto* to, auto* from) {
             const unsigned value = from[0] + from[1] * 256u;
             for (unsigned i = 0; i < 3; ++i)
                 to[i] = value >> (5 * i) & 31;
             to[3] = 0;
         }},
        {"set fourth", 4, 4, [](auto* to, auto* from, std::size_t n) { set_fourth(to, from, n, 7); },
         [&](auto* to, auto* from) { three(to, from, 7); }},
        {"key white", 4, 4, [](auto* to, auto* from, std::size_t n) { key_white(to, from, n, 9); },
         [&](auto* to, auto* from) { three(to, from, is_white(from) ? 0 : 9); }},
    };
    for (const auto& c : cases) {
        for (std::size_t pixels = 0; pixels < 560; pixels += pixels < 40 ? 1 : 37) {
            const Bytes from = random_bytes(pixels * c.source_step);
            Bytes to(pixels * c.target_step), expected(to.size());
            c.convert(to.data(), from.data(), pixels);
            for (std::size_t i = 0; i < pixels; ++i)
                c.pixel(&expected[i * c.target_step], &from[i * c.source_step]);
            ASSERT_EQ(to, expected) << c.name << ", " << pixels;
        }
    }
}

// The stated order of copies, one byte after the other, on buffers with room on all sides.
Bytes copied_in_order(const Bytes& bits, const RawRows& rows, int target_row, int target_step,
                      FourthByte fourth, bool flipped) {
    Bytes source = bits;
    source.resize(bits.size() + 64);
    Bytes target(static_cast<std::size_t>(target_row * rows.height) + 4096);
    for (int y = 0; y < rows.height; ++y) {
        const int from_y = flipped ? rows.height - 1 - y : y;
        for (int x = 0; x < rows.width; ++x) {
            const std::uint8_t* from =
                &source[static_cast<std::size_t>(from_y * rows.row_bytes + x * rows.pixel_bytes)];
            std::uint8_t* to = &target[static_cast<std::size_t>(y * target_row + x * target_step)];
            std::copy(from, from + 3, to);
            to[3] = fourth.white_is_transparent && is_white(from) ? std::uint8_t{0} : fourth.value;
        }
    }
    target.resize(static_cast<std::size_t>(target_row * rows.height));
    return target;
}

TEST(RawPixels, AreCopiedInTheStatedOrderWithinTheirBuffers) {
    for (int source_step = 1; source_step <= 5; ++source_step) {
        for (int target_step = 1; target_step <= 5; ++target_step) {
            for (const int width : {1, 4, 21}) {
                for (const bool flipped : {false, true}) {
                    // Rows of just the pixels, and rows that do not hold them all.
                    const int target_row = width * target_step, source_row = width * source_step;
                    for (const int cut : {0, width > 4 ? 5 : 0}) {
                        const Bytes bits =
                            random_bytes(static_cast<std::size_t>((source_row - (cut ? 1 : 0)) * 3));
                        const RawRows rows{bits.data(), width, 3, source_row - (cut ? 1 : 0), source_step};
                        const FourthByte fourth{0x80, flipped};
                        const PixelBuffer buffer =
                            convert_rows(rows, target_row - cut, target_step, fourth, flipped);
                        ASSERT_TRUE(buffer.bits);
                        const Bytes expected =
                            copied_in_order(bits, rows, target_row - cut, target_step, fourth, flipped);
                        ASSERT_EQ(Bytes(buffer.bits.get(), buffer.bits.get() + expected.size()), expected)
                            << source_step << " to " << target_step << ", " << width << ", cut " << cut;
                    }
                }
            }
        }
    }
}

TEST(RawPixels, RefuseSizesThatCannotBe) {
    const std::uint8_t bits[16] = {};
    const int most = 0x7FFFFFFF;
    const RawRows cases[] = {{bits, 0, 1, 4, 4},    {bits, 1, 0, 4, 4},       {bits, -1, 1, 4, 4},
                             {bits, 1, -1, 4, 4},   {bits, 1, 1, -4, 4},      {bits, 1, 1, 4, 0},
                             {bits, 1, most, 4, 4}, {bits, most, most, 4, 4}, {bits, most, 1, 4, 4}};
    for (const RawRows& rows : cases)
        EXPECT_FALSE(convert_rows(rows, 4, 4, {0, false}, false).bits) << rows.width << " x " << rows.height;
    EXPECT_FALSE(convert_rows({bits, 1, 1, 4, 4}, 0, 4, {0, false}, false).bits);
    EXPECT_FALSE(convert_rows({bits, 1, 1, 4, 4}, 4, -1, {0, false}, false).bits);
}

TEST(HostileBmpFiles, LeaveTheInvariantOrNoPixels) {
    CBitmapEx bitmap;
    for (const std::string& file : hostile_files()) {
        const Bytes bytes(file.begin(), file.end());
        for (const auto& layout : {CBitmapEx::file, CBitmapEx::file_image, CBitmapEx::bare_image}) {
            SpanSource source(bytes);
            bitmap.load(source, layout);
            if (!bitmap.pixels()) {
                EXPECT_EQ(bitmap.pixel_data_size(), 0u);
                continue;
            }
            EXPECT_EQ(bitmap.info().bit_count, 32);
            EXPECT_EQ(bitmap.pixel_data_size(),
                      static_cast<std::uint32_t>(bitmap.info().width * bitmap.info().height * 4));
            EXPECT_EQ(std::uint32_t{bitmap.file_header().file_size}, bitmap.pixel_data_size() + 54);
            bitmap.flip();
            bitmap.save(nullptr, {});
        }
    }
}

} // namespace
