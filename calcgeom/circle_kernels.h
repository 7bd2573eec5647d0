// The sweep's steps that work on many circles at once, four lanes at a time, by AVX2 eight or by
// AVX-512 sixteen.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circumcircle.h"
#include "module/cpu_level.h"

#include <cstddef>
#include <cstdint>
#include <span>

constexpr unsigned block_size = 16;

// Aligned beyond what new promises: the platform's heap keeps half of that promise.
template <unsigned size>
struct alignas(64) CircleLanes {
    float cx[size], cy[size], enlarged[size];
};

constexpr unsigned node_blocks = 2, node_circles = node_blocks * block_size;

// Circles that are filed in the same place, in any of the slots.
struct CircleNode : CircleLanes<node_circles> {
    Corners corners[node_circles];
    // So that the same parts of nodes in a row do not compete for places in the processor's cache.
    alignas(64) char apart[64];
};

// Circles found in nodes: node_circles times the node plus the slot.
struct Hits {
    const CircleNode* nodes = nullptr;
    const std::uint32_t* slots = nullptr;
    std::size_t count = 0;
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

// Triangles with the same third corner.
struct FanBlock : CircleLanes<block_size> {
    float right[block_size];
    std::uint32_t nodes[block_size]; // to file them in
    const Edge* edges;               // opposite the third corner, a block of them
    std::uint32_t lanes;             // those that hold a triangle
};

// The edges whose lanes are set, where a block of them may be written; how many. Inlined in any case, for
// kernels of any instructions.
[[gnu::always_inline]] inline std::size_t list_edges_by_table(std::uint32_t set, const Edge* edges,
                                                              Edge* list) {
    std::size_t count = 0;
    for (const std::uint32_t half : {0u, 8u}) {
        const LanesOfEight& lanes = lanes_of_eight.of_mask[set >> half & all_of_eight];
        for (std::size_t i = 0; i < 8; ++i)
            list[count + i] = edges[half + lanes.lanes[i]];
        count += lanes.count;
    }
    return count;
}

struct CircleKernels {
    // Makes triangles from the third vertex to the edges, which are followed by readable ones up to a whole
    // block and stay where they are.
    void (*connect)(const Vertex* vertices, const Vertex& third, const Edge* edges, std::size_t count,
                    FanBlock* blocks);
    // Tells the triangles whose circle has the point inside from the others, and finds the nodes of these.
    void (*take_around)(const Vertex& point, const Slab& slab, std::span<FanBlock> blocks, FanSplit& split);
    // The smallest nodes that cover where points of the slab can be inside a block of circles. The points to
    // come have an x of at least `from_x`.
    void (*find_nodes)(const float* cx, const float* cy, const float* enlarged, float from_x,
                       const Slab& slab, std::uint32_t* nodes);
    // Frees the slots of the circles that have the point inside, be it beyond their right edge, in blocks
    // that are numbered node_blocks times the node plus the block. Lists them as Hits has them, where as many
    // more as a block has may be written; how many. With AVX-512, what follows is 0 or a former hit.
    std::size_t (*take_hits)(const Vertex& point, const CircleNode* nodes, std::uint32_t* used,
                             std::span<const std::uint32_t> blocks, std::uint32_t* hits);
};
extern const CircleKernels circle_kernels_sse2, circle_kernels_avx2, circle_kernels_avx512;

inline const CircleKernels& circle_kernels(CpuLevel level) {
    return level >= CpuLevel::avx512 ? circle_kernels_avx512
           : level >= CpuLevel::avx2 ? circle_kernels_avx2
                                     : circle_kernels_sse2;
}
