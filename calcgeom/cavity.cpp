#include "calcgeom/cavity.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

namespace {

Edge ordered(Place p, Place q) {
    return {std::min(p, q), std::max(p, q)};
}

} // namespace

std::span<const Edge> Cavity::boundary() {
    constexpr std::size_t readable_behind = 3;
    const std::size_t most = 3 * m_count;
    if (m_boundary.size() < most + readable_behind) m_boundary.resize(2 * most);
    const std::size_t count = m_sweep.corners_coincide ? find_boundary_by_coordinates()
                              : most <= 36             ? find_small_boundary()
                              : most > most_edges      ? find_large_boundary()
                                                       : find_boundary();
    return {m_boundary.data(), count};
}

// Gives the number of different edges seen now.
inline std::size_t Cavity::toggle(Place p, Place q, std::size_t seen) {
    const Edge edge = ordered(p, q);
    std::uint16_t& slot = m_slots[((edge.first << 7) + edge.second) * 0x9E3779B1u >> (32 - hash_bits)];
    if (slot < seen) {
        std::size_t i = slot;
        if (!(m_edges[i] == edge)) // another edge of the same hash: this one may be anywhere
            i = static_cast<std::size_t>(std::find(&m_edges[0], &m_edges[seen], edge) - &m_edges[0]);
        if (i < seen) {
            m_odd[i] ^= 1;
            return seen;
        }
    }
    slot = static_cast<std::uint16_t>(seen);
    m_edges[seen] = edge;
    m_odd[seen] = 1;
    return seen + 1;
}

// A dozen triangles at most: every edge against every other, four at a time and without a branch.
std::size_t Cavity::find_small_boundary() {
    alignas(16) Place first[36], second[36];
    std::size_t edges = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
        const auto [v1, v2, v3, unused] = m_triangles[i];
        for (const Edge& edge : {ordered(v1, v2), ordered(v2, v3), ordered(v3, v1)}) {
            first[edges] = edge.first;
            second[edges++] = edge.second;
        }
    }
    const std::size_t groups = (edges + 3) / 4;
    for (std::size_t i = edges; i < 4 * groups; ++i)
        first[i] = second[i] = ~Place{0};
    std::size_t kept = 0;
    Edge* const boundary = m_boundary.data();
    for (std::size_t i = 0; i < edges; ++i) {
        const __m128i f = _mm_set1_epi32(static_cast<int>(first[i])),
                      s = _mm_set1_epi32(static_cast<int>(second[i]));
        __m128i count = _mm_setzero_si128();
        for (std::size_t g = 0; g < groups; ++g) {
            const __m128i fs = _mm_load_si128(reinterpret_cast<const __m128i*>(first) + g);
            const __m128i ss = _mm_load_si128(reinterpret_cast<const __m128i*>(second) + g);
            count = _mm_sub_epi32(count, _mm_and_si128(_mm_cmpeq_epi32(f, fs), _mm_cmpeq_epi32(s, ss)));
        }
        count = _mm_add_epi32(count, _mm_shuffle_epi32(count, 0x4E));
        count = _mm_add_epi32(count, _mm_shuffle_epi32(count, 0xB1));
        const auto equal = static_cast<unsigned>(_mm_cvtsi128_si32(count));
        boundary[kept] = {first[i], second[i]};
        kept += equal & 1;
        if (equal > 2) return find_boundary(); // an edge of three triangles and more: once is enough
    }
    return kept;
}

std::size_t Cavity::find_boundary() {
    std::size_t seen = 0, kept = 0;
    for (std::size_t i = 0; i < m_count; ++i) {
        const auto [v1, v2, v3, unused] = m_triangles[i];
        seen = toggle(v1, v2, seen);
        seen = toggle(v2, v3, seen);
        seen = toggle(v3, v1, seen);
    }
    Edge* const boundary = m_boundary.data();
    for (std::size_t i = 0; i < seen; ++i) {
        boundary[kept] = m_edges[i];
        kept += m_odd[i];
    }
    return kept;
}

// A cavity of hundreds of triangles, as circles of many points have: sorted, equal edges are neighbours.
std::size_t Cavity::find_large_boundary() {
    auto end = m_boundary.begin();
    for (std::size_t i = 0; i < m_count; ++i) {
        const auto [v1, v2, v3, unused] = m_triangles[i];
        for (const Edge& edge : {ordered(v1, v2), ordered(v2, v3), ordered(v3, v1)})
            *end++ = edge;
    }
    std::sort(m_boundary.begin(), end, [](const Edge& a, const Edge& b) {
        return std::tie(a.first, a.second) < std::tie(b.first, b.second);
    });
    auto kept = m_boundary.begin();
    for (auto run = m_boundary.begin(); run != end;) {
        const auto next = std::find_if_not(run, end, [edge = *run](const Edge& e) { return e == edge; });
        if ((next - run) % 2 == 1) *kept++ = *run;
        run = next;
    }
    return static_cast<std::size_t>(kept - m_boundary.begin());
}

// With corners of the super triangle on points, equal edges may have different vertices: then it matters
// which triangle brings its edge first, and triangles are taken by centre, then creation.
std::size_t Cavity::find_boundary_by_coordinates() {
    struct Ranked {
        float cx, cy;
        Corners corners;
    };
    const auto place = [&](Place v) { return m_sweep.first_equal(v); };
    std::vector<Ranked> ranked;
    for (std::size_t i = 0; i < m_count; ++i) {
        const Corners& t = m_triangles[i];
        const Circles circle = circumcircles(splat(m_sweep.vertices[t.v1]), splat(m_sweep.vertices[t.v2]),
                                             splat(m_sweep.vertices[t.v3]));
        ranked.push_back({_mm_cvtss_f32(circle.cx), _mm_cvtss_f32(circle.cy), t});
    }
    const auto key = [&](const Ranked& t) {
        return std::tuple(t.cx, t.cy, t.corners.v3, place(t.corners.v1), place(t.corners.v2));
    };
    std::sort(ranked.begin(), ranked.end(),
              [&](const Ranked& s, const Ranked& t) { return key(s) < key(t); });
    const auto before = [&](const Edge& e, const Edge& f) {
        return std::tuple(place(e.first), place(e.second)) < std::tuple(place(f.first), place(f.second));
    };
    std::set<Edge, decltype(before)> edges(before);
    const auto toggle_by_coordinates = [&](Place p, Place q) {
        const auto [same, added] = edges.insert(place(q) < place(p) ? Edge{q, p} : Edge{p, q});
        if (!added) edges.erase(same);
    };
    for (const Ranked& t : ranked) {
        toggle_by_coordinates(t.corners.v1, t.corners.v2);
        toggle_by_coordinates(t.corners.v2, t.corners.v3);
        toggle_by_coordinates(t.corners.v3, t.corners.v1);
    }
    std::copy(edges.begin(), edges.end(), m_boundary.begin());
    return edges.size();
}
