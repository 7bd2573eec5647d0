#include "calcgeom/live_circles.h"

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <span>
#include <utility>

namespace {

constexpr unsigned all_lanes = 15;
constexpr std::size_t shortest_slab = 32, points_per_leaf = 16;

// The lanes set in a mask, the highest first.
struct LanesOfMask {
    alignas(16) std::uint32_t lanes[4];
    std::uint32_t count;
};
constexpr std::array<LanesOfMask, all_lanes + 1> lanes_of = [] {
    std::array<LanesOfMask, all_lanes + 1> table{};
    for (unsigned mask = 0; mask <= all_lanes; ++mask)
        for (unsigned lane = 4; lane-- > 0;)
            if (mask >> lane & 1) table[mask].lanes[table[mask].count++] = lane;
    return table;
}();

// What is filed in a lane that holds no circle.
constexpr float nobody = -1.0f;

unsigned mask_of(__m128 comparison) {
    return static_cast<unsigned>(_mm_movemask_ps(comparison));
}

unsigned highest_lane(unsigned lanes) {
    return static_cast<unsigned>(std::bit_width(lanes)) - 1;
}

} // namespace

LiveCircles::LiveCircles(const SweepVertices& sweep)
    : m_sweep(sweep), m_blocks(64), m_old_blocks(1), m_next(64), m_nodes(2) {
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
LiveCircles::Leaves LiveCircles::leaves_touched(const Circles& c, float from_x) const {
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
__m128i LiveCircles::leaf_of(__m128 y) const {
    const __m128 scaled =
        _mm_mul_ps(_mm_sub_ps(y, _mm_set1_ps(m_slab_bottom)), _mm_set1_ps(m_leaves_per_unit));
    const __m128 last = _mm_set1_ps(static_cast<float>(m_leaves - 1));
    return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(scaled, _mm_setzero_ps()), last));
}

inline std::uint32_t LiveCircles::new_block(std::uint32_t next) {
    std::uint32_t block = m_free_block;
    if (block) {
        m_free_block = m_next[block];
    } else {
        block = m_used_blocks++;
        if (block >= m_blocks.size()) m_blocks.resize(2 * m_blocks.size());
        if (block >= m_next.size()) m_next.resize(m_blocks.size());
    }
    _mm_store_ps(m_blocks[block].enlarged, _mm_set1_ps(nobody));
    m_next[block] = next;
    return block;
}

// The node's last circle takes the place.
inline void LiveCircles::remove(Node& node, std::uint32_t block, unsigned lane) {
    const std::uint32_t first = node.first_block, last = --node.circles % 4;
    Block &to = m_blocks[block], &from = m_blocks[first];
    to.cx[lane] = from.cx[last];
    to.cy[lane] = from.cy[last];
    to.enlarged[lane] = from.enlarged[last];
    to.right[lane] = from.right[last];
    to.corners[lane] = from.corners[last];
    from.enlarged[last] = nobody;
    if (last == 0) {
        node.first_block = m_next[first];
        m_next[first] = m_free_block;
        m_free_block = first;
    }
    --m_size;
}

void LiveCircles::add_finished(float cx, float cy, const Corners& corners) {
    const auto [v1, v2, v3, unused] = corners;
    const SuperTriangle& super = m_sweep.super;
    if (!super.has(v1) && !super.has(v2) && !super.has(v3)) m_finished.push_back({cx, cy, v1, v2, v3});
}

inline void LiveCircles::file_lanes(const Circles& circles, const Corners* corners, unsigned lanes,
                                    float from_x) {
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
    for (unsigned i = 0; i < 4; ++i) {
        if (!(lanes >> i & 1)) continue;
        const int levels_up =
            std::bit_width((lowest[i] ^ highest[i]) * 2 + 1) - 1; // never of zero, a slow case
        Node& node = m_nodes[(m_leaves + lowest[i]) >> levels_up];
        const std::uint32_t lane = node.circles++ % 4;
        if (lane == 0) node.first_block = new_block(node.first_block);
        Block& block = m_blocks[node.first_block];
        block.cx[lane] = cx[i];
        block.cy[lane] = cy[i];
        block.enlarged[lane] = enlarged[i];
        block.right[lane] = right[i];
        block.corners[lane] = corners[i];
        ++m_size;
    }
}

void LiveCircles::file(const Circles& circles, const Edge* edges, Place third, std::size_t count) {
    Corners corners[4];
    for (std::size_t i = 0; i < 4; ++i)
        corners[i] = {edges[i].first, edges[i].second, third, 0};
    file_lanes(circles, corners, all_lanes >> (4 - count), m_sweep.vertices[third].x);
}

// A triangle is finished as soon as a point lies beyond cx + r. As x grows and cx + r is fixed, that need not
// be noticed at once, but the enlarged circle may still have a later point inside: such a one must not be
// taken, hence the second comparison.
inline void LiveCircles::take_from(Node& node, __m128 x, __m128 y, Cavity& cavity) {
    if (m_hits.size() < node.circles + 4) m_hits.resize(2 * node.circles + 4);
    std::uint32_t* hit = m_hits.data();
    for (std::uint32_t block = node.first_block; block != 0; block = m_next[block]) {
        const Block& four = m_blocks[block];
        const __m128 dx = _mm_sub_ps(x, _mm_load_ps(four.cx)), dy = _mm_sub_ps(y, _mm_load_ps(four.cy));
        const __m128 squared = _mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy));
        const unsigned inside = mask_of(_mm_and_ps(_mm_cmpge_ps(_mm_load_ps(four.enlarged), squared),
                                                   _mm_cmpngt_ps(x, _mm_load_ps(four.right))));
        const LanesOfMask& lanes = lanes_of[inside];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(hit),
                         _mm_add_epi32(_mm_set1_epi32(static_cast<int>(4 * block)),
                                       _mm_load_si128(reinterpret_cast<const __m128i*>(lanes.lanes))));
        hit += lanes.count;
    }
    // From the first block on, and in each from the high lanes down: what takes a removed circle's place is
    // not itself inside.
    for (const std::uint32_t* h = m_hits.data(); h != hit; ++h) {
        cavity.add(m_blocks[*h / 4].corners[*h % 4]);
        remove(node, *h / 4, *h % 4);
    }
}

void LiveCircles::take_around(const Vertex& point, Cavity& cavity) {
    const __m128 x = _mm_set1_ps(point.x), y = _mm_set1_ps(point.y);
    const auto leaf = static_cast<std::uint32_t>(_mm_cvtsi128_si32(leaf_of(y)));
    for (std::uint32_t node = m_leaves + leaf; node != 0; node /= 2)
        take_from(m_nodes[node], x, y, cavity);
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
    m_slab_bottom = bottom;
    m_leaves_per_unit = static_cast<float>(m_leaves) / (top - bottom);
}

void LiveCircles::begin_slab(Place first) {
    const float x = m_sweep.vertices[first].x;
    m_old_blocks.swap(m_blocks);
    const std::span<Block> old_blocks(m_old_blocks.data(), m_used_blocks);
    std::size_t live = 0;
    for (Block& block : old_blocks)
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
    m_most_circles = 2 * live + 4 * shortest_slab;
    m_nodes.assign(2 * m_leaves, Node{});
    m_used_blocks = 1;
    m_free_block = 0;
    m_size = 0;
    for (const Block& block : old_blocks)
        if (const unsigned lanes = circles_in(block))
            file_lanes({_mm_load_ps(block.cx), _mm_load_ps(block.cy), _mm_load_ps(block.right),
                        _mm_load_ps(block.enlarged)},
                       block.corners, lanes, x);
}

std::vector<FinishedTriangle> LiveCircles::finish() {
    for (const Block& block : std::span<const Block>(m_blocks.data(), m_used_blocks))
        for (unsigned lanes = circles_in(block); lanes; lanes ^= 1u << highest_lane(lanes)) {
            const unsigned lane = highest_lane(lanes);
            add_finished(block.cx[lane], block.cy[lane], block.corners[lane]);
        }
    return std::move(m_finished);
}
