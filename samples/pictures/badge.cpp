// Paints two pictures that show what a transparent colour does: a badge on a plain key colour, and a pattern
// to put it on. Writes 24-bit BMP files: badge BADGE.bmp PATTERN.bmp
//
// The badge's edges are hard, as every pixel either has the key colour (magenta) or belongs to the badge.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr std::uint32_t key = 0xFF00FF;

std::uint32_t rgb(double red, double green, double blue) {
    const auto byte = [](double v) { return static_cast<std::uint32_t>(v < 0 ? 0 : v > 255 ? 255 : v); };
    return byte(red) << 16 | byte(green) << 8 | byte(blue);
}

// A toothed disc with a ring, a hole through the ring's middle, and a star; lit from the upper left.
std::uint32_t badge_at(double x, double y) {
    const double radius = std::hypot(x, y), angle = std::atan2(y, x);
    const double rim = 0.90 + 0.06 * std::cos(16 * angle);
    if (radius > rim || (radius > 0.66 && radius < 0.72)) return key;
    const double light = 0.8 - 0.25 * (x + y);
    if (radius > 0.72) return rgb(40 * light, 90 * light, 160 * light);
    const double spoke = std::fabs(std::fmod(angle + 0.7 * pi + 4 * pi, 2 * pi / 5) - pi / 5);
    const double star = 0.235 / std::cos(pi / 5 - spoke + pi / 5 * 0.55);
    if (radius < star) return rgb(190 * light, 45 * light, 35 * light);
    return rgb(225 * light, 225 * light, 230 * light);
}

std::uint32_t pattern_at(int x, int y) {
    const int wave = static_cast<int>(6 * std::sin(y * pi / 24));
    const bool dark = ((x + wave + 1000) / 16 + y / 16) % 2 != 0;
    return dark ? 0x3F6F5Fu : 0xD8E8C8u;
}

template <class Paint>
bool write_bmp(const char* path, int width, int height, Paint&& paint) {
    const int pitch = (width * 3 + 3) / 4 * 4;
    std::vector<std::uint8_t> bytes;
    const auto put = [&](std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i)
            bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    const auto size = static_cast<std::uint32_t>(pitch * height);
    put(0x4D42, 2);
    for (const std::uint32_t field :
         {54 + size, 0u, 54u, 40u, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
          1u | 24u << 16, 0u, size, 3780u, 3780u, 0u, 0u})
        put(field, 4);
    for (int y = height - 1; y >= 0; --y) {
        for (int x = 0; x < width; ++x)
            put(paint(x, y), 3);
        bytes.resize(bytes.size() + static_cast<std::size_t>(pitch - width * 3));
    }
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return false;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "badge BADGE.bmp PATTERN.bmp\n");
        return 64;
    }
    constexpr int size = 160;
    const auto badge = [](int x, int y) {
        return badge_at((x + 0.5) * 2 / size - 1, (y + 0.5) * 2 / size - 1);
    };
    const bool done = write_bmp(argv[1], size, size, badge) && write_bmp(argv[2], 240, 200, pattern_at);
    if (!done) std::fprintf(stderr, "badge: a file cannot be written\n");
    return done ? 0 : 3;
}
