#include "filterhost/pixel_rows.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <tmmintrin.h>

static_assert(std::endian::native == std::endian::little);

namespace {

std::uint32_t load(const std::byte* from) {
    std::uint32_t word;
    std::memcpy(&word, from, sizeof word);
    return word;
}
void store(std::byte* to, std::uint32_t word) {
    std::memcpy(to, &word, sizeof word);
}

void gather_pixel(const std::byte* pixel, std::byte* sample) {
    sample[0] = pixel[2];
    sample[1] = pixel[1];
    sample[2] = pixel[0];
}
void write_back_pixel(std::byte* pixel, const std::byte* sample) {
    pixel[0] = sample[2];
    pixel[1] = sample[1];
    pixel[2] = sample[0];
}

// The baseline has no byte shuffle (SSSE3); processors without one take the plain loops. Sixteen pixels are
// four registers of pixels and three of samples.
constexpr std::size_t group = 16;
const bool has_shuffle = __builtin_cpu_supports("ssse3") != 0;
#define WITH_SHUFFLE __attribute__((target("ssse3")))

WITH_SHUFFLE __m128i load_16(const std::byte* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
WITH_SHUFFLE void store_16(std::byte* to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

// Both give the number of pixels done, a multiple of the group.
WITH_SHUFFLE std::size_t gather_rgb_groups(const std::byte* pixels, std::byte* samples, std::size_t count) {
    const __m128i to_samples = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    std::size_t done = 0;
    for (; done + group <= count; done += group) {
        const std::byte* from = pixels + 4 * done;
        std::byte* to = samples + 3 * done;
        const __m128i a = _mm_shuffle_epi8(load_16(from), to_samples);
        const __m128i b = _mm_shuffle_epi8(load_16(from + 16), to_samples);
        const __m128i c = _mm_shuffle_epi8(load_16(from + 32), to_samples);
        const __m128i d = _mm_shuffle_epi8(load_16(from + 48), to_samples);
        store_16(to, _mm_or_si128(a, _mm_slli_si128(b, 12)));
        store_16(to + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        store_16(to + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    }
    return done;
}

WITH_SHUFFLE void write_back_4(std::byte* to, __m128i samples) {
    const __m128i to_pixels = _mm_setr_epi8(2, 1, 0, -1, 5, 4, 3, -1, 8, 7, 6, -1, 11, 10, 9, -1);
    const __m128i fourth_bytes = _mm_and_si128(load_16(to), _mm_set1_epi32(static_cast<int>(0xFF000000)));
    store_16(to, _mm_or_si128(_mm_shuffle_epi8(samples, to_pixels), fourth_bytes));
}

WITH_SHUFFLE std::size_t write_back_rgb_groups(std::byte* pixels, const std::byte* samples,
                                               std::size_t count) {
    std::size_t done = 0;
    for (; done + group <= count; done += group) {
        const std::byte* from = samples + 3 * done;
        std::byte* to = pixels + 4 * done;
        const __m128i a = load_16(from);
        const __m128i b = load_16(from + 16);
        const __m128i c = load_16(from + 32);
        write_back_4(to, a);
        write_back_4(to + 16, _mm_alignr_epi8(b, a, 12));
        write_back_4(to + 32, _mm_alignr_epi8(c, b, 8));
        write_back_4(to + 48, _mm_srli_si128(c, 4));
    }
    return done;
}

} // namespace

void gather_rgb(const std::byte* pixels, std::byte* samples, std::size_t count) {
    for (std::size_t i = has_shuffle ? gather_rgb_groups(pixels, samples, count) : 0; i < count; ++i)
        gather_pixel(pixels + 4 * i, samples + 3 * i);
}

void write_back_rgb(std::byte* pixels, const std::byte* samples, std::size_t count) {
    for (std::size_t i = has_shuffle ? write_back_rgb_groups(pixels, samples, count) : 0; i < count; ++i)
        write_back_pixel(pixels + 4 * i, samples + 3 * i);
}

void exchange_red_and_blue(const std::byte* from, std::byte* to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = load(from + 4 * i);
        const std::uint32_t ends = pixel & 0x00FF00FF;
        store(to + 4 * i, (pixel & 0xFF00FF00) | ends << 16 | ends >> 16);
    }
}
