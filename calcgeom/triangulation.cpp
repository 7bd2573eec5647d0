#include "bvutil/triangulation.h"

#include "calcgeom/delaunay.h"
#include "module/own_arithmetic.h"

#include <limits>

namespace {

constexpr std::size_t floats_per_point = 2, floats_per_triangle = 6;
constexpr std::size_t most_points =
    std::numeric_limits<std::size_t>::max() / (floats_per_point * sizeof(float));

// A new array of the triangles' coordinates.
float* written(const Triangulation& triangulation) {
    const auto& [sweep, triangles, order] = triangulation;
    float* const array = new float[floats_per_triangle * order.size()];
    float* out = array;
    for (const std::uint32_t index : order)
        for (const Place place : {triangles[index].v1, triangles[index].v2, triangles[index].v3}) {
            *out++ = sweep.vertices[place].x;
            *out++ = sweep.vertices[place].y;
        }
    return array;
}

} // namespace

extern "C" int BVUTIL_CALL Triangulieren(unsigned int pointCount, const float* points, float** triangles,
                                         unsigned int* triangleCount) {
    if (!points || !triangles || !triangleCount) return 0;
    *triangles = nullptr;
    *triangleCount = 0;
    if (pointCount > most_points) return 0;
    return calculated(0, [&] {
        const Triangulation triangulation = triangulate(points, pointCount);
        *triangles = written(triangulation);
        *triangleCount = static_cast<unsigned int>(triangulation.order.size());
        return 1;
    });
}

extern "C" int BVUTIL_CALL FreeTriangs(float** triangles) {
    if (!triangles) return 0;
    delete[] * triangles;
    *triangles = nullptr;
    return 1;
}
