#include "calcgeom/live_circles.h"

#include "calcgeom/lanes.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <span>

namespace {

constexpr std::size_t shortest_slab = 32, points_per_leaf = 16;
constexpr std::size_t columns_per_slab = 3; // longer columns are slabs of their own

constexpr std::uint32_t full = 0xFFFFFFFFu; // all slots of a node are used

// Of the slots in use, those whose circle ends before x.
std::uint32_t slots_behind(const CircleNode& node, std::uint32_t used, float x) {
    std::uint32_t behind = 0;
    for (std::uint32_t slot = 0; slot < node_circles && used >> slot != 0; slot += 4) {
        const auto corners = [&](std::uint32_t i) {
            return _mm_load_ps(reinterpret_cast<const float*>(&node.corners[slot + i]));
        };
        const __m128 right =
            _mm_movehl_ps(_mm_unpackhi_ps(corners(2), corners(3)), _mm_unpackhi_ps(corners(0), corners(1)));
        behind |= mask_of(_mm_cmpgt_ps(_mm_set1_ps(x), right)) << slot;
    }
    return behind & used;
}

} // namespace

LiveCircles::LiveCircles(const SweepVertices& sweep, CpuLevel level, ResultOrder& finished)
    : m_sweep(sweep), m_kernels(circle_kernels(level)), m_finished(finished), m_nodes(2), m_used(2),
      m_more(2) {}

void LiveCircles::add_finished(float cx, float cy, const Corners& corners) {
    const auto [v1, v2, v3, right] = corners;
    const SuperTriangle& super = m_sweep.super;
    if (!super.has(v1) && !super.has(v2) && !super.has(v3)) m_finished.add({cx, cy, right, v1, v2, v3});
}

void LiveCircles::add_finished(const CircleNode& node, std::uint32_t slot) {
    add_finished(node.cx[slot], node.cy[slot], node.corners[slot]);
}

// A node with room for one more circle, for a full one.
std::uint32_t LiveCircles::node_beside(std::uint32_t node) {
    if (m_more[node] == 0 || m_used[m_more[node]] == full) {
        const auto added = static_cast<std::uint32_t>(m_used.size());
        m_used.push_back(0);
        m_more.push_back(m_more[node]);
        m_more[node] = added;
        if (m_nodes.size() <= added) m_nodes.resize(m_used.size() + m_used.size() / 4 + 1);
    }
    return m_more[node];
}

inline void LiveCircles::Filing::put(std::uint32_t number, float cx, float cy, float enlarged,
                                     __m128i corners) {
    if (used[number] == full) [[unlikely]] {
        number = live.node_beside(number);
        nodes = live.m_nodes.data();
        used = live.m_used.data();
    }
    const std::uint32_t slots = used[number];
    const auto slot = static_cast<std::uint32_t>(std::countr_one(slots));
    used[number] = slots | (slots + 1);
    CircleNode& node = nodes[number];
    node.cx[slot] = cx;
    node.cy[slot] = cy;
    node.enlarged[slot] = enlarged;
    _mm_store_si128(reinterpret_cast<__m128i*>(&node.corners[slot]), corners);
}

void LiveCircles::file(const FanBlock* blocks, std::span<const std::uint32_t> numbers, Place third) {
    m_size += numbers.size();
    const __m128i all_third = _mm_set1_epi32(static_cast<int>(third));
    Filing filing(*this);
    for (const std::uint32_t number : numbers) {
        const FanBlock& from = blocks[number / block_size];
        const std::uint32_t lane = number % block_size;
        // A circle that is not a number has nothing inside and is never passed: it would stay to the end.
        if (!(from.enlarged[lane] >= 0)) [[unlikely]] {
            const auto [first, second] = from.edges[lane];
            add_finished(from.cx[lane], from.cy[lane], {first, second, third, from.right[lane]});
            --m_size;
            continue;
        }
        // Put together in a register: what is stored in parts is slow to load as a whole.
        const __m128i edge = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&from.edges[lane]));
        const __m128i right = _mm_castps_si128(_mm_load_ss(&from.right[lane]));
        filing.put(from.nodes[lane], from.cx[lane], from.cy[lane], from.enlarged[lane],
                   _mm_unpacklo_epi64(edge, _mm_unpacklo_epi32(all_third, right)));
    }
}

// What stayed of the slab that has ended.
void LiveCircles::file_again(std::size_t circles, float from_x) {
    Filing filing(*this);
    alignas(64) std::uint32_t nodes[block_size];
    for (std::size_t i = 0; i < circles; ++i) {
        const KeptBlock& from = m_kept[i / block_size];
        const std::size_t lane = i % block_size;
        if (lane == 0) m_kernels.find_nodes(from.cx, from.cy, from.enlarged, from_x, m_slab, nodes);
        filing.put(nodes[lane], from.cx[lane], from.cy[lane], from.enlarged[lane],
                   _mm_load_si128(reinterpret_cast<const __m128i*>(&from.corners[lane])));
    }
    m_size = circles;
}

// All blocks of the nodes from the leaf to the root, but for the second where it is not in use. Both are
// written, as nobody can guess that.
std::size_t LiveCircles::list_blocks(float y) {
    constexpr std::size_t most_levels = 32;
    const std::size_t most_blocks = node_blocks * (m_used.size() - 2 * m_slab.leaves + most_levels);
    if (m_blocks.size() < most_blocks) m_blocks.resize(2 * most_blocks);
    const std::uint32_t *const used = m_used.data(), *const more = m_more.data();
    std::uint32_t *const blocks = m_blocks.data(), *end = blocks;
    for (std::uint32_t of_path = m_slab.leaf_of(y); of_path != 0; of_path /= 2)
        for (std::uint32_t node = of_path; node != 0; node = more[node]) {
            end[0] = node_blocks * node;
            end[1] = node_blocks * node + 1;
            end += 1 + (used[node] >> block_size != 0);
        }
    return static_cast<std::size_t>(end - blocks);
}

void LiveCircles::take_around(const Vertex& point) {
    if (m_hits.size() < m_size + block_size) m_hits.resize(2 * m_size + block_size);
    const std::size_t blocks = list_blocks(point.y);
    const std::size_t count = m_kernels.take_hits(point, m_nodes.data(), m_used.data(),
                                                  std::span(m_blocks.data(), blocks), m_hits.data());
    m_size -= count;
    m_found.nodes = m_nodes.data();
    m_found.slots = m_hits.data();
    m_found.count = count;
}

// In node 0, which the tree does not have; as if their circles had no right edge.
void LiveCircles::add_to_hits(const FanSplit& fan) {
    static_assert(FanSplit::large <= block_size);
    const int endless = std::bit_cast<int>(std::numeric_limits<float>::infinity());
    const __m128i rest = _mm_setr_epi32(static_cast<int>(fan.third), endless, 0, 0);
    for (std::uint32_t i = 0; i < fan.taken_count; ++i) {
        const __m128i edge = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&fan.taken[i]));
        _mm_store_si128(reinterpret_cast<__m128i*>(&m_nodes[0].corners[i]), _mm_unpacklo_epi64(edge, rest));
        m_hits[m_found.count++] = i;
    }
}

void LiveCircles::move_hits_to(Cavity& cavity, float x) {
    Corners *const begin = cavity.room_for(m_found.count), *end = begin;
    for (const std::uint32_t hit : std::span(m_found.slots, m_found.count)) {
        const CircleNode& node = m_nodes[hit / node_circles];
        const Corners& corners = node.corners[hit % node_circles];
        if (x > corners.right) [[unlikely]]
            add_finished(node, hit % node_circles);
        else
            *end++ = corners;
    }
    cavity.added(static_cast<std::size_t>(end - begin));
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

// Finishes the circles that end before x and collects the others; how many.
std::size_t LiveCircles::keep_from(float x) {
    if (m_kept.size() * block_size < m_size) m_kept.resize(2 * m_size / block_size + 1);
    std::size_t kept = 0;
    for (std::size_t n = 0; n < m_used.size(); ++n) {
        const CircleNode& node = m_nodes[n];
        const std::uint32_t behind = slots_behind(node, m_used[n], x);
        for (std::uint32_t slots = behind; slots; slots &= slots - 1)
            add_finished(node, static_cast<std::uint32_t>(std::countr_zero(slots)));
        for (std::uint32_t slots = m_used[n] & ~behind; slots; slots &= slots - 1, ++kept) {
            const auto slot = static_cast<std::uint32_t>(std::countr_zero(slots));
            KeptBlock& to = m_kept[kept / block_size];
            to.cx[kept % block_size] = node.cx[slot];
            to.cy[kept % block_size] = node.cy[slot];
            to.enlarged[kept % block_size] = node.enlarged[slot];
            to.corners[kept % block_size] = node.corners[slot];
        }
    }
    return kept;
}

void LiveCircles::begin_slab(Place first) {
    const float x = m_sweep.vertices[first].x;
    const std::size_t live = keep_from(x);
    m_finished.write_some(x, live);
    measure_slab(first, std::max(live, shortest_slab));
    m_most_circles = 3 * live + 4 * shortest_slab;
    m_most_nodes = 2 * m_slab.leaves + 2 * m_most_circles / node_circles;
    m_used.assign(2 * m_slab.leaves, 0);
    m_more.assign(2 * m_slab.leaves, 0);
    if (m_nodes.size() < m_used.size()) m_nodes.resize(m_used.size());
    file_again(live, x);
}

void LiveCircles::finish() {
    for (std::size_t n = 0; n < m_used.size(); ++n)
        for (std::uint32_t used = m_used[n]; used; used &= used - 1)
            add_finished(m_nodes[n], static_cast<std::uint32_t>(std::countr_zero(used)));
}
