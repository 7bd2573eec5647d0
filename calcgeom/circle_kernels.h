// The sweep's steps that work on many circles at once, four lanes at a time or, by AVX2, eight.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circumcircle.h"
#include "module/cpu_level.h"

#include <cstddef>
#include <cstdint>

constexpr unsigned block_size = 8;

// A lane without a circle has a negative enlarged radius, which has nothing inside. Aligned beyond what new
// promises: the platform's heap keeps half of that promise.
struct alignas(64) EightCircles {
    float cx[block_size], cy[block_size], enlarged[block_size] = {-1, -1, -1, -1, -1, -1, -1, -1};
    float right[block_size];
};

// The part of the sweep for which circles are filed by y. Its leaves, of equal height, are numbered from
// `leaves` on, a power of two below 2^24: they are nodes of a tree in which i / 2 is the parent of i.
struct Slab {
    float right = 0, bottom = 0, leaves_per_unit = 0;
    std::uint32_t leaves = 1;

    // The leaf of a point.
    std::uint32_t leaf_of(float y) const {
        const float last = static_cast<float>(leaves - 1);
        const float scaled = (y - bottom) * leaves_per_unit, from_first = scaled > 0 ? scaled : 0;
        return leaves + static_cast<std::uint32_t>(from_first < last ? from_first : last);
    }
};

// Two vertices in a row, x before y. Inlined in any case, for kernels of any instructions.
[[gnu::always_inline]] inline __m128 two_vertices(const Vertex& p, const Vertex& q) {
    const __m128 low = _mm_loadl_pi(_mm_setzero_ps(), reinterpret_cast<const __m64*>(&p));
    return _mm_loadh_pi(low, reinterpret_cast<const __m64*>(&q));
}

// Eight triangles with the same third corner.
struct FanBlock : EightCircles {
    alignas(32) std::uint32_t nodes[block_size]; // to file them in
    Edge edges[block_size];
    std::uint32_t lanes; // those that hold a triangle
    std::uint32_t taken; // those that the last point has taken away
};

struct CircleKernels {
    // Makes triangles from the third vertex to the edges, which are followed by readable ones up to a whole
    // block.
    void (*connect)(const Vertex* vertices, const Vertex& third, const Edge* edges, std::size_t count,
                    FanBlock* blocks);
    // Takes away the triangles whose circle has the point inside, finds the nodes of the others.
    void (*take_around)(const Vertex& point, const Slab& slab, FanBlock* blocks, std::size_t count);
    // The smallest nodes that cover where points of the slab can be inside, aligned to 32. The points to come
    // have an x of at least `from_x`.
    void (*find_nodes)(const EightCircles& circles, float from_x, const Slab& slab, std::uint32_t* nodes);
};
extern const CircleKernels circle_kernels_sse2, circle_kernels_avx2;

inline const CircleKernels& circle_kernels(CpuLevel level) {
    return level >= CpuLevel::avx2 ? circle_kernels_avx2 : circle_kernels_sse2;
}
