#include "calcgeom/point_set.h"

#include "calcgeom/radix_sort.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace {

// Leaves the points of `unsorted` in `points`. Stable: equal points stay in the order of the input.
void sort_by_x_then_y(std::span<Vertex> unsorted, std::span<Vertex> points) {
    const auto by_x = [](const Vertex& p) { return float_key(p.x); };
    radix_sort(unsorted, points, by_x);

    std::size_t tied = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        tied += points[i].x == points[i - 1].x;
    if (tied > points.size() / 16) { // columns
        radix_sort(points, unsorted, [](const Vertex& p) { return float_key(p.y); });
        radix_sort(unsorted, points, by_x);
        return;
    }
    const auto end = points.end();
    for (auto run = points.begin(); tied && run != end;) {
        const auto next = std::find_if(run + 1, end, [&](const Vertex& p) { return p.x != run->x; });
        if (next - run > 1) std::stable_sort(run, next, comes_before);
        run = next;
    }
}

} // namespace

void point_set(const float* coordinates, std::size_t count, Vertex* spare, std::vector<Vertex>& points) {
    points.resize(count); // before the first point is read
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        spare[kept] = {coordinates[2 * i], coordinates[2 * i + 1]};
        kept += !std::isnan(spare[kept].x) && !std::isnan(spare[kept].y);
    }
    points.resize(kept);
    sort_by_x_then_y(std::span(spare, kept), points);
    const auto equal = [](const Vertex& a, const Vertex& b) { return a.x == b.x && a.y == b.y; };
    points.erase(std::unique(points.begin(), points.end(), equal), points.end());
}
