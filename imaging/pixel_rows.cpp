#include "imaging/pixel_rows.h"

#include <cstring>
#include <emmintrin.h>
#include <tmmintrin.h>

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

// Both kernels do 16 pixels a step and return how many they did; the rest, and what a load or store of whole
// words would do beyond an end, is left to the caller.
__attribute__((target("ssse3"))) std::size_t widen_24_ssse3(std::uint8_t* to, const std::uint8_t* from,
                                                            std::size_t pixels, std::uint32_t fourth) {
    const __m128i spread = _mm_set_epi8(-1, 11, 10, 9, -1, 8, 7, 6, -1, 5, 4, 3, -1, 2, 1, 0);
    const __m128i fourths = _mm_set1_epi32(static_cast<int>(fourth));
    std::size_t done = 0;
    for (; pixels - done >= 16; done += 16, from += 48, to += 64) {
        const __m128i a = load_128(from), b = load_128(from + 16), c = load_128(from + 32);
        const __m128i groups[4] = {a, _mm_alignr_epi8(b, a, 12), _mm_alignr_epi8(c, b, 8),
                                   _mm_srli_si128(c, 4)};
        for (int i = 0; i < 4; ++i)
            store_128(to + 16 * i, _mm_or_si128(_mm_shuffle_epi8(groups[i], spread), fourths));
    }
    return done;
}

__attribute__((target("ssse3"))) std::size_t narrow_32_ssse3(std::uint8_t* to, const std::uint8_t* from,
                                                             std::size_t pixels) {
    const __m128i pack = _mm_set_epi8(-1, -1, -1, -1, 14, 13, 12, 10, 9, 8, 6, 5, 4, 2, 1, 0);
    std::size_t done = 0;
    for (; pixels - done >= 16; done += 16, from += 64, to += 48) {
        const __m128i a = _mm_shuffle_epi8(load_128(from), pack);
        const __m128i b = _mm_shuffle_epi8(load_128(from + 16), pack);
        const __m128i c = _mm_shuffle_epi8(load_128(from + 32), pack);
        const __m128i d = _mm_shuffle_epi8(load_128(from + 48), pack);
        store_128(to, _mm_or_si128(a, _mm_slli_si128(b, 12)));
        store_128(to + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        store_128(to + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    }
    return done;
}

} // namespace

void widen_24(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, std::uint8_t fourth,
              CpuLevel level) {
    const std::uint32_t fourths = std::uint32_t{fourth} << 24;
    const std::size_t done = level >= CpuLevel::ssse3 ? widen_24_ssse3(to, from, pixels, fourths) : 0;
    pixels -= done;
    from += done * 3;
    to += done * 4;
    for (; pixels >= 4; pixels -= 4, from += 12, to += 16) {
        const std::uint32_t a = load_32(from), b = load_32(from + 4), c = load_32(from + 8);
        store_32(to, (a & colour_mask) | fourths);
        store_32(to + 4, (((a >> 24) | (b << 8)) & colour_mask) | fourths);
        store_32(to + 8, (((b >> 16) | (c << 16)) & colour_mask) | fourths);
        store_32(to + 12, (c >> 8) | fourths);
    }
    for (; pixels > 0; --pixels, from += 3, to += 4) {
        std::memcpy(to, from, 3);
        to[3] = fourth;
    }
}

void narrow_32(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels, CpuLevel level) {
    const std::size_t done = level >= CpuLevel::ssse3 ? narrow_32_ssse3(to, from, pixels) : 0;
    pixels -= done;
    from += done * 4;
    to += done * 3;
    for (; pixels >= 4; pixels -= 4, from += 16, to += 12) {
        const std::uint32_t a = load_32(from), b = load_32(from + 4), c = load_32(from + 8),
                            d = load_32(from + 12);
        store_32(to, (a & colour_mask) | (b << 24));
        store_32(to + 4, ((b & colour_mask) >> 8) | (c << 16));
        store_32(to + 8, ((c & colour_mask) >> 16) | (d << 8));
    }
    for (; pixels > 0; --pixels, from += 4, to += 3)
        std::memcpy(to, from, 3);
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
    for (; pixels >= 4; pixels -= 4, from += 16, to += 16) {
        const __m128i colours = _mm_and_si128(load_128(from), masks);
        const __m128i white = _mm_cmpeq_epi32(colours, masks);
        store_128(to, _mm_or_si128(colours, _mm_andnot_si128(white, fourths_4)));
    }
    for (; pixels > 0; --pixels, from += 4, to += 4) {
        const std::uint32_t colour = load_32(from) & colour_mask;
        store_32(to, colour | (colour == colour_mask ? 0 : fourths));
    }
}
