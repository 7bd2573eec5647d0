#include "calcgeom/delaunay.h"

#include "calcgeom/fan.h"
#include "calcgeom/live_circles.h"
#include "calcgeom/point_set.h"

#include <array>
#include <utility>

namespace {

void sweep_over(const SweepVertices& sweep, CpuLevel level, ResultOrder& result) {
    const auto& [a, b, c] = sweep.super;
    const auto& vertices = sweep.vertices;
    // Coordinates so large that the super triangle's circle is not a number: no point is ever inside it.
    const Circles around = circumcircles(splat(vertices[a]), splat(vertices[b]), splat(vertices[c]));
    if (mask_of(_mm_cmpge_ps(around.enlarged, _mm_setzero_ps())) == 0) return;

    LiveCircles live(sweep, level, result);
    Fan fan(sweep, level);
    Cavity cavity(sweep, level);
    std::array<Edge, block_size> base; // one, and those that may be read
    base.fill({a, b});
    fan.connect(c, base.data(), 1);
    for (Place place = 0; place < vertices.size(); ++place) {
        if (sweep.super.has(place)) continue;
        if (live.slab_ends_before(place)) live.begin_slab(place);
        const Vertex& point = vertices[place];
        cavity.clear();
        live.take_around(point);
        fan.take_around(point, live.slab());
        bool found = false;
        if (fan.split().is_large()) {
            cavity.add_large_fan(fan.split());
        } else {
            live.add_to_hits(fan.split());
            found = cavity.find_boundary_of_few(live.hits(), point.x);
        }
        if (!found) {
            live.move_hits_to(cavity, point.x);
            cavity.find_boundary();
        }
        fan.file(live);
        fan.connect(place, cavity.boundary(), cavity.boundary_size());
    }
    fan.file_all(live);
    live.finish();
}

} // namespace

TriangleArray triangulate(const float* coordinates, std::size_t count, CpuLevel level, std::size_t window) {
    std::vector<Vertex> points;
    points.reserve(count + 3); // for the triangle around them
    // No triangulation in the plane has more triangles than two for each point. Where there is room for them,
    // the points can be sorted there: new memory is slow.
    TriangleRoom room(2 * count);
    {
        std::vector<Vertex> apart(room.array ? 0 : count);
        point_set(coordinates, count, room.array ? reinterpret_cast<Vertex*>(room.array.get()) : apart.data(),
                  points);
    }
    if (points.size() < 3) return {std::make_unique_for_overwrite<float[]>(0), 0};
    if (points.size() < count / 2) room = {}; // copies, mostly
    const SweepVertices sweep = with_super_triangle(std::move(points));
    ResultOrder result(sweep, std::move(room), window);
    sweep_over(sweep, level, result);
    return result.finish();
}
