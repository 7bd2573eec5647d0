#include "calcgeom/delaunay.h"

#include "calcgeom/live_circles.h"
#include "calcgeom/point_set.h"

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

// Triangles from the point to every edge. Their order is the sweep's business only where centres are equal,
// and can be told from the vertices then.
void connect(Place point, std::span<const Edge> edges, const Vertex* vertices, LiveCircles& live) {
    const Vertices third = splat(vertices[point]);
    for (std::size_t i = 0; i < edges.size(); i += 4) {
        const Edge* const e = &edges[i];
        const Vertices first =
            gathered(vertices[e[0].first], vertices[e[1].first], vertices[e[2].first], vertices[e[3].first]);
        const Vertices second = gathered(vertices[e[0].second], vertices[e[1].second], vertices[e[2].second],
                                         vertices[e[3].second]);
        live.file(circumcircles(first, second, third), e, point, std::min<std::size_t>(4, edges.size() - i));
    }
}

std::vector<FinishedTriangle> sweep_over(const SweepVertices& sweep) {
    const auto& [a, b, c] = sweep.super;
    const auto& vertices = sweep.vertices;
    LiveCircles live(sweep);
    const Edge base[4] = {{a, b}};
    live.file(circumcircles(splat(vertices[a]), splat(vertices[b]), splat(vertices[c])), base, c, 1);
    // Coordinates so large that the super triangle's circle is not a number: no point is ever inside it.
    if (live.size() == 0) return {};

    Cavity cavity(sweep);
    for (Place point = 0; point < vertices.size(); ++point) {
        if (sweep.super.has(point)) continue;
        if (live.slab_ends_before(point)) live.begin_slab(point);
        cavity.clear();
        live.take_around(vertices[point], cavity);
        connect(point, cavity.boundary(), vertices.data(), live);
    }
    return live.finish();
}

} // namespace

Triangulation triangulate(const float* coordinates, std::size_t count) {
    Triangulation result;
    const std::vector<Vertex> points = point_set(coordinates, count);
    if (points.size() < 3) return result;
    result.sweep = with_super_triangle(points);
    result.triangles = sweep_over(result.sweep);
    result.order = result_order(result.triangles, result.sweep);
    return result;
}
