#include "imaging/base64_kernels.h"

#include <immintrin.h>

// Both kernels work in the same steps. Each 32-bit lane gets the bytes 1 0 2 1 of its group; two masked
// multiplications move its four 6-bit values into its four bytes. A value's class (0 for a-z, 1 to 10 for a
// digit, 11 for '+', 12 for '/', 13 for A-Z) then selects the distance between the value and its character.

#define SPREAD_ORDER 10, 11, 9, 10, 7, 8, 6, 7, 4, 5, 3, 4, 1, 2, 0, 1
#define DISTANCES                                                                                            \
    0, 0, 'A', '/' - 63, '+' - 62, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,     \
        '0' - 52, '0' - 52, '0' - 52, 'a' - 26

__attribute__((target("ssse3"))) std::size_t base64_encode_ssse3(const std::uint8_t* from, std::size_t size,
                                                                 char* to) {
    const __m128i order = _mm_set_epi8(SPREAD_ORDER);
    const __m128i distances = _mm_set_epi8(DISTANCES);
    std::size_t done = 0;
    for (; size - done >= 16; done += 12, to += 16) {
        __m128i lanes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done));
        lanes = _mm_shuffle_epi8(lanes, order);
        const __m128i odd =
            _mm_mulhi_epu16(_mm_and_si128(lanes, _mm_set1_epi32(0x0FC0FC00)), _mm_set1_epi32(0x04000040));
        const __m128i even =
            _mm_mullo_epi16(_mm_and_si128(lanes, _mm_set1_epi32(0x003F03F0)), _mm_set1_epi32(0x01000010));
        const __m128i values = _mm_or_si128(odd, even);
        const __m128i capitals = _mm_cmpgt_epi8(_mm_set1_epi8(26), values);
        const __m128i classes = _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)),
                                             _mm_and_si128(capitals, _mm_set1_epi8(13)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                         _mm_add_epi8(values, _mm_shuffle_epi8(distances, classes)));
    }
    return done;
}

__attribute__((target("avx2"))) std::size_t base64_encode_avx2(const std::uint8_t* from, std::size_t size,
                                                               char* to) {
    const __m256i order = _mm256_set_epi8(SPREAD_ORDER, SPREAD_ORDER);
    const __m256i distances = _mm256_set_epi8(DISTANCES, DISTANCES);
    std::size_t done = 0;
    for (; size - done >= 28; done += 24, to += 32) {
        // Twelve bytes to each half: shuffles do not cross halves.
        __m256i lanes = _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + done + 12)), 1);
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
