// The order of the finished triangles.
#pragma once

#include "calcgeom/super_triangle.h"

#include <cstdint>
#include <span>
#include <vector>

// A triangle that no later point can change. v3 is the point
// that made the triangle.
struct FinishedTriangle {
    float cx, cy;
    Place v1, v2, v3;
};

// Indices of the triangles by centre x, then y (what is not a number comes last), then by the point at which
// the sweep would have finished the triangle, then by its creation.
std::vector<std::uint32_t> result_order(std::span<const FinishedTriangle> triangles,
                                        const SweepVertices& sweep);
