#include "module/pixel_shuffle.h"

#include <algorithm>
#include <cstring>
#include <tmmintrin.h>

namespace {

using Bytes = std::uint8_t*;
using ConstBytes = const std::uint8_t*;

template <std::size_t N>
void gather_plain(const SampleOrder& order, ConstBytes pixels, Bytes samples, std::size_t count) {
    const auto place = order.place;
    for (; count > 0; --count, pixels += 4, samples += N)
        for (std::size_t k = 0; k < N; ++k)
            samples[k] = pixels[place[k]];
}

// The bytes of a pixel that get no sample stay, or become those of `others`.
template <std::size_t N, bool Stay>
void put_plain(const SampleOrder& order, Bytes pixels, ConstBytes samples, std::size_t count,
               std::uint32_t others) {
    const auto place = order.place;
    for (; count > 0; --count, pixels += 4, samples += N) {
        if (!Stay) std::memcpy(pixels, &others, 4);
        for (std::size_t k = 0; k < N; ++k)
            pixels[place[k]] = samples[k];
    }
}

// The kernels do 16 pixels at a time: four registers of pixels, as many registers of samples as a pixel has.
constexpr std::size_t group = 16;
#define WITH_SHUFFLE __attribute__((target("ssse3")))

WITH_SHUFFLE __m128i load(ConstBytes from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
WITH_SHUFFLE void store(Bytes to, __m128i value) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), value);
}

template <std::size_t N>
WITH_SHUFFLE void gather_group(ConstBytes pixels, Bytes samples, __m128i to_samples) {
    const __m128i a = _mm_shuffle_epi8(load(pixels), to_samples);
    const __m128i b = _mm_shuffle_epi8(load(pixels + 16), to_samples);
    const __m128i c = _mm_shuffle_epi8(load(pixels + 32), to_samples);
    const __m128i d = _mm_shuffle_epi8(load(pixels + 48), to_samples);
    if constexpr (N == 1) {
        store(samples, _mm_unpacklo_epi64(_mm_unpacklo_epi32(a, b), _mm_unpacklo_epi32(c, d)));
    } else if constexpr (N == 2) {
        store(samples, _mm_unpacklo_epi64(a, b));
        store(samples + 16, _mm_unpacklo_epi64(c, d));
    } else if constexpr (N == 3) {
        store(samples, _mm_or_si128(a, _mm_slli_si128(b, 12)));
        store(samples + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
        store(samples + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
    } else {
        store(samples, a);
        store(samples + 16, b);
        store(samples + 32, c);
        store(samples + 48, d);
    }
}

template <bool Stay>
WITH_SHUFFLE void put_4(Bytes pixels, __m128i samples, __m128i to_pixels, __m128i others) {
    const __m128i rest = Stay ? _mm_and_si128(load(pixels), others) : others;
    store(pixels, _mm_or_si128(_mm_shuffle_epi8(samples, to_pixels), rest));
}

template <std::size_t N, bool Stay>
WITH_SHUFFLE void put_group(Bytes pixels, ConstBytes samples, __m128i to_pixels, __m128i others) {
    __m128i fours[4];
    fours[0] = load(samples);
    if constexpr (N == 1) {
        fours[1] = _mm_srli_si128(fours[0], 4);
        fours[2] = _mm_srli_si128(fours[0], 8);
        fours[3] = _mm_srli_si128(fours[0], 12);
    } else if constexpr (N == 2) {
        fours[1] = _mm_srli_si128(fours[0], 8);
        fours[2] = load(samples + 16);
        fours[3] = _mm_srli_si128(fours[2], 8);
    } else if constexpr (N == 3) {
        const __m128i b = load(samples + 16), c = load(samples + 32);
        fours[1] = _mm_alignr_epi8(b, fours[0], 12);
        fours[2] = _mm_alignr_epi8(c, b, 8);
        fours[3] = _mm_srli_si128(c, 4);
    } else {
        for (std::size_t i = 1; i < 4; ++i)
            fours[i] = load(samples + 16 * i);
    }
    for (std::size_t i = 0; i < 4; ++i)
        put_4<Stay>(pixels + 16 * i, fours[i], to_pixels, others);
}

// Rows of at least one group; the last two groups overlap when the row is not made of whole ones.
template <std::size_t N>
WITH_SHUFFLE void gather_groups(const SampleOrder& order, ConstBytes pixels, Bytes samples,
                                std::size_t count) {
    const __m128i to_samples = load(order.to_samples);
    for (std::size_t next = 0; next < count; next += group) {
        const std::size_t first = std::min(next, count - group);
        gather_group<N>(pixels + first * 4, samples + first * N, to_samples);
    }
}

template <std::size_t N, bool Stay>
WITH_SHUFFLE void put_groups(const SampleOrder& order, Bytes pixels, ConstBytes samples, std::size_t count,
                             std::uint32_t others) {
    const __m128i to_pixels = load(order.to_pixels), all_others = _mm_set1_epi32(static_cast<int>(others));
    for (std::size_t next = 0; next < count; next += group) {
        const std::size_t first = std::min(next, count - group);
        put_group<N, Stay>(pixels + first * 4, samples + first * N, to_pixels, all_others);
    }
}

template <std::size_t N>
void gather(const SampleOrder& order, ConstBytes pixels, Bytes samples, std::size_t count, CpuLevel level) {
    if (level >= CpuLevel::ssse3 && count >= group)
        gather_groups<N>(order, pixels, samples, count);
    else
        gather_plain<N>(order, pixels, samples, count);
}

template <std::size_t N, bool Stay>
void put(const SampleOrder& order, Bytes pixels, ConstBytes samples, std::size_t count, std::uint32_t others,
         CpuLevel level) {
    if (level >= CpuLevel::ssse3 && count >= group)
        put_groups<N, Stay>(order, pixels, samples, count, others);
    else
        put_plain<N, Stay>(order, pixels, samples, count, others);
}

template <bool Stay>
void put(const SampleOrder& order, void* pixels, const void* samples, std::size_t count, std::uint32_t others,
         CpuLevel level) {
    constexpr decltype(&put<1, Stay>) kernels[] = {put<1, Stay>, put<2, Stay>, put<3, Stay>, put<4, Stay>};
    kernels[order.samples - 1](order, static_cast<Bytes>(pixels), static_cast<ConstBytes>(samples), count,
                               others, level);
}

} // namespace

void gather_samples(const SampleOrder& order, const void* pixels, void* samples, std::size_t count,
                    CpuLevel level) {
    constexpr decltype(&gather<1>) kernels[] = {gather<1>, gather<2>, gather<3>, gather<4>};
    kernels[order.samples - 1](order, static_cast<ConstBytes>(pixels), static_cast<Bytes>(samples), count,
                               level);
}

void write_samples(const SampleOrder& order, void* pixels, const void* samples, std::size_t count,
                   CpuLevel level) {
    put<true>(order, pixels, samples, count, order.others, level);
}

void widen_samples(const SampleOrder& order, void* pixels, const void* samples, std::size_t count,
                   std::uint8_t other, CpuLevel level) {
    put<false>(order, pixels, samples, count, order.others & (other * 0x01010101u), level);
}
