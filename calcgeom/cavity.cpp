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

const std::vector<Edge>& Cavity::boundary() {
    m_boundary.clear();
    if (m_sweep.corners_coincide)
        find_boundary_by_coordinates();
    else if (3 * m_triangles.size() > most_edges)
        find_large_boundary();
    else
        find_boundary();
    return m_boundary;
}

void Cavity::toggle(Place p, Place q) {
    const Edge edge = ordered(p, q);
    std::uint8_t& slot = m_slots[(edge.first * 0x9E3779B1u + edge.second * 0x85EBCA6Bu) >> (32 - hash_bits)];
    if (slot < m_count) {
        std::size_t i = slot;
        if (!(m_edges[i] == edge)) // another edge of the same hash: this one may be anywhere
            i = static_cast<std::size_t>(
                std::find(m_edges.begin(), m_edges.begin() + static_cast<std::ptrdiff_t>(m_count), edge) -
                m_edges.begin());
        if (i < m_count) {
            m_odd[i] ^= 1;
            return;
        }
    }
    slot = static_cast<std::uint8_t>(m_count);
    m_edges[m_count] = edge;
    m_odd[m_count++] = 1;
}

void Cavity::find_boundary() {
    m_count = 0;
    for (const auto& [v1, v2, v3] : m_triangles) {
        toggle(v1, v2);
        toggle(v2, v3);
        toggle(v3, v1);
    }
    for (std::size_t i = 0; i < m_count; ++i)
        if (m_odd[i]) m_boundary.push_back(m_edges[i]);
}

// A cavity of hundreds of triangles, as circles of many points have: sorted, equal edges are neighbours.
void Cavity::find_large_boundary() {
    for (const auto& [v1, v2, v3] : m_triangles)
        m_boundary.insert(m_boundary.end(), {ordered(v1, v2), ordered(v2, v3), ordered(v3, v1)});
    std::sort(m_boundary.begin(), m_boundary.end(), [](const Edge& a, const Edge& b) {
        return std::tie(a.first, a.second) < std::tie(b.first, b.second);
    });
    auto kept = m_boundary.begin();
    for (auto run = m_boundary.begin(); run != m_boundary.end();) {
        const auto next = std::find_if_not(run, m_boundary.end(), [&](const Edge& e) { return e == *run; });
        if ((next - run) % 2 == 1) *kept++ = *run;
        run = next;
    }
    m_boundary.erase(kept, m_boundary.end());
}

// With corners of the super triangle on points, equal edges may have different vertices: then it matters
// which triangle brings its edge first, and triangles are taken by centre, then creation.
void Cavity::find_boundary_by_coordinates() {
    struct Ranked {
        float cx, cy;
        Corners corners;
    };
    const auto place = [&](Place v) { return m_sweep.first_equal(v); };
    std::vector<Ranked> ranked;
    for (const Corners& t : m_triangles) {
        const Circles circle = circumcircles(splat(m_sweep.vertices[t[0]]), splat(m_sweep.vertices[t[1]]),
                                             splat(m_sweep.vertices[t[2]]));
        ranked.push_back({_mm_cvtss_f32(circle.cx), _mm_cvtss_f32(circle.cy), t});
    }
    const auto key = [&](const Ranked& t) {
        return std::tuple(t.cx, t.cy, t.corners[2], place(t.corners[0]), place(t.corners[1]));
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
        toggle_by_coordinates(t.corners[0], t.corners[1]);
        toggle_by_coordinates(t.corners[1], t.corners[2]);
        toggle_by_coordinates(t.corners[2], t.corners[0]);
    }
    m_boundary.assign(edges.begin(), edges.end());
}
