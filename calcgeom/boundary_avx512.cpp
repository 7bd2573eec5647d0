#include "calcgeom/boundary_kernels.h"

#include <bit>
#include <cstdint>
#include <immintrin.h>

namespace {

constexpr std::size_t lanes = 8;        // 64-bit ones: an edge each
constexpr __mmask16 all_words = 0xFFFF; // of masked forms, as GCC warns of the plain ones

// Of eight triangles in a row, four words each, the words with the vertices of their edges (v1, v2), (v2, v3)
// and (v1, v3).
constexpr std::size_t group = 8, registers = 3 * group / lanes;
struct alignas(64) EdgeWords {
    std::uint32_t of[registers][2 * lanes];
};
constexpr EdgeWords edge_words = [] {
    constexpr std::uint32_t ends[3][2] = {{0, 1}, {1, 2}, {0, 2}};
    EdgeWords words{};
    for (std::uint32_t edge = 0; edge < registers * lanes; ++edge)
        for (std::uint32_t end = 0; end < 2; ++end)
            words.of[edge / lanes][edge % lanes * 2 + end] = edge / 3 * 4 + ends[edge % 3][end];
    return words;
}();

__attribute__((AVX512_TARGET, always_inline)) inline __m512i four_triangles(const CircleNode* nodes,
                                                                            const std::uint32_t* hits) {
    const auto* const of_0 = &nodes[hits[0] / node_circles].corners[hits[0] % node_circles];
    const auto* const of_1 = &nodes[hits[1] / node_circles].corners[hits[1] % node_circles];
    const auto* const of_2 = &nodes[hits[2] / node_circles].corners[hits[2] % node_circles];
    const auto* const of_3 = &nodes[hits[3] / node_circles].corners[hits[3] % node_circles];
    __m512i four = _mm512_zextsi128_si512(_mm_load_si128(reinterpret_cast<const __m128i*>(of_0)));
    four = _mm512_inserti32x4(four, _mm_load_si128(reinterpret_cast<const __m128i*>(of_1)), 1);
    four = _mm512_inserti32x4(four, _mm_load_si128(reinterpret_cast<const __m128i*>(of_2)), 2);
    return _mm512_inserti32x4(four, _mm_load_si128(reinterpret_cast<const __m128i*>(of_3)), 3);
}

} // namespace

// Every edge is compared with every edge, itself among them.
__attribute__((AVX512_TARGET)) std::size_t boundary_avx512(const Hits& hits, float x, Edge* boundary) {
    const std::size_t count = hits.count, size = 3 * count;
    alignas(64) Edge edges[3 * most_for_boundary_avx512];

    const __m512 all_x = _mm512_set1_ps(x);
    for (std::size_t first = 0; first < count; first += group) {
        const __m512i low = four_triangles(hits.nodes, hits.slots + first);
        const __m512i high = four_triangles(hits.nodes, hits.slots + first + 4);
        // The right edge is the last word of each triangle.
        const unsigned ended = (_mm512_cmp_ps_mask(all_x, _mm512_castsi512_ps(low), _CMP_GT_OQ) & 0x8888u) |
                               (_mm512_cmp_ps_mask(all_x, _mm512_castsi512_ps(high), _CMP_GT_OQ) & 0x8888u)
                                   << 16;
        const std::size_t of_group = count - first < group ? count - first : group;
        if (ended << (32 - 4 * of_group)) [[unlikely]]
            return 0;
        for (std::size_t r = 0; r < registers; ++r) {
            const __m512i e = _mm512_permutex2var_epi32(low, _mm512_load_si512(edge_words.of[r]), high);
            const __m512i reversed = _mm512_maskz_shuffle_epi32(all_words, e, _MM_PERM_CDAB);
            const __m512i smaller = _mm512_maskz_min_epu32(all_words, e, reversed);
            _mm512_store_si512(edges + 3 * first + r * lanes,
                               _mm512_mask_max_epu32(smaller, 0xAAAA, e, reversed));
        }
    }

    std::size_t kept = 0;
    unsigned shared_by_more = 0;
    const __m512i one = _mm512_set1_epi64(1);
    for (std::size_t i = 0; i < size; i += registers * lanes) {
        __m512i some[registers], equal[registers];
        for (std::size_t r = 0; r < registers; ++r) {
            some[r] = _mm512_load_si512(edges + i + r * lanes);
            equal[r] = _mm512_setzero_si512();
        }
        for (std::size_t j = 0; j < size; ++j) {
            const __m512i edge = _mm512_set1_epi64(std::bit_cast<long long>(edges[j]));
            for (std::size_t r = 0; r < registers; ++r)
                equal[r] =
                    _mm512_mask_add_epi64(equal[r], _mm512_cmpeq_epi64_mask(some[r], edge), equal[r], one);
        }
        unsigned valid =
            size - i < registers * lanes ? (1u << (size - i)) - 1 : (1u << registers * lanes) - 1;
        for (std::size_t r = 0; r < registers; ++r, valid >>= lanes) {
            const auto single = static_cast<__mmask8>(_mm512_cmpeq_epi64_mask(equal[r], one) & valid);
            shared_by_more |= _mm512_cmpgt_epi64_mask(equal[r], _mm512_add_epi64(one, one)) & valid;
            _mm512_storeu_si512(boundary + kept, _mm512_maskz_compress_epi64(single, some[r]));
            kept += static_cast<std::size_t>(__builtin_popcount(single));
        }
    }
    return shared_by_more == 0 ? kept : 0;
}
