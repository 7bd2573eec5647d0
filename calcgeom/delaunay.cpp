#include "calcgeom/delaunay.h"

#include "calcgeom/fan.h"
#include "calcgeom/live_circles.h"
#include "calcgeom/point_set.h"

#include <array>
#include <span>
#include <utility>

namespace {

std::vector<FinishedTriangle> sweep_over(const SweepVertices& sweep, CpuLevel level) {
    const auto& [a, b, c] = sweep.super;
    const auto& vertices = sweep.vertices;
    // Coordinates so large that the super triangle's circle is not a number: no point is ever inside it.
    const Circles around = circumcircles(splat(vertices[a]), splat(vertices[b]), splat(vertices[c]));
    if (mask_of(_mm_cmpge_ps(around.enlarged, _mm_setzero_ps())) == 0) return {};

    LiveCircles live(sweep, level);
    Fan fan(sweep, level);
    Cavity cavity(sweep, level);
    std::array<Edge, block_size> base; // one, and seven that may be read
    base.fill({a, b});
    fan.connect(c, std::span<const Edge>(base).first(1));
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

Triangulation triangulate(const float* coordinates, std::size_t count, CpuLevel level) {
    Triangulation result;
    std::vector<Vertex> points = point_set(coordinates, count);
    if (points.size() < 3) return result;
    result.sweep = with_super_triangle(std::move(points));
    result.triangles = sweep_over(result.sweep, level);
    return result;
}
