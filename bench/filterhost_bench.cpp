// Handing a 4000 x 3000 image out in tiles of 256 pixels and taking it back, against plain copies of the
// image's bytes.
#include "bench/bench.h"
#include "filterhost/pixel_exchange.h"

#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int width = 4000, height = 3000, side = 256, runs = 15;

struct PlaneRange {
    const char* name;
    std::int16_t lo, hi;
};

void exchange_in_tiles(const ConstImage& from, const Image& to, const PlaneRange& planes,
                       std::vector<std::byte>& buffer) {
    const auto end = [](int start, int limit) {
        return static_cast<std::int16_t>(std::min(start + side, limit));
    };
    for (std::int16_t top = 0; top < height; top = end(top, height))
        for (std::int16_t left = 0; left < width; left = end(left, width)) {
            const Tile tile({top, left, end(top, height), end(left, width)}, planes.lo, planes.hi);
            gather(from, tile, buffer.data());
            write_back(to, tile, buffer.data());
        }
}

} // namespace

void copy_in_tiles(const std::byte* from, std::byte* to, std::vector<std::byte>& buffer) {
    for (int top = 0; top < height; top += side)
        for (int left = 0; left < width; left += side) {
            const std::size_t row = 4 * static_cast<std::size_t>(std::min(side, width - left));
            const int rows = std::min(side, height - top);
            const auto at = [&](int y) { return (static_cast<std::size_t>(top + y) * width + left) * 4; };
            for (int y = 0; y < rows; ++y)
                std::memcpy(buffer.data() + y * row, from + at(y), row);
            for (int y = 0; y < rows; ++y)
                std::memcpy(to + at(y), buffer.data() + y * row, row);
        }
}

int main() {
    std::vector<std::byte> source(std::size_t{width} * height * 4, std::byte{0x55});
    std::vector<std::byte> target(source.size());
    std::vector<std::byte> buffer(std::size_t{side} * side * 4);
    const ConstImage from{source, width, height, 4 * width};
    const Image to{target, width, height, 4 * width};

    const double copy =
        bench::median_ms(runs, [&] { std::memcpy(target.data(), source.data(), source.size()); });
    std::printf("%-28s %8.2f ms\n", "memcpy of the image", copy);
    const double tiled = bench::median_ms(runs, [&] { copy_in_tiles(source.data(), target.data(), buffer); });
    std::printf("%-28s %8.2f ms %6.2f x memcpy\n", "the same in tiles, and back", tiled, tiled / copy);
    for (const PlaneRange& planes : {PlaneRange{"planes 0 to 2", 0, 2}, PlaneRange{"planes 0 to 3", 0, 3},
                                     PlaneRange{"plane 1", 1, 1}, PlaneRange{"planes 1 to 3", 1, 3}}) {
        const double exchange = bench::median_ms(runs, [&] { exchange_in_tiles(from, to, planes, buffer); });
        std::printf("%-28s %8.2f ms %6.2f x memcpy\n", planes.name, exchange, exchange / copy);
    }
}
