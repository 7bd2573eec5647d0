#include "tools/bvutil/material_preview.h"

#include "bvutil/gdiplus_services.h"
#include "bvutil/mat_file.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/drawing_surface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

constexpr int size = 160, samples = 3, square = 20; // pixels, samples of a pixel in each direction, pixels
constexpr double radius = 0.9;                      // of half the picture

using Colour = std::array<double, 3>; // red, green, blue, 0 to 1

double clamped(double value) {
    return value > 0 ? std::min(value, 1.0) : 0; // what is not a number is 0
}

Colour ground_at(int x, int y) {
    const double grey = (x / square + y / square) % 2 ? 0.78 : 0.92;
    return {grey, grey, grey};
}

// Light that a point with this normal sends to the viewer, who looks along -z. Reflection after B. T. Phong,
// "Illumination for Computer Generated Pictures", Communications of the ACM 18(6), 1975.
Colour lit(const matTyp& material, const std::array<double, 3>& normal) {
    constexpr std::array<double, 3> light = {-0.48, 0.60, 0.64}; // of length 1
    const double facing = normal[0] * light[0] + normal[1] * light[1] + normal[2] * light[2];
    const double mirrored = 2 * facing * normal[2] - light[2];
    const double matt = double{material.ambient} + double{material.diffuse} * std::max(facing, 0.0);
    const double shine = facing > 0 && mirrored > 0
                             ? double{material.specular} * std::pow(mirrored, double{material.exponent})
                             : 0;
    Colour colour;
    for (std::size_t i = 0; i < 3; ++i)
        colour[i] =
            clamped(matt * double{material.diffuseColor[i]} + shine * double{material.specularColor[i]});
    return colour;
}

// The colour at a point of the picture, -1 to 1 from its middle to the right and up.
Colour sample_at(const matTyp& material, double x, double y, const Colour& ground) {
    x /= radius;
    y /= radius;
    const double depth = 1 - x * x - y * y;
    if (depth < 0) return ground;
    const Colour colour = lit(material, {x, y, std::sqrt(depth)});
    const double alpha = clamped(double{material.alpha});
    Colour seen;
    for (std::size_t i = 0; i < 3; ++i)
        seen[i] = alpha * colour[i] + (1 - alpha) * ground[i];
    return seen;
}

Colour pixel_at(const matTyp& material, int x, int y) {
    const auto place = [](int pixel, int sample) {
        return 2 * (pixel + (sample + 0.5) / samples) / size - 1;
    };
    const Colour ground = ground_at(x, y);
    Colour sum = {};
    for (int i = 0; i < samples * samples; ++i) {
        const Colour part = sample_at(material, place(x, i % samples), -place(y, i / samples), ground);
        for (std::size_t c = 0; c < 3; ++c)
            sum[c] += part[c] / (samples * samples);
    }
    return sum;
}

// Rows from the top, pixels of blue, green and red.
std::vector<BYTE> sphere_of(const matTyp& material) {
    std::vector<BYTE> rows;
    rows.reserve(size * size * 3);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const auto [red, green, blue] = pixel_at(material, x, y);
            for (const double part : {blue, green, red})
                rows.push_back(static_cast<BYTE>(part * 255 + 0.5));
        }
    }
    return rows;
}

} // namespace

void save_material_preview(const matTyp& material, const std::string& path) {
    const int format = format_code("", path);
    const GdiPlusSession session;
    std::vector<BYTE> rows = sphere_of(material);
    DrawingSurface surface(size, size);
    BvUtilImage image = nullptr;
    const bool drawn = gdiPlusGetBitmap24BPPRGB(size, size, size * 3, 0, rows.data(), &image) &&
                       gdiPlusDrawImage(image, surface.dc(), 0, 0);
    gdiPlusFreeImage(image);
    if (!drawn) throw CommandFailed(exit_failed, "the picture cannot be drawn");
    save_bitmap(surface.take_bitmap(), path, format);
}
