#include "calcgeom/live_circles.h"

#include "calcgeom/lanes.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>
#include <span>
#include <utility>

namespace {

constexpr std::size_t shortest_slab = 32, points_per_leaf = 16;

// What is filed in a lane that holds no circle.
constexpr float nobody = -1.0f;

// Arithmetic, as compilers make a branch of a choice, and nobody can guess it.
std::uint32_t either(bool choice, std::uint32_t if_so, std::uint32_t if_not) {
    return if_not ^ ((if_so ^ if_not) & (0u - static_cast<std::uint32_t>(choice)));
}

} // namespace

LiveCircles::LiveCircles(const SweepVertices& sweep) : m_sweep(sweep), m_nodes(2), m_levels_up(1) {
    clear_blocks(64);
    m_finished.reserve(2 * sweep.vertices.size()); // no triangulation in the plane has more
}

// A point y of the slab is inside only if (x - cx)² + (y - cy)² as calculated is at most E, the enlarged
// squared radius. Each calculated operation errs by at most u = 2^-24 of its result (a square below the
// normal range by 2^-150), and nothing cancels after the differences, which err by u as well; hence then (y -
// cy)² <= E (1 + 5u) - (x - cx)² + 2^-148. Over the rest of the slab |x - cx| is at least D, the distance of
// cx from the interval of x, calculated with an error of u, its square with 3u. The bound taken below is 2e-6
// E more than E - D² and at most 2u E less by its own rounding, when 11u = 7e-7 would do, and 1e-36 covers
// what is too small for relative errors; the surplus also covers the root's rounding. cy - h and cy + h need
// no margin of their own: rounding is monotone, so y >= cy - h leaves y, a float, at or above the rounded
// cy - h. The map from y to leaves is monotone, too.
inline LiveCircles::Leaves LiveCircles::leaves_touched(const Circles& c, float from_x) const {
    const __m128 before = _mm_sub_ps(_mm_set1_ps(from_x), c.cx);
    const __m128 behind = _mm_sub_ps(c.cx, _mm_set1_ps(m_slab_right));
    const __m128 distance = _mm_max_ps(_mm_max_ps(before, behind), _mm_setzero_ps());
    const __m128 bound =
        _mm_sub_ps(_mm_mul_ps(c.enlarged, _mm_set1_ps(1.000002f)), _mm_mul_ps(distance, distance));
    const __m128 h = _mm_sqrt_ps(_mm_add_ps(_mm_max_ps(bound, _mm_setzero_ps()), _mm_set1_ps(1e-36f)));
    const __m128i lowest = leaf_of(_mm_sub_ps(c.cy, h)), highest = leaf_of(_mm_add_ps(c.cy, h));

    // An infinite circle may have anything inside.
    const __m128 finite = _mm_cmplt_ps(c.enlarged, _mm_set1_ps(std::numeric_limits<float>::infinity()));
    if (mask_of(finite) == all_lanes) return {lowest, highest};
    const __m128i mask = _mm_castps_si128(finite), last = _mm_set1_epi32(static_cast<int>(m_leaves - 1));
    return {_mm_and_si128(mask, lowest),
            _mm_or_si128(_mm_and_si128(mask, highest), _mm_andnot_si128(mask, last))};
}

// Monotone for all floats: 0 · infinity, of a slab without height, is brought to 0 by max's second operand.
inline __m128i LiveCircles::leaf_of(__m128 y) const {
    const __m128 scaled =
        _mm_mul_ps(_mm_sub_ps(y, _mm_set1_ps(m_slab_bottom)), _mm_set1_ps(m_leaves_per_unit));
    const __m128 last = _mm_set1_ps(static_cast<float>(m_leaves - 1));
    return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(scaled, _mm_setzero_ps()), last));
}

// All blocks without a circle, in the chain of the free ones.
void LiveCircles::clear_blocks(std::size_t count) {
    if (m_blocks.size() < count) m_blocks.resize(count);
    if (m_next.size() < m_blocks.size()) m_next.resize(m_blocks.size());
    for (Block& block : m_blocks)
        _mm_store_ps(block.enlarged, _mm_set1_ps(nobody));
    m_free_block = m_free_blocks = 0;
    add_free_blocks(1);
}

void LiveCircles::add_free_blocks(std::uint32_t first) {
    const auto end = static_cast<std::uint32_t>(m_blocks.size());
    std::iota(m_next.begin() + first, m_next.begin() + end, first + 1);
    m_next[end - 1] = std::exchange(m_free_block, first);
    m_free_blocks += end - first;
}

// Blocks move between nodes and the free ones without a branch: one time in four, at no foreseeable one.

// The place for one more circle in a node: four times its first block plus the lane. There is a free block.
inline std::uint32_t LiveCircles::new_place(Node& node) {
    const std::uint32_t lane = node.circles++ % 4, free = m_free_block, after_free = m_next[free];
    const bool full = lane == 0;
    m_next[free] = either(full, node.first_block, after_free);
    m_free_block = either(full, after_free, free);
    node.first_block = either(full, free, node.first_block);
    m_free_blocks -= full;
    ++m_size;
    return 4 * node.first_block + lane;
}

// The node's last circle takes the place.
inline void LiveCircles::remove(std::uint32_t place) {
    Block& to = m_blocks[place / 4];
    const std::uint32_t lane = place % 4;
    Node& node = m_nodes[to.corners[lane].node];
    const std::uint32_t first = node.first_block, last = --node.circles % 4;
    Block& from = m_blocks[first];
    to.cx[lane] = from.cx[last];
    to.cy[lane] = from.cy[last];
    to.enlarged[lane] = from.enlarged[last];
    to.right[lane] = from.right[last];
    to.corners[lane] = from.corners[last];
    from.enlarged[last] = nobody;

    const bool empty = last == 0;
    const std::uint32_t after = m_next[first];
    m_next[first] = either(empty, m_free_block, after);
    m_free_block = either(empty, first, m_free_block);
    node.first_block = either(empty, after, first);
    m_free_blocks += empty;
    --m_size;
}

void LiveCircles::add_finished(float cx, float cy, const Corners& corners) {
    const auto [v1, v2, v3, node] = corners;
    const SuperTriangle& super = m_sweep.super;
    if (!super.has(v1) && !super.has(v2) && !super.has(v3)) m_finished.push_back({cx, cy, v1, v2, v3});
}

void LiveCircles::file(const Circles& circles, const Corners* corners, unsigned lanes, float from_x) {
    const Leaves touched = leaves_touched(circles, from_x);
    alignas(16) std::uint32_t lowest[4], highest[4];
    alignas(16) float cx[4], cy[4], enlarged[4], right[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(lowest), touched.lowest);
    _mm_store_si128(reinterpret_cast<__m128i*>(highest), touched.highest);
    _mm_store_ps(cx, circles.cx);
    _mm_store_ps(cy, circles.cy);
    _mm_store_ps(enlarged, circles.enlarged);
    _mm_store_ps(right, circles.right);

    // A circle that is not a number has nothing inside and is never passed: it stays to the end.
    const unsigned numbers = mask_of(_mm_cmpge_ps(circles.enlarged, _mm_setzero_ps()));
    if (lanes & ~numbers) {
        for (unsigned i = 0; i < 4; ++i)
            if ((lanes & ~numbers) >> i & 1) add_finished(cx[i], cy[i], corners[i]);
        lanes &= numbers;
    }
    if (m_free_blocks < 4) {
        const auto first = static_cast<std::uint32_t>(m_blocks.size());
        m_blocks.resize(2 * m_blocks.size());
        m_next.resize(std::max(m_next.size(), m_blocks.size()));
        add_free_blocks(first);
    }
    const LanesOfMask& set = lanes_of[lanes];
    for (std::size_t n = 0; n < set.count; ++n) {
        const std::uint32_t i = set.lanes[n];
        const std::uint32_t node = (m_leaves + lowest[i]) >> m_levels_up[lowest[i] ^ highest[i]];
        const std::uint32_t place = new_place(m_nodes[node]), lane = place % 4;
        Block& block = m_blocks[place / 4];
        block.cx[lane] = cx[i];
        block.cy[lane] = cy[i];
        block.enlarged[lane] = enlarged[i];
        block.right[lane] = right[i];
        block.corners[lane] = corners[i];
        block.corners[lane].node = node;
    }
}

// One walk over the blocks of all nodes from the leaf to the root, as their numbers cannot be guessed: where
// a node's blocks end, the next one is its parent's first. Block 0 has nothing inside.
std::size_t LiveCircles::find_around(const Vertex& point) {
    const __m128 x = _mm_set1_ps(point.x), y = _mm_set1_ps(point.y);
    const Block* const blocks = m_blocks.data();
    const std::uint32_t* const next = m_next.data();
    const Node* const nodes = m_nodes.data();
    std::uint32_t* const hits = m_hits.data();
    std::size_t count = 0;
    std::uint32_t node = m_leaves + static_cast<std::uint32_t>(_mm_cvtsi128_si32(leaf_of(y)));
    std::uint32_t block = nodes[node].first_block;
    while (node != 0) {
        const std::uint32_t first_of_parent = nodes[node / 2].first_block;
        const LanesOfMask& lanes = lanes_of[blocks[block].circles().inside(x, y)];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(hits + count),
                         _mm_add_epi32(_mm_set1_epi32(static_cast<int>(4 * block)),
                                       _mm_load_si128(reinterpret_cast<const __m128i*>(lanes.lanes))));
        count += lanes.count;
        const std::uint32_t following = next[block];
        block = either(following == 0, first_of_parent, following);
        node >>= following == 0;
    }
    return count;
}

void LiveCircles::take_around(const Vertex& point, Cavity& cavity) {
    constexpr std::size_t writable_behind = 4;
    if (m_hits.size() < m_size + writable_behind) m_hits.resize(2 * m_size + writable_behind);
    // From a node's first block on, and in each from the high lanes down: what takes a removed circle's place
    // is not itself inside.
    for (const std::uint32_t hit : std::span(m_hits.data(), find_around(point))) {
        cavity.add(m_blocks[hit / 4].corners[hit % 4]);
        remove(hit);
    }
}

unsigned LiveCircles::circles_in(const Block& block) const {
    return mask_of(_mm_cmpge_ps(_mm_load_ps(block.enlarged), _mm_setzero_ps()));
}

void LiveCircles::measure_slab(Place first, std::size_t points) {
    const auto& vertices = m_sweep.vertices;
    m_slab_end = static_cast<Place>(std::min(vertices.size(), first + points));
    float bottom = vertices[first].y, top = bottom;
    for (Place i = first; i < m_slab_end; ++i) {
        if (m_sweep.super.has(i)) continue;
        bottom = std::min(bottom, vertices[i].y);
        top = std::max(top, vertices[i].y);
        m_slab_right = vertices[i].x;
    }
    m_leaves = std::bit_ceil(static_cast<std::uint32_t>(points / points_per_leaf));
    for (auto known = static_cast<std::uint32_t>(m_levels_up.size()); known < m_leaves; ++known)
        m_levels_up.push_back(static_cast<std::uint8_t>(std::bit_width(known)));
    m_slab_bottom = bottom;
    m_leaves_per_unit = static_cast<float>(m_leaves) / (top - bottom);
}

void LiveCircles::begin_slab(Place first) {
    const float x = m_sweep.vertices[first].x;
    m_old_blocks.swap(m_blocks);
    std::size_t live = 0;
    for (Block& block : m_old_blocks)
        for (unsigned lanes = circles_in(block); lanes; lanes ^= 1u << highest_lane(lanes)) {
            const unsigned lane = highest_lane(lanes);
            if (x > block.right[lane]) {
                add_finished(block.cx[lane], block.cy[lane], block.corners[lane]);
                block.enlarged[lane] = nobody;
            } else {
                ++live;
            }
        }
    measure_slab(first, std::max(live, shortest_slab));
    m_most_circles = 3 * live + 4 * shortest_slab;
    m_nodes.assign(2 * m_leaves, Node{});
    clear_blocks(m_old_blocks.size());
    m_size = 0;
    for (const Block& block : m_old_blocks)
        if (const unsigned lanes = circles_in(block)) file(block.circles(), block.corners, lanes, x);
}

std::vector<FinishedTriangle> LiveCircles::finish() {
    for (const Block& block : m_blocks)
        for (unsigned lanes = circles_in(block); lanes; lanes ^= 1u << highest_lane(lanes)) {
            const unsigned lane = highest_lane(lanes);
            add_finished(block.cx[lane], block.cy[lane], block.corners[lane]);
        }
    return std::move(m_finished);
}
