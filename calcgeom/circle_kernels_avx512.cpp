#include "calcgeom/circle_kernels.h"

#include <immintrin.h>
#include <limits>

namespace sixteen_lanes {

#define LANE_KERNEL __attribute__((AVX512_TARGET)) static
#define LANE_STEP __attribute__((AVX512_TARGET, always_inline)) inline
using Lanes = __m512;
using Comparison = decltype(Lanes() < Lanes());
LANE_STEP Lanes all(float value) {
    return _mm512_set1_ps(value);
}
LANE_STEP Lanes root(Lanes lanes) {
    return _mm512_maskz_sqrt_ps(0xFFFF, lanes); // GCC warns of the plain one
}
LANE_STEP unsigned mask_of(Comparison comparison) {
    return static_cast<unsigned>(_mm512_movepi32_mask(reinterpret_cast<__m512i>(comparison)));
}
#include "calcgeom/circumcircle_steps.h"

LANE_STEP __m256 four_vertices(const Vertex& p, const Vertex& q, const Vertex& r, const Vertex& s) {
    return _mm256_set_m128(two_vertices(r, s), two_vertices(p, q));
}
// Two vertices of every four edges.
LANE_STEP __m512 eight_vertices(const Vertex* v, const Place* places) {
    const __m256 low = four_vertices(v[places[0]], v[places[2]], v[places[8]], v[places[10]]);
    const __m256 high = four_vertices(v[places[16]], v[places[18]], v[places[24]], v[places[26]]);
    return _mm512_insertf32x8(_mm512_castps256_ps512(low), high, 1);
}
LANE_STEP Vertices gathered(const Vertex* vertices, const Place* places) {
    const __m512 low = eight_vertices(vertices, places), high = eight_vertices(vertices, places + 4);
    return {_mm512_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm512_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))};
}
LANE_STEP std::uint32_t list_lanes(std::uint32_t set, std::uint32_t first, std::uint32_t* list) {
    const __m512i lanes = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m512i all = _mm512_add_epi32(_mm512_set1_epi32(static_cast<int>(first)), lanes);
    _mm512_storeu_si512(list, _mm512_maskz_compress_epi32(static_cast<__mmask16>(set), all));
    return static_cast<std::uint32_t>(__builtin_popcount(set));
}
LANE_STEP std::size_t list_edges(std::uint32_t set, const Edge* edges, Edge* list) {
    const unsigned low = set & 255, high = set >> 8;
    const auto count = static_cast<unsigned>(__builtin_popcount(low));
    _mm512_storeu_si512(list,
                        _mm512_maskz_compress_epi64(static_cast<__mmask8>(low), _mm512_loadu_si512(edges)));
    _mm512_storeu_si512(list + count, _mm512_maskz_compress_epi64(static_cast<__mmask8>(high),
                                                                  _mm512_loadu_si512(edges + 8)));
    return count + static_cast<unsigned>(__builtin_popcount(high));
}
#include "calcgeom/circle_kernels_steps.h"

} // namespace sixteen_lanes

const CircleKernels circle_kernels_avx512 = {sixteen_lanes::connect, sixteen_lanes::take_around,
                                             sixteen_lanes::find_nodes, sixteen_lanes::take_hits};
