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
