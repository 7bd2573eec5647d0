// Any rectangle, planes and image: nothing outside the image or the buffer is touched, and what was gathered
// and written back leaves the image as it was.
#include "filterhost/pixel_exchange.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

namespace {

#pragma pack(push, 1)
struct Input {
    ps::Rect rect;
    std::int16_t lo, hi;
    std::int16_t width, height, row_bytes;
    std::uint16_t size;
};
#pragma pack(pop)

constexpr std::size_t largest_buffer = 1 << 16;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input;
    if (size < sizeof input) return 0;
    std::memcpy(&input, data, sizeof input);
    const Tile tile(input.rect, input.lo, input.hi);
    const auto buffer_size = tile.buffer_size();
    if (!buffer_size || *buffer_size > largest_buffer) return 0;

    input.size %= 4096;
    const auto pixels = std::make_unique<std::byte[]>(input.size);
    for (std::size_t i = 0; i < input.size; ++i)
        pixels[i] = static_cast<std::byte>(i * 13 + data[i % size]);
    const std::vector<std::byte> before(pixels.get(), pixels.get() + input.size);
    const Image image{{pixels.get(), input.size}, input.width, input.height, input.row_bytes};

    const auto buffer = std::make_unique<std::byte[]>(*buffer_size);
    gather({image.bytes, image.width, image.height, image.row_bytes}, tile, buffer.get());
    // Rows that overlap are written twice with the same bytes, so this holds for them too.
    write_back(image, tile, buffer.get());
    require(std::equal(before.begin(), before.end(), pixels.get()));

    // No byte changes that has no sample.
    for (std::size_t i = 0; i < *buffer_size; ++i)
        buffer[i] ^= std::byte{0xFF};
    write_back(image, tile, buffer.get());
    std::size_t changed = 0;
    for (std::size_t i = 0; i < before.size(); ++i)
        changed += before[i] != pixels[i];
    require(changed <= *buffer_size);
    return 0;
}
