// Circumcircles in single precision, four at a time. Every lane takes exactly the steps that a scalar
// calculation would take: SSE2's operations are rounded as the scalar ones are, no step is fused or
// estimated.
#pragma once

#include "calcgeom/lanes.h"

#include <emmintrin.h>

struct Vertex {
    float x, y;
};

namespace four_lanes {

#define LANE_STEP [[gnu::always_inline]] inline
using Lanes = __m128;
using Comparison = decltype(Lanes() < Lanes());
LANE_STEP Lanes all(float value) {
    return _mm_set1_ps(value);
}
LANE_STEP Lanes root(Lanes lanes) {
    return _mm_sqrt_ps(lanes);
}
LANE_STEP unsigned mask_of(Comparison comparison) {
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<Lanes>(comparison)));
}
#include "calcgeom/circumcircle_steps.h"
#undef LANE_STEP

} // namespace four_lanes

using four_lanes::Circles;
using four_lanes::circumcircles;
using four_lanes::splat;
using four_lanes::Vertices;
