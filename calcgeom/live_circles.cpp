#include "calcgeom/live_circles.h"

#include "calcgeom/lanes.h"

#include <algorithm>
#include <bit>
#include <immintrin.h>
#include <numeric>
#include <span>
#include <utility>

namespace {

constexpr std::size_t shortest_slab = 32, points_per_leaf = 16;
constexpr std::size_t columns_per_slab = 3; // longer columns are slabs of their own

// What is filed in a lane that holds no circle.
constexpr float nobody = -1.0f;

// Arithmetic, as compilers make a branch of a choice, and nobody can guess it. Inlined in any case: compilers
// would not by themselves where other instructions are in use.
[[gnu::always_inline]] inline std::uint32_t either(bool choice, std::uint32_t if_so, std::uint32_t if_not) {
    return if_not ^ ((if_so ^ if_not) & (0u - static_cast<std::uint32_t>(choice)));
}

} // namespace

LiveCircles::LiveCircles(const SweepVertices& sweep, CpuLevel level)
    : m_sweep(sweep), m_avx2(level >= CpuLevel::avx2), m_kernels(circle_kernels(level)), m_nodes(2) {
    clear_blocks(64);
    m_finished.reserve(2 * sweep.vertices.size()); // no triangulation in the plane has more
}

// All blocks without a circle, in the chain of the free ones.
void LiveCircles::clear_blocks(std::size_t count) {
    if (m_blocks.size() < count) m_blocks.resize(count);
    if (m_next.size() < m_blocks.size()) m_next.resize(m_blocks.size());
    for (Block& block : m_blocks)
        std::fill_n(block.enlarged, block_size, nobody);
    m_free_block = 0;
    add_free_blocks(1);
}

void LiveCircles::add_free_blocks(std::uint32_t first) {
    const auto end = static_cast<std::uint32_t>(m_blocks.size());
    std::iota(m_next.begin() + first, m_next.begin() + end, first + 1);
    m_next[end - 1] = std::exchange(m_free_block, first);
}

void LiveCircles::add_finished(float cx, float cy, const Corners& corners) {
    const auto [v1, v2, v3, node] = corners;
    const SuperTriangle& super = m_sweep.super;
    if (!super.has(v1) && !super.has(v2) && !super.has(v3)) m_finished.push_back({cx, cy, v1, v2, v3});
}

// There are free blocks for so many more circles, each in a node of its own.
LiveCircles::Filing LiveCircles::begin_filing(std::size_t circles) {
    // A node has one block at most that is not full.
    const std::size_t most_blocks = (m_size + circles) / block_size + m_nodes.size() + 2;
    if (m_blocks.size() < most_blocks) {
        const auto first = static_cast<std::uint32_t>(m_blocks.size());
        m_blocks.resize(2 * most_blocks);
        m_next.resize(std::max(m_next.size(), m_blocks.size()));
        add_free_blocks(first);
    }
    return {m_blocks.data(), m_nodes.data(), m_next.data(), m_free_block};
}

// Blocks move between nodes and the free ones without a branch: one time in eight, at no foreseeable one.
inline void LiveCircles::Filing::put(std::uint32_t number, float cx, float cy, float enlarged, float right,
                                     const Corners& corners) {
    Node& node = nodes[number];
    const std::uint32_t lane = node.circles++ % block_size, free = free_block, after_free = next[free];
    const bool full = lane == 0;
    const std::uint32_t former = node.first_block, first = either(full, free, former);
    next[free] = either(full, former, after_free);
    free_block = either(full, after_free, free);
    node.first_block = first;
    Block& block = blocks[first];
    block.cx[lane] = cx;
    block.cy[lane] = cy;
    block.enlarged[lane] = enlarged;
    block.right[lane] = right;
    block.corners[lane] = {corners.v1, corners.v2, corners.v3, number};
}

void LiveCircles::file(const FanBlock* blocks, std::span<const std::uint32_t> numbers, Place third) {
    Filing filing = begin_filing(numbers.size());
    m_size += numbers.size();
    for (const std::uint32_t number : numbers) {
        const FanBlock& from = blocks[number / block_size];
        const std::uint32_t i = number % block_size;
        const auto [first, second] = from.edges[i];
        // A circle that is not a number has nothing inside and is never passed: it stays to the end.
        if (!(from.enlarged[i] >= 0)) {
            add_finished(from.cx[i], from.cy[i], {first, second, third, 0});
            --m_size;
            continue;
        }
        filing.put(from.nodes[i], from.cx[i], from.cy[i], from.enlarged[i], from.right[i],
                   {first, second, third, 0});
    }
    m_free_block = filing.free_block;
}

// The circles in some lanes of a block of the slab that has ended.
void LiveCircles::file_again(const Block& block, unsigned lanes, float from_x) {
    Filing filing = begin_filing(block_size);
    alignas(32) std::uint32_t nodes[block_size];
    m_kernels.find_nodes(block, from_x, m_slab, nodes);
    const LanesOfEight& set = lanes_of_eight.of_mask[lanes];
    for (std::size_t n = 0; n < set.count; ++n) {
        const std::uint32_t lane = set.lanes[n];
        filing.put(nodes[lane], block.cx[lane], block.cy[lane], block.enlarged[lane], block.right[lane],
                   block.corners[lane]);
    }
    m_size += set.count;
    m_free_block = filing.free_block;
}

// One walk over the blocks of all nodes from the leaf to the root, as their numbers cannot be guessed: where
// a node's blocks end, the next one is its parent's first. Block 0 has nothing inside.
std::size_t LiveCircles::find_around(const Vertex& point, const Search& search) {
    const auto [blocks, next, nodes, leaf, hits] = search;
    const __m128 x = _mm_set1_ps(point.x), y = _mm_set1_ps(point.y);
    std::size_t count = 0;
    std::uint32_t node = leaf, block = nodes[node].first_block;
    while (node != 0) {
        const std::uint32_t first_of_parent = nodes[node / 2].first_block;
        for (const unsigned half : {4u, 0u}) { // the high lanes first
            const LanesOfMask& lanes = lanes_of[blocks[block].four_from(half).inside(x, y)];
            const __m128i first = _mm_set1_epi32(static_cast<int>(block_size * block + half));
            _mm_storeu_si128(
                reinterpret_cast<__m128i*>(hits + count),
                _mm_add_epi32(first, _mm_load_si128(reinterpret_cast<const __m128i*>(lanes.lanes))));
            count += lanes.count;
        }
        const std::uint32_t following = next[block];
        block = either(following == 0, first_of_parent, following);
        node >>= following == 0;
    }
    return count;
}

// The same with eight circles at a time. A call from within would leave the wide registers in use, which
// makes all that follows slow: whatever has to be called was called before.
std::size_t LiveCircles::find_around_avx2(const Vertex& point, const Search& search) {
    const auto [blocks, next, nodes, leaf, hits] = search;
    const __m256 x = _mm256_set1_ps(point.x), y = _mm256_set1_ps(point.y);
    std::size_t count = 0;
    std::uint32_t node = leaf, block = nodes[node].first_block;
    while (node != 0) {
        const std::uint32_t first_of_parent = nodes[node / 2].first_block;
        const Block& b = blocks[block];
        const __m256 dx = _mm256_sub_ps(x, _mm256_load_ps(b.cx)), dy = _mm256_sub_ps(y, _mm256_load_ps(b.cy));
        const __m256 squared = _mm256_add_ps(_mm256_mul_ps(dx, dx), _mm256_mul_ps(dy, dy));
        const __m256 inside = _mm256_and_ps(_mm256_cmp_ps(_mm256_load_ps(b.enlarged), squared, _CMP_GE_OS),
                                            _mm256_cmp_ps(x, _mm256_load_ps(b.right), _CMP_NGT_US));
        const LanesOfEight& lanes = lanes_of_eight.of_mask[_mm256_movemask_ps(inside)];
        const __m256i first = _mm256_set1_epi32(static_cast<int>(block_size * block));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(hits + count),
                            _mm256_add_epi32(first, _mm256_cvtepu8_epi32(_mm_loadl_epi64(
                                                        reinterpret_cast<const __m128i*>(lanes.lanes)))));
        count += lanes.count;
        const std::uint32_t following = next[block];
        block = either(following == 0, first_of_parent, following);
        node >>= following == 0;
    }
    return count;
}

void LiveCircles::make_room_for_hits() {
    constexpr std::size_t writable_behind = block_size;
    if (m_hits.size() < m_size + writable_behind) m_hits.resize(2 * m_size + writable_behind);
}

void LiveCircles::take_around(const Vertex& point, Cavity& cavity) {
    make_room_for_hits();
    const Search search{m_blocks.data(), m_next.data(), m_nodes.data(), m_slab.leaf_of(point.y),
                        m_hits.data()};
    const std::size_t count = m_avx2 ? find_around_avx2(point, search) : find_around(point, search);
    Corners* taken = cavity.append(count);
    Block* const blocks = m_blocks.data();
    Node* const nodes = m_nodes.data();
    std::uint32_t* const next = m_next.data();
    std::uint32_t free_block = m_free_block;
    // From a node's first block on, and in each from the high lanes down: what takes a removed circle's place
    // is not itself inside.
    for (const std::uint32_t hit : std::span(m_hits.data(), count)) {
        Block& to = blocks[hit / block_size];
        const std::uint32_t lane = hit % block_size;
        const Corners corners = to.corners[lane];
        *taken++ = corners;
        Node& node = nodes[corners.node];
        const std::uint32_t first = node.first_block, last = --node.circles % block_size;
        Block& from = blocks[first];
        to.cx[lane] = from.cx[last];
        to.cy[lane] = from.cy[last];
        to.enlarged[lane] = from.enlarged[last];
        to.right[lane] = from.right[last];
        to.corners[lane] = from.corners[last];
        from.enlarged[last] = nobody;

        const bool empty = last == 0;
        const std::uint32_t after = next[first];
        next[first] = either(empty, free_block, after);
        free_block = either(empty, first, free_block);
        node.first_block = either(empty, after, first);
    }
    m_free_block = free_block;
    m_size -= count;
}

unsigned LiveCircles::circles_in(const Block& block) const {
    const auto of_four = [](const float* enlarged) {
        return mask_of(_mm_cmpge_ps(_mm_load_ps(enlarged), _mm_setzero_ps()));
    };
    return of_four(block.enlarged) | of_four(block.enlarged + 4) << 4;
}

void LiveCircles::measure_slab(Place first, std::size_t points) {
    const auto& vertices = m_sweep.vertices;
    m_slab_end = static_cast<Place>(std::min(vertices.size(), first + points));
    // A long column is a slab of its own: circles reach into it with the chord at its one x only.
    const float x = vertices[first].x;
    if (vertices[std::min<std::size_t>(m_slab_end - 1, first + points / columns_per_slab)].x == x)
        while (vertices[m_slab_end - 1].x != x)
            --m_slab_end;
    float bottom = vertices[first].y, top = bottom;
    for (Place i = first; i < m_slab_end; ++i) {
        if (m_sweep.super.has(i)) continue;
        bottom = std::min(bottom, vertices[i].y);
        top = std::max(top, vertices[i].y);
        m_slab.right = vertices[i].x;
    }
    m_slab.leaves = std::bit_ceil(static_cast<std::uint32_t>(points / points_per_leaf));
    m_slab.bottom = bottom;
    m_slab.leaves_per_unit = static_cast<float>(m_slab.leaves) / (top - bottom);
}

// Lists the circles of the slab that has ended which lie behind, as hits; how many.
std::size_t LiveCircles::list_passed(float x) {
    make_room_for_hits();
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_old_blocks.size(); ++i) {
        const Block& block = m_old_blocks[i];
        const auto of_four = [&](unsigned half) {
            return mask_of(_mm_cmpgt_ps(_mm_set1_ps(x), _mm_load_ps(block.right + half))) << half;
        };
        const LanesOfEight& lanes = lanes_of_eight.of_mask[circles_in(block) & (of_four(0) | of_four(4))];
        list_lanes(lanes, static_cast<std::uint32_t>(block_size * i), &m_hits[count]);
        count += lanes.count;
    }
    return count;
}

void LiveCircles::begin_slab(Place first) {
    const float x = m_sweep.vertices[first].x;
    m_old_blocks.swap(m_blocks);
    const std::size_t passed = list_passed(x);
    for (const std::uint32_t circle : std::span(m_hits.data(), passed)) {
        Block& block = m_old_blocks[circle / block_size];
        const std::uint32_t lane = circle % block_size;
        add_finished(block.cx[lane], block.cy[lane], block.corners[lane]);
        block.enlarged[lane] = nobody;
    }
    const std::size_t live = m_size - passed;
    measure_slab(first, std::max(live, shortest_slab));
    m_most_circles = 3 * live + 4 * shortest_slab;
    m_nodes.assign(2 * m_slab.leaves, Node{});
    clear_blocks(m_old_blocks.size());
    m_size = 0;
    for (const Block& block : m_old_blocks)
        if (const unsigned lanes = circles_in(block)) file_again(block, lanes, x);
}

std::vector<FinishedTriangle> LiveCircles::finish() {
    for (const Block& block : m_blocks)
        for (unsigned lanes = circles_in(block); lanes; lanes ^= 1u << highest_lane(lanes)) {
            const unsigned lane = highest_lane(lanes);
            add_finished(block.cx[lane], block.cy[lane], block.corners[lane]);
        }
    return std::move(m_finished);
}
