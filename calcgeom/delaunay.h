// Delaunay triangulation of a point set by the incremental method of Bowyer and Watson (1981), swept over x.
#pragma once

#include "calcgeom/result_order.h"
#include "module/cpu_level.h"

#include <cstddef>

// The triangulation of `count` pairs x, y, to the bit as bvutil/triangulation.h defines it. The result does
// not depend on `window`, the number of triangles that wait for their place in the order.
TriangleArray triangulate(const float* coordinates, std::size_t count, CpuLevel level = cpu_level(),
                          std::size_t window = 1024);
