#include "calcgeom/delaunay.h"

#include "calcgeom/live_circles.h"
#include "calcgeom/point_set.h"

#include <algorithm>

namespace {

Vertices first_vertices(const std::vector<Vertex>& vertices, const Edge* edges) {
    const auto x = [&](int i) { return vertices[edges[i].first].x; };
    const auto y = [&](int i) { return vertices[edges[i].first].y; };
    return {_mm_setr_ps(x(0), x(1), x(2), x(3)), _mm_setr_ps(y(0), y(1), y(2), y(3))};
}
Vertices second_vertices(const std::vector<Vertex>& vertices, const Edge* edges) {
    const auto x = [&](int i) { return vertices[edges[i].second].x; };
    const auto y = [&](int i) { return vertices[edges[i].second].y; };
    return {_mm_setr_ps(x(0), x(1), x(2), x(3)), _mm_setr_ps(y(0), y(1), y(2), y(3))};
}

// Triangles from the point to every edge. Their order is the sweep's business only where centres are equal,
// and can be told from the vertices then.
void connect(Place point, const std::vector<Edge>& edges, const std::vector<Vertex>& vertices,
             LiveCircles& live) {
    const Vertices third = splat(vertices[point]);
    for (std::size_t i = 0; i < edges.size(); i += 4) {
        const std::size_t count = std::min<std::size_t>(4, edges.size() - i);
        Edge four[4] = {};
        std::copy_n(edges.begin() + static_cast<std::ptrdiff_t>(i), count, four);
        live.file(circumcircles(first_vertices(vertices, four), second_vertices(vertices, four), third), four,
                  point, static_cast<int>(count));
    }
}

std::vector<FinishedTriangle> sweep_over(const SweepVertices& sweep) {
    const auto& [a, b, c] = sweep.super;
    const auto& vertices = sweep.vertices;
    LiveCircles live(sweep);
    const Edge base{a, b};
    live.file(circumcircles(splat(vertices[a]), splat(vertices[b]), splat(vertices[c])), &base, c, 1);
    // Coordinates so large that the super triangle's circle is not a number: no point is ever inside it.
    if (live.size() == 0) return {};

    Cavity cavity(sweep);
    for (Place point = 0; point < vertices.size(); ++point) {
        if (sweep.super.has(point)) continue;
        if (point >= live.slab_end()) live.begin_slab(point);
        cavity.clear();
        live.take_around(vertices[point], cavity);
        connect(point, cavity.boundary(), vertices, live);
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
