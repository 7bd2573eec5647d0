#include "calcgeom/boundary_kernels.h"

#include <cstdint>
#include <immintrin.h>

namespace {

constexpr unsigned lanes = 4; // 64-bit ones: an edge each

// The lanes set in a mask, brought together, as 32-bit lanes.
struct alignas(32) Gathering {
    std::uint32_t from[2 * lanes];
    std::uint32_t count;
};
struct Gatherings {
    Gathering of_mask[1 << lanes];
};
constexpr Gatherings gatherings = [] {
    Gatherings table{};
    for (unsigned mask = 0; mask < 1 << lanes; ++mask)
        for (unsigned lane = 0; lane < lanes; ++lane)
            if (mask >> lane & 1) {
                Gathering& gathering = table.of_mask[mask];
                std::uint32_t* const to = gathering.from + 2 * gathering.count++;
                to[0] = 2 * lane;
                to[1] = 2 * lane + 1;
            }
    return table;
}();

} // namespace

// Every edge is compared with every edge, itself among them.
__attribute__((target("avx2"))) std::size_t boundary_avx2(const Corners* triangles, std::size_t count,
                                                          Edge* boundary) {
    constexpr std::size_t registers = 3; // of edges at a time
    alignas(32) Edge edges[3 * most_for_boundary_avx2 + registers * lanes];

    // The triangle's edges (v1, v2), (v2, v3) and (v1, v3), each with the smaller vertex first.
    const __m256i corners = _mm256_setr_epi32(0, 1, 1, 2, 0, 2, 0, 2);
    for (std::size_t i = 0; i < count; ++i) {
        const __m128i triangle = _mm_loadu_si128(reinterpret_cast<const __m128i*>(triangles + i));
        const __m256i e = _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(triangle), corners);
        const __m256i reversed = _mm256_shuffle_epi32(e, _MM_SHUFFLE(2, 3, 0, 1));
        _mm256_storeu_si256(
            reinterpret_cast<__m256i*>(edges + 3 * i),
            _mm256_blend_epi32(_mm256_min_epu32(e, reversed), _mm256_max_epu32(e, reversed), 0xAA));
    }

    // Behind them what is equal to none, as no edge has the same vertex at both ends.
    const std::size_t size = 3 * count;
    for (std::size_t r = 0; r < registers; ++r)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(edges + size + r * lanes), _mm256_setzero_si256());
    std::size_t kept = 0;
    __m256i shared_by_more = _mm256_setzero_si256();
    for (std::size_t i = 0; i < size; i += registers * lanes) {
        __m256i some[registers], equal[registers];
        for (std::size_t r = 0; r < registers; ++r) {
            some[r] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(edges + i + r * lanes));
            equal[r] = _mm256_setzero_si256();
        }
        for (std::size_t j = 0; j < size; ++j) {
            const __m256i edge =
                _mm256_broadcastq_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(edges + j)));
            for (std::size_t r = 0; r < registers; ++r)
                equal[r] = _mm256_add_epi64(equal[r], _mm256_cmpeq_epi64(some[r], edge));
        }
        for (std::size_t r = 0; r < registers; ++r) {
            const __m256i single = _mm256_cmpeq_epi64(equal[r], _mm256_set1_epi64x(-1));
            shared_by_more =
                _mm256_or_si256(shared_by_more, _mm256_cmpgt_epi64(_mm256_set1_epi64x(-2), equal[r]));
            const auto mask = static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(single)));
            const Gathering& gathering = gatherings.of_mask[mask];
            const __m256i order = _mm256_load_si256(reinterpret_cast<const __m256i*>(gathering.from));
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(boundary + kept),
                                _mm256_permutevar8x32_epi32(some[r], order));
            kept += gathering.count;
        }
    }
    return _mm256_testz_si256(shared_by_more, shared_by_more) ? kept : 0;
}
