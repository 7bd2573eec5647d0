// The order of the finished triangles.
#pragma once

#include "calcgeom/super_triangle.h"

#include <memory>
#include <span>

// A triangle that no later point can change. v3 is the point
// that made the triangle.
struct FinishedTriangle {
    float cx, cy;
    Place v1, v2, v3;
};

// The coordinates of the triangles, six each, by centre x, then y (what is not a number comes last), then by
// the point at which the sweep would have finished the triangle, then by its creation.
std::unique_ptr<float[]> in_result_order(std::span<const FinishedTriangle> triangles,
                                         const SweepVertices& sweep);
