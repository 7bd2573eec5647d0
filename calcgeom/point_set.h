// The distinct points of an input, in the order in which the sweep takes them.
#pragma once

#include "calcgeom/circumcircle.h"

#include <cstddef>
#include <span>
#include <vector>

inline bool comes_before(const Vertex& a, const Vertex& b) {
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

// `count` pairs x, y, as the distinct points among them by ascending x, then y. Of equal points (0 equals -0)
// the first is kept; points with a coordinate that is not a number are left out. `spare` is room for `count`.
void point_set(const float* coordinates, std::size_t count, Vertex* spare, std::vector<Vertex>& points);
