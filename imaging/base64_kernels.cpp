#include "imaging/base64_kernels.h"

#include <immintrin.h>

namespace {

// All kernels work in the same steps. Each 32-bit lane gets the bytes 1 0 2 1 of its group; two masked
// multiplications move its four 6-bit values into its four bytes; each value becomes its character.

#define SPREAD_ORDER 10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1
// The distance from value to character by class: 0 for a-z, 1 to 10 for a digit, 11 for '+', 12 for '/', 13
// for A-Z.
#define DISTANCES                                                                                            \
    0, 0, 'A', '/' - 63, '+' - 62, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,     \
        '0' - 52, '0' - 52, '0' - 52, 'a' - 26

__m128i load(const std::uint8_t* from) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}
void store(char* to, __m128i characters) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), characters);
}

__m128i values_of(__m128i lanes) {
    const __m128i odd =
        _mm_mulhi_epu16(_mm_and_si128(lanes, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
    const __m128i even =
        _mm_mullo_epi16(_mm_and_si128(lanes, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
    return _mm_or_si128(odd, even);
}

// What the byte shuffle by SPREAD_ORDER does.
__m128i spread_sse2(__m128i bytes) {
    const __m128i front = _mm_unpacklo_epi32(bytes, _mm_srli_si128(bytes, 3));
    const __m128i back = _mm_unpacklo_epi32(_mm_srli_si128(bytes, 6), _mm_srli_si128(bytes, 9));
    const __m128i groups = _mm_unpacklo_epi64(front, back); // 0 1 2 in each lane
    const __m128i low = _mm_set1_epi32(0xFFFF);
    const __m128i words =
        _mm_or_si128(_mm_and_si128(groups, low), _mm_andnot_si128(low, _mm_slli_epi32(groups, 8)));
    return _mm_or_si128(_mm_slli_epi16(words, 8), _mm_srli_epi16(words, 8));
}

// Adds up the steps between the ranges of the alphabet that begin at or below a value.
__m128i characters_sse2(__m128i values) {
    const auto step = [values](char last_before, char distance) {
        return _mm_and_si128(_mm_cmpgt_epi8(values, _mm_set1_epi8(last_before)), _mm_set1_epi8(distance));
    };
    __m128i distances = _mm_add_epi8(_mm_set1_epi8('A'), step(25, 'a' - 26 - 'A'));
    distances = _mm_add_epi8(distances, step(51, ('0' - 52) - ('a' - 26)));
    distances = _mm_add_epi8(distances, step(61, ('+' - 62) - ('0' - 52)));
    distances = _mm_add_epi8(distances, step(62, ('/' - 63) - ('+' - 62)));
    return _mm_add_epi8(values, distances);
}

__attribute__((target("ssse3"))) __m128i characters_ssse3(__m128i values, __m128i distances) {
    const __m128i capitals = _mm_cmpgt_epi8(_mm_set1_epi8(26), values);
    const __m128i classes =
        _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)), _mm_and_si128(capitals, _mm_set1_epi8(13)));
    return _mm_add_epi8(values, _mm_shuffle_epi8(distances, classes));
}

} // namespace

std::size_t base64_encode_sse2(const std::uint8_t* from, std::size_t size, char* to) {
    std::size_t done = 0;
    for (; size - done >= 16; done += 12, to += 16)
        store(to, characters_sse2(values_of(spread_sse2(load(from + done)))));
    return done;
}

__attribute__((target("ssse3"))) std::size_t base64_encode_ssse3(const std::uint8_t* from, std::size_t size,
                                                                 char* to) {
    const __m128i order = _mm_set_epi8(SPREAD_ORDER);
    const __m128i distances = _mm_set_epi8(DISTANCES);
    std::size_t done = 0;
    for (; size - done >= 16; done += 12, to += 16)
        store(to, characters_ssse3(values_of(_mm_shuffle_epi8(load(from + done), order)), distances));
    return done;
}

__attribute__((target("avx2"))) std::size_t base64_encode_avx2(const std::uint8_t* from, std::size_t size,
                                                               char* to) {
    const __m256i order = _mm256_set_epi8(SPREAD_ORDER, SPREAD_ORDER);
    const __m256i distances = _mm256_set_epi8(DISTANCES, DISTANCES);
    std::size_t done = 0;
    for (; size - done >= 28; done += 24, to += 32) {
        // Twelve bytes to each half: shuffles do not cross halves.
        __m256i lanes =
            _mm256_inserti128_si256(_mm256_castsi128_si256(load(from + done)), load(from + done + 12), 1);
        lanes = _mm256_shuffle_epi8(lanes, order);
        const __m256i odd = _mm256_mulhi_epu16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x0FC0FC00)),
                                               _mm256_set1_epi32(0x04000040));
        const __m256i even = _mm256_mullo_epi16(_mm256_and_si256(lanes, _mm256_set1_epi32(0x003F03F0)),
                                                _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(odd, even);
        const __m256i capitals = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        const __m256i classes = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                                _mm256_and_si256(capitals, _mm256_set1_epi8(13)));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                            _mm256_add_epi8(values, _mm256_shuffle_epi8(distances, classes)));
    }
    return done;
}
