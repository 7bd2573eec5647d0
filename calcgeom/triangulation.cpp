#include "bvutil/triangulation.h"

#include "calcgeom/delaunay.h"
#include "module/own_arithmetic.h"

#include <limits>

namespace {

constexpr std::size_t floats_per_point = 2;
constexpr std::size_t most_points =
    std::numeric_limits<std::size_t>::max() / (floats_per_point * sizeof(float));

} // namespace

extern "C" int BVUTIL_CALL Triangulieren(unsigned int pointCount, const float* points, float** triangles,
                                         unsigned int* triangleCount) {
    if (!points || !triangles || !triangleCount) return 0;
    *triangles = nullptr;
    *triangleCount = 0;
    if (pointCount > most_points) return 0;
    return calculated(0, [&] {
        TriangleArray result = triangulate(points, pointCount);
        *triangles = result.coordinates.release();
        *triangleCount = static_cast<unsigned int>(result.count);
        return 1;
    });
}

extern "C" int BVUTIL_CALL FreeTriangs(float** triangles) {
    if (!triangles) return 0;
    delete[] * triangles;
    *triangles = nullptr;
    return 1;
}
