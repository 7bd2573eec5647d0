// Paints a landscape (evening sky, mountain ranges in the haze, a lake with their reflection, a meadow) and
// writes it as a 24-bit BMP: landscape FILE.bmp [WIDTH HEIGHT]
//
// Everything comes from value noise (sums of smoothed lattice noise, octave by octave) with fixed seeds, so
// that each run gives the same picture. It is a little flat and hazy on purpose: there is something to do for
// filters.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct Colour {
    double r, g, b;
};

Colour mix(const Colour& a, const Colour& b, double t) {
    t = std::clamp(t, 0.0, 1.0);
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

// A number from 0 to 1 for each point of the integer lattice.
double lattice(int x, int y, unsigned seed) {
    unsigned h =
        static_cast<unsigned>(x) * 374761393u + static_cast<unsigned>(y) * 668265263u + seed * 2246822519u;
    h = (h ^ h >> 13) * 1274126177u;
    return static_cast<double>((h ^ h >> 16) & 0xFFFF) / 65535.0;
}

double smooth(double t) {
    return t * t * (3 - 2 * t);
}

double noise(double x, double y, unsigned seed) {
    const double left = std::floor(x), top = std::floor(y);
    const int ix = static_cast<int>(left), iy = static_cast<int>(top);
    const double tx = smooth(x - left), ty = smooth(y - top);
    const double above = std::lerp(lattice(ix, iy, seed), lattice(ix + 1, iy, seed), tx);
    const double below = std::lerp(lattice(ix, iy + 1, seed), lattice(ix + 1, iy + 1, seed), tx);
    return std::lerp(above, below, ty);
}

// About 0 to 1, rougher with more octaves.
double fractal_noise(double x, double y, int octaves, unsigned seed) {
    double sum = 0, weight = 0.5;
    for (int i = 0; i < octaves; ++i, weight /= 2, x *= 2, y *= 2)
        sum += weight * noise(x, y, seed + static_cast<unsigned>(i));
    return sum;
}

struct Range {
    double base, height, roughness; // of the crest; fractions of the picture's height, hills across the width
    Colour rock;
    double haze;
    unsigned seed;
};

constexpr double horizon = 0.62;
constexpr double shore = 0.86;
constexpr Colour haze_colour{0.80, 0.74, 0.72};
const Range ranges[] = {
    {0.40, 0.30, 3, {0.38, 0.42, 0.52}, 0.62, 11},
    {0.50, 0.24, 4, {0.28, 0.34, 0.38}, 0.38, 23},
    {0.60, 0.16, 6, {0.16, 0.24, 0.20}, 0.16, 37},
};

double crest(const Range& range, double x) {
    return range.base - range.height * (fractal_noise(x * range.roughness, 0.5, 7, range.seed) - 0.35);
}

Colour sky(double x, double y) {
    Colour colour = mix({0.42, 0.54, 0.70}, {0.90, 0.76, 0.62}, y / horizon);
    const double cloud = fractal_noise(x * 4, y * 14, 6, 71) - 0.48;
    colour = mix(colour, {0.93, 0.86, 0.82}, cloud * 3);
    const double from_sun = std::hypot((x - 0.7) * 4 / 3, y - 0.3);
    colour = mix(colour, {1.0, 0.93, 0.78}, std::exp(-from_sun * 9));
    return from_sun < 0.035 ? Colour{1.0, 0.97, 0.88} : colour;
}

// Slopes lie in the light on the side of the sun; snow lies high up.
Colour rock(const Range& range, double x, double y, double top) {
    const double grain = fractal_noise(x * 60, y * 60, 5, range.seed + 5);
    const double slope = (crest(range, x + 0.004) - crest(range, x - 0.004)) * 20;
    const double light = 0.75 + 0.5 * (grain - 0.5) - 0.35 * std::clamp(slope, -1.0, 1.0);
    Colour colour{range.rock.r * light, range.rock.g * light, range.rock.b * light};
    const double snow_line = 0.34 + 0.05 * fractal_noise(x * 25, y * 10, 4, 91);
    if (y < snow_line && y - top < 0.12)
        colour = mix(colour, {0.92, 0.92, 0.95}, (snow_line - y) * 30 * light);
    return mix(colour, haze_colour, range.haze + 0.25 * std::max(0.0, y - top));
}

Colour land(double x, double y) {
    Colour colour = sky(x, y);
    for (const Range& range : ranges) {
        const double top = crest(range, x);
        if (y > top) colour = rock(range, x, y, top);
    }
    return colour;
}

Colour lake(double x, double y) {
    const double depth = (y - horizon) / (shore - horizon);
    const double wave = (fractal_noise(x * 30, y * 160, 4, 131) - 0.48) * (0.004 + 0.03 * depth);
    const Colour mirrored = land(x + wave, std::max(0.0, 2 * horizon - y + wave * 2));
    return mix(mirrored, {0.22, 0.32, 0.38}, 0.25 + 0.35 * depth);
}

Colour meadow(double x, double y) {
    const double blades = fractal_noise(x * 240, y * 40, 4, 171);
    const double patches = fractal_noise(x * 8, y * 20, 4, 191);
    Colour colour = mix({0.20, 0.26, 0.12}, {0.46, 0.47, 0.24}, blades * 0.9 + patches * 0.6 - 0.25);
    if (lattice(static_cast<int>(x * 640), static_cast<int>(y * 480), 201) > 0.985)
        colour = mix(colour, patches > 0.5 ? Colour{0.90, 0.84, 0.42} : Colour{0.82, 0.44, 0.40}, 0.8);
    return colour;
}

Colour scene(double x, double y) {
    const double bank = shore + 0.03 * (fractal_noise(x * 6, 3.5, 5, 151) - 0.5) + 0.02 * std::sin(x * 5);
    if (y > bank) return meadow(x, y);
    return y > horizon ? lake(x, y) : land(x, y);
}

// Dull film: no true black, no true white.
std::uint8_t to_byte(double value) {
    return static_cast<std::uint8_t>(std::lround(40 + 170 * std::clamp(value, 0.0, 1.0)));
}

void append(std::vector<std::uint8_t>& bytes, std::uint32_t value, int width) {
    for (int i = 0; i < width; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> 8 * i));
}

std::vector<std::uint8_t> bmp_headers(int width, int height, std::uint32_t pixel_bytes) {
    std::vector<std::uint8_t> bytes{'B', 'M'};
    for (const std::uint32_t field : {54 + pixel_bytes, 0u, 54u, 40u, static_cast<std::uint32_t>(width),
                                      static_cast<std::uint32_t>(height)})
        append(bytes, field, 4);
    append(bytes, 1, 2);
    append(bytes, 24, 2);
    for (const std::uint32_t field : {0u, pixel_bytes, 3780u, 3780u, 0u, 0u})
        append(bytes, field, 4);
    return bytes;
}

std::vector<std::uint8_t> paint(int width, int height) {
    const std::size_t row_bytes = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    std::vector<std::uint8_t> bytes =
        bmp_headers(width, height, static_cast<std::uint32_t>(row_bytes * static_cast<std::size_t>(height)));
    for (int row = height - 1; row >= 0; --row) {
        const std::size_t start = bytes.size();
        for (int column = 0; column < width; ++column) {
            const Colour colour = scene((column + 0.5) / width, (row + 0.5) / height);
            for (const double part : {colour.b, colour.g, colour.r})
                bytes.push_back(to_byte(part));
        }
        bytes.resize(start + row_bytes);
    }
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    const int width = argc > 3 ? std::atoi(argv[2]) : 640;
    const int height = argc > 3 ? std::atoi(argv[3]) : 480;
    if (argc < 2 || width < 1 || height < 1 || width > 30000 || height > 30000) {
        std::fprintf(stderr, "usage: landscape FILE.bmp [WIDTH HEIGHT]\n");
        return 64;
    }
    const std::vector<std::uint8_t> bytes = paint(width, height);
    std::FILE* file = std::fopen(argv[1], "wb");
    const bool written = file && std::fwrite(bytes.data(), bytes.size(), 1, file) == 1;
    if (!file || std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "landscape: cannot write %s\n", argv[1]);
        return 3;
    }
    return 0;
}
