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
    if (m_fours.size() < m_used) m_fours.resize(2 * m_used);
    const Vertex* const vertices = m_sweep.vertices.data();
    const Vertices third = splat(vertices[point]);
    for (std::size_t i = 0; i < m_used; ++i) {
        const Edge* const e = &edges[4 * i];
        LiveCircles::Four& four = m_fours[i];
        std::copy_n(e, 4, four.edges);
        four.lanes = all_lanes >> (4 - std::min<std::size_t>(4, edges.size() - 4 * i));
        const Vertices first =
            gathered(vertices[e[0].first], vertices[e[1].first], vertices[e[2].first], vertices[e[3].first]);
        const Vertices second = gathered(vertices[e[0].second], vertices[e[1].second], vertices[e[2].second],
                                         vertices[e[3].second]);
        const Circles circles = circumcircles(first, second, third);
        _mm_store_ps(four.cx, circles.cx);
        _mm_store_ps(four.cy, circles.cy);
        _mm_store_ps(four.right, circles.right);
        _mm_store_ps(four.enlarged, circles.enlarged);
    }
}

void Fan::take_around(const Vertex& point, Cavity& cavity, LiveCircles& live) {
    const __m128 x = _mm_set1_ps(point.x), y = _mm_set1_ps(point.y);
    cavity.begin_fan(m_point);
    for (LiveCircles::Four& four : std::span(m_fours.data(), m_used)) {
        const unsigned inside = four.circles().inside(x, y) & four.lanes;
        if (inside) cavity.add_of_fan(four.edges, inside);
        four.lanes ^= inside;
    }
    file(point.x, live);
}

void Fan::file_all(LiveCircles& live) {
    file(m_sweep.vertices[m_point].x, live);
}

// First where, then all of them in one loop.
void Fan::file(float from_x, LiveCircles& live) {
    if (m_to_file.size() < 4 * m_used) m_to_file.resize(8 * m_used);
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_used; ++i) {
        LiveCircles::Four& four = m_fours[i];
        if (!four.lanes) continue;
        live.prepare(four, from_x);
        const LanesOfMask& set = lanes_of[four.lanes];
        _mm_storeu_si128(reinterpret_cast<__m128i*>(&m_to_file[count]),
                         _mm_add_epi32(_mm_set1_epi32(static_cast<int>(4 * i)),
                                       _mm_load_si128(reinterpret_cast<const __m128i*>(set.lanes))));
        count += set.count;
    }
    live.file(m_fours.data(), std::span(m_to_file.data(), count), m_point);
    m_used = 0;
}
