#include "calcgeom/fan.h"

#include "calcgeom/lanes.h"
#include "calcgeom/live_circles.h"

#include <algorithm>

namespace {

// Four vertices, taken apart into x and y.
Vertices gathered(const Vertex& p, const Vertex& q, const Vertex& r, const Vertex& s) {
    const auto pair = [](const Vertex& low, const Vertex& high) {
        const auto as_pair = [](const Vertex& v) { return reinterpret_cast<const __m64*>(&v); };
        return _mm_loadh_pi(_mm_loadl_pi(_mm_setzero_ps(), as_pair(low)), as_pair(high));
    };
    const __m128 pq = pair(p, q), rs = pair(r, s);
    return {_mm_shuffle_ps(pq, rs, _MM_SHUFFLE(2, 0, 2, 0)), _mm_shuffle_ps(pq, rs, _MM_SHUFFLE(3, 1, 3, 1))};
}

} // namespace

void Fan::connect(Place point, std::span<const Edge> edges) {
    m_point = point;
    m_used = (edges.size() + 3) / 4;
    if (m_blocks.size() < m_used) m_blocks.resize(2 * m_used);
    const Vertex* const vertices = m_sweep.vertices.data();
    const Vertices third = splat(vertices[point]);
    for (std::size_t i = 0; i < m_used; ++i) {
        const Edge* const e = &edges[4 * i];
        Block& block = m_blocks[i];
        std::copy_n(e, 4, block.edges);
        block.lanes = all_lanes >> (4 - std::min<std::size_t>(4, edges.size() - 4 * i));
        const Vertices first =
            gathered(vertices[e[0].first], vertices[e[1].first], vertices[e[2].first], vertices[e[3].first]);
        const Vertices second = gathered(vertices[e[0].second], vertices[e[1].second], vertices[e[2].second],
                                         vertices[e[3].second]);
        block.circles = circumcircles(first, second, third);
    }
}

void Fan::file(const Block& block, unsigned lanes, float from_x, LiveCircles& live) const {
    // Two edges fill a register, their ends side by side.
    const auto* const edges = reinterpret_cast<const __m128i*>(block.edges);
    const auto point = static_cast<int>(m_point);
    const __m128i third = _mm_setr_epi32(point, 0, point, 0);
    alignas(16) Corners corners[4];
    auto* const out = reinterpret_cast<__m128i*>(corners);
    for (std::size_t i = 0; i < 2; ++i) {
        const __m128i pair = _mm_load_si128(edges + i);
        _mm_store_si128(out + 2 * i, _mm_unpacklo_epi64(pair, third));
        _mm_store_si128(out + 2 * i + 1, _mm_unpackhi_epi64(pair, third));
    }
    live.file(block.circles, corners, lanes, from_x);
}

void Fan::take_around(const Vertex& point, Cavity& cavity, LiveCircles& live) {
    const __m128 x = _mm_set1_ps(point.x), y = _mm_set1_ps(point.y);
    cavity.begin_fan(m_point);
    for (const Block& block : std::span(m_blocks.data(), m_used)) {
        const unsigned inside = block.circles.inside(x, y) & block.lanes, outside = block.lanes & ~inside;
        if (inside) cavity.add_of_fan(block.edges, inside);
        if (outside) file(block, outside, point.x, live);
    }
    m_used = 0;
}

void Fan::file_all(LiveCircles& live) {
    for (const Block& block : std::span(m_blocks.data(), m_used))
        file(block, block.lanes, m_sweep.vertices[m_point].x, live);
    m_used = 0;
}
