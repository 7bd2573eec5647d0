// Handing out an image of 4000 x 3000 pixels and taking it back, whole and in tiles of 256 pixels. What a
// write-back reads of the pixels to keep their other bytes does not count for its yardstick.
#include "bench/copying.h"
#include "filterhost/pixel_exchange.h"

#include <string>

namespace {

constexpr std::int16_t width = 4000, height = 3000, tile_side = 256;

struct PlaneRange {
    const char* name;
    std::int16_t lo, hi;
    double goal;
};

// Calls work(tile) for tiles of this side, all with one buffer.
template <class Work>
void in_tiles(std::int16_t side, const PlaneRange& planes, Work&& work) {
    const auto end = [side](int start, int limit) {
        return static_cast<std::int16_t>(std::min(start + side, limit));
    };
    for (std::int16_t top = 0; top < height; top = end(top, height))
        for (std::int16_t left = 0; left < width; left = end(left, width))
            work(Tile({top, left, end(top, height), end(left, width)}, planes.lo, planes.hi));
}

} // namespace

int main() {
    constexpr std::size_t pixels = std::size_t{width} * height;
    std::vector<std::byte> source(pixels * 4, std::byte{0x55}), target(source), buffer(source);
    const ConstImage from{source, width, height, 4 * width};
    const Image to{target, width, height, 4 * width};

    const bench::Table table({"memcpy"});
    bench::Copying copying(pixels * 8);
    for (const PlaneRange& planes :
         {PlaneRange{"planes 0 to 2", 0, 2, 1.5}, PlaneRange{"planes 0 to 3", 0, 3, 0},
          PlaneRange{"planes 1 to 2", 1, 2, 0}, PlaneRange{"plane 1", 1, 1, 0}})
        for (const std::int16_t side : {width, tile_side}) {
            const std::string where = std::string(planes.name) + (side == width ? ", whole" : ", in tiles");
            const std::size_t traffic = pixels * static_cast<std::size_t>(4 + planes.hi - planes.lo + 1);
            copying.compare(table, (where + ": gather").c_str(), traffic, planes.goal, [&] {
                in_tiles(side, planes, [&](const Tile& tile) { gather(from, tile, buffer.data()); });
            });
            copying.compare(table, (where + ": write back").c_str(), traffic, planes.goal, [&] {
                in_tiles(side, planes, [&](const Tile& tile) { write_back(to, tile, buffer.data()); });
            });
        }
}
