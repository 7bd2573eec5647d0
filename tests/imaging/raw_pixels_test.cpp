// Raw pixels, on exact heap buffers, so that a sanitizer sees every stray byte.
#include "imaging/raw_pixels.h"

#include <gtest/gtest.h>

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

// One pixel with its colour and a fourth byte, 0 for white when that is the key.
void copy_pixel(std::uint8_t* to, const std::uint8_t* from, FourthByte fourth) {
    const bool white = from[0] == 255 && from[1] == 255 && from[2] == 255;
    std::copy(from, from + 3, to);
    to[3] = fourth.white_is_transparent && white ? std::uint8_t{0} : fourth.value;
}

void expect_copied_in_order(int source_step, int target_step, int width, bool flipped, int cut) {
    SCOPED_TRACE(testing::Message() << source_step << " to " << target_step << ", " << width << ", " << cut);
    constexpr int height = 3;
    const int source_row = width * source_step - (cut ? 1 : 0), target_row = width * target_step - cut;
    Bytes bits = random_bytes(static_cast<std::size_t>(source_row * height));
    const FourthByte fourth{0x80, flipped};
    const PixelBuffer made = convert_rows({bits.data(), width, height, source_row, source_step}, target_row,
                                          target_step, fourth, flipped);
    // The stated order of copies, one pixel after the other, with room behind the buffers.
    Bytes expected(static_cast<std::size_t>(target_row * height) + 4096);
    bits.resize(bits.size() + 64);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int from = (flipped ? height - 1 - y : y) * source_row + x * source_step;
            copy_pixel(&expected[static_cast<std::size_t>(y * target_row + x * target_step)],
                       &bits[static_cast<std::size_t>(from)], fourth);
        }
    expected.resize(static_cast<std::size_t>(target_row * height));
    ASSERT_EQ(Bytes(made.bits.get(), made.bits.get() + expected.size()), expected);
}

TEST(RawPixels, AreCopiedInTheStatedOrderWithinTheirBuffers) {
    for (int source_step = 1; source_step <= 5; ++source_step)
        for (int target_step = 1; target_step <= 5; ++target_step)
            for (int width = 1; width < 560; width += width < 40 ? 1 : 37)
                for (const bool flipped : {false, true})
                    for (const int cut : {0, width > 4 ? 5 : 0}) // rows that do not hold all their pixels
                        expect_copied_in_order(source_step, target_step, width, flipped, cut);
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

} // namespace
