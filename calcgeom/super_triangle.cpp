#include "calcgeom/super_triangle.h"

#include "calcgeom/point_set.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace {

bool equal(const Vertex& p, const Vertex& q) {
    return p.x == q.x && p.y == q.y;
}

// Around the bounding box widened by 1 % on each side and by 400 units.
std::array<Vertex, 3> super_corners(const std::vector<Vertex>& points) {
    const float xmin = points.front().x, xmax = points.back().x;
    const auto [lowest, highest] = std::minmax_element(
        points.begin(), points.end(), [](const Vertex& p, const Vertex& q) { return p.y < q.y; });
    const float ymin = lowest->y, ymax = highest->y;

    const float dx = xmax - xmin, dy = ymax - ymin, ex = 0.01f * dx, ey = 0.01f * dy;
    const float left = xmin - ex, right = xmax + ex, bottom = ymin - ey, top = ymax + ey;
    const float width = dx + 2.0f * ex, height = dy + 2.0f * ey;
    const float root3 = 1.7320508f, margin = 400.0f;
    return {Vertex{left - height * root3 / 3.0f - margin, bottom - margin},
            Vertex{right + height * root3 / 3.0f + margin, bottom - margin},
            Vertex{(left + right) * 0.5f, top + width * root3 * 0.5f + margin}};
}

} // namespace

Place SweepVertices::first_equal(Place place) const {
    while (place > 0 && equal(vertices[place - 1], vertices[place]))
        --place;
    return place;
}

SweepVertices with_super_triangle(std::vector<Vertex> points) {
    const auto corners = super_corners(points);
    std::array<std::size_t, 3> by_place{0, 1, 2};
    std::stable_sort(by_place.begin(), by_place.end(),
                     [&](std::size_t i, std::size_t j) { return comes_before(corners[i], corners[j]); });

    SweepVertices sweep{std::move(points), {}, false};
    auto& vertices = sweep.vertices;
    std::array<Place, 3> places{};
    auto from = vertices.begin();
    for (const std::size_t corner : by_place) {
        const auto place = std::upper_bound(from, vertices.end(), corners[corner], comes_before);
        places[corner] = static_cast<Place>(place - vertices.begin());
        from = vertices.insert(place, corners[corner]) + 1;
    }

    sweep.super = {places[0], places[1], places[2]};
    for (const Place place : places)
        sweep.corners_coincide |=
            (place > 0 && equal(vertices[place - 1], vertices[place])) ||
            (place + 1 < vertices.size() && equal(vertices[place], vertices[place + 1]));
    return sweep;
}
