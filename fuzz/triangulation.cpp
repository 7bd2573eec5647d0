// Any floats as points: the triangles are those of the plain reference, bit by bit.
#include "bvutil/triangulation.h"
#include "calcgeom/delaunay.h"
#include "fuzz/require.h"
#include "tests/calcgeom/triangulation_reference.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t most_points = 200;

// The first byte says how coordinates are coded: as floats of any kind, or as bytes times a power of two, so
// that points of a lattice are found easily.
std::vector<float> coordinates(const std::uint8_t* data, std::size_t size) {
    const std::uint8_t coding = data[0];
    std::vector<float> result;
    if (coding < 128) {
        result.resize(std::min((size - 1) / sizeof(float), 2 * most_points));
        std::memcpy(result.data(), data + 1, result.size() * sizeof(float));
    } else {
        for (std::size_t i = 1; i < std::min(size, 2 * most_points); ++i)
            result.push_back(std::ldexp(static_cast<float>(static_cast<std::int8_t>(data[i])), coding - 192));
    }
    result.resize(result.size() / 2 * 2);
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 9) return 0;
    const std::vector<float> points = coordinates(data, size);
    if (points.empty()) return 0;
    float* triangles = nullptr;
    unsigned int count = 0;
    const std::size_t point_count = points.size() / 2;
    require(Triangulieren(static_cast<unsigned int>(point_count), points.data(), &triangles, &count) == 1);
    const std::vector<float> wanted = reference::triangulate(points.data(), point_count);
    require(wanted.size() == std::size_t{6} * count);
    require(wanted.empty() || std::memcmp(wanted.data(), triangles, wanted.size() * sizeof(float)) == 0);
    FreeTriangs(&triangles);
    // With every kernel, and with triangles written while the sweep goes on.
    for (const CpuLevel level : {CpuLevel::sse2, CpuLevel::avx2, CpuLevel::avx512}) {
        if (level > cpu_level()) continue;
        const TriangleArray array = triangulate(points.data(), point_count, level, 1);
        require(wanted.size() == TriangleArray::floats * array.count);
        require(wanted.empty() ||
                std::memcmp(wanted.data(), array.coordinates.get(), wanted.size() * sizeof(float)) == 0);
    }
    return 0;
}
