#include "calcgeom/circle_kernels.h"

#include <limits>

namespace four_lanes {

#define LANE_STEP [[gnu::always_inline]] inline
#define LANE_KERNEL static
LANE_STEP Vertices gathered(const Vertex* vertices, const Place* places) {
    const __m128 low = two_vertices(vertices[places[0]], vertices[places[2]]);
    const __m128 high = two_vertices(vertices[places[4]], vertices[places[6]]);
    return {_mm_shuffle_ps(low, high, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm_shuffle_ps(low, high, _MM_SHUFFLE(3, 1, 3, 1))};
}
LANE_STEP std::size_t list_edges(std::uint32_t set, const Edge* edges, Edge* list) {
    return list_edges_by_table(set, edges, list);
}
#include "calcgeom/circle_kernels_steps.h"

} // namespace four_lanes

const CircleKernels circle_kernels_sse2 = {four_lanes::connect, four_lanes::take_around,
                                           four_lanes::find_nodes, four_lanes::take_hits};
