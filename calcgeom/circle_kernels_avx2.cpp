#include "calcgeom/circle_kernels.h"

#include <immintrin.h>
#include <limits>

namespace eight_lanes {

#define LANE_KERNEL __attribute__((target("avx2"))) static
#define LANE_STEP __attribute__((target("avx2"), always_inline)) inline
using Lanes = __m256;
using Comparison = decltype(Lanes() < Lanes());
LANE_STEP Lanes all(float value) {
    return _mm256_set1_ps(value);
}
LANE_STEP Lanes root(Lanes lanes) {
    return _mm256_sqrt_ps(lanes);
}
LANE_STEP unsigned mask_of(Comparison comparison) {
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<Lanes>(comparison)));
}
#include "calcgeom/circumcircle_steps.h"

LANE_STEP __m256 four_vertices(const Vertex& p, const Vertex& q, const Vertex& r, const Vertex& s) {
    return _mm256_set_m128(two_vertices(r, s), two_vertices(p, q));
}
LANE_STEP Vertices gathered(const Vertex* vertices, const Place* places) {
    const auto& v = vertices;
    const __m256 low = four_vertices(v[places[0]], v[places[2]], v[places[8]], v[places[10]]);
    const __m256 high = four_vertices(v[places[4]], v[places[6]], v[places[12]], v[places[14]]);
    return {_mm256_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm256_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))};
}
LANE_STEP std::size_t list_edges(std::uint32_t set, const Edge* edges, Edge* list) {
    return list_edges_by_table(set, edges, list);
}
#include "calcgeom/circle_kernels_steps.h"

} // namespace eight_lanes

const CircleKernels circle_kernels_avx2 = {eight_lanes::connect, eight_lanes::take_around,
                                           eight_lanes::find_nodes, eight_lanes::take_hits};
