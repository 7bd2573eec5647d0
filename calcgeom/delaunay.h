// Delaunay triangulation of a point set by the incremental method of Bowyer and Watson (1981), swept over x.
#pragma once

#include "calcgeom/result_order.h"
#include "module/cpu_level.h"

#include <cstddef>
#include <vector>

struct Triangulation {
    SweepVertices sweep;
    std::vector<FinishedTriangle> triangles; // in no order
};

// The triangulation of `count` pairs x, y, to the bit as bvutil/triangulation.h defines it.
Triangulation triangulate(const float* coordinates, std::size_t count, CpuLevel level = cpu_level());
