#include "calcgeom/delaunay.h"

#include "calcgeom/fan.h"
#include "calcgeom/live_circles.h"
#include "calcgeom/point_set.h"

namespace {

std::vector<FinishedTriangle> sweep_over(const SweepVertices& sweep) {
    const auto& [a, b, c] = sweep.super;
    const auto& vertices = sweep.vertices;
    LiveCircles live(sweep);
    const Corners super_triangle[4] = {{a, b, c, 0}};
    live.file(circumcircles(splat(vertices[a]), splat(vertices[b]), splat(vertices[c])), super_triangle, 1,
              vertices.front().x);
    // Coordinates so large that the super triangle's circle is not a number: no point is ever inside it.
    if (live.size() == 0) return {};

    Fan fan(sweep);
    Cavity cavity(sweep);
    for (Place point = 0; point < vertices.size(); ++point) {
        if (sweep.super.has(point)) continue;
        if (live.slab_ends_before(point)) live.begin_slab(point);
        cavity.clear();
        live.take_around(vertices[point], cavity);
        fan.take_around(vertices[point], cavity, live);
        fan.connect(point, cavity.boundary());
    }
    fan.file_all(live);
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
