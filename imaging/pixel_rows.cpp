#include "imaging/pixel_rows.h"

#include "module/pixel_shuffle.h"

#include <cstring>
#include <emmintrin.h>

namespace {

constexpr std::uint32_t colour_mask = 0x00FFFFFF;

std::uint32_t load_32(const std::uint8_t* from) {
    std::uint32_t value;
    std::memcpy(&value, from, 4);
    return value;
}

void store_32(std::uint8_t* to, std::uint32_t value) {
    std::memcpy(to, &value, 4);
}

__m128i load_128(const std::uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

void store_128(std::uint8_t* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

constexpr std::uint8_t colour_places[] = {0, 1, 2};
constexpr SampleOrder colours(colour_places);

} // namespace

void widen_24(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth) {
    widen_samples(colours, to, from, pixels, fourth);
}

void narrow_32(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    gather_samples(colours, from, to, pixels);
}

void widen_8(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels,
             const std::uint8_t palette[1024]) {
    for (std::size_t i = 0; i < pixels; ++i)
        store_32(to + 4 * i, load_32(palette + std::size_t{4} * from[i]) & colour_mask);
}

void widen_555(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint32_t value = from[2 * i] | std::uint32_t{from[2 * i + 1]} << 8;
        store_32(to + 4 * i, (value & 0x1F) | (value & 0x3E0) << 3 | (value & 0x7C00) << 6);
    }
}

void set_fourth(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth) {
    const std::uint32_t fourths = std::uint32_t{fourth} << 24;
    for (std::size_t i = 0; i < pixels; ++i)
        store_32(to + 4 * i, (load_32(from + 4 * i) & colour_mask) | fourths);
}

void key_white(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth) {
    const std::uint32_t fourths = std::uint32_t{fourth} << 24;
    const __m128i masks = _mm_set1_epi32(colour_mask), fourths_4 = _mm_set1_epi32(static_cast<int>(fourths));
    for (; pixels >= 16; pixels -= 16, from += 64, to += 64)
        for (int i = 0; i < 64; i += 16) {
            const __m128i colours = _mm_and_si128(load_128(from + i), masks);
            const __m128i white = _mm_cmpeq_epi32(colours, masks);
            store_128(to + i, _mm_or_si128(colours, _mm_andnot_si128(white, fourths_4)));
        }
    for (; pixels > 0; --pixels, from += 4, to += 4) {
        const std::uint32_t colour = load_32(from) & colour_mask;
        store_32(to, colour | (colour == colour_mask ? 0 : fourths));
    }
}

void widen_24_keyed(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth) {
    constexpr std::size_t piece = 256; // stays in the nearest cache from one pass to the other
    for (; pixels > piece; pixels -= piece, from += piece * 3, to += piece * 4) {
        widen_24(to, from, piece, fourth);
        key_white(to, to, piece, fourth);
    }
    widen_24(to, from, pixels, fourth);
    key_white(to, to, pixels, fourth);
}
