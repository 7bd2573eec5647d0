// The sweep at every level of the processor, held bit by bit against the plain reference.
#include "calcgeom/delaunay.h"
#include "tests/calcgeom/triangulation_points.h"
#include "tests/calcgeom/triangulation_reference.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using points::Coordinates;

class Delaunay : public testing::TestWithParam<CpuLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > cpu_level()) GTEST_SKIP() << "this processor has no such instructions";
    }
    static void expect_as_reference(const Coordinates& input, const char* what) {
        const Coordinates wanted = reference::triangulate(input.data(), input.size() / 2);
        for (const std::size_t window : {1, 30, 1024}) {
            const TriangleArray got = triangulate(input.data(), input.size() / 2, GetParam(), window);
            ASSERT_EQ(wanted.size(), TriangleArray::floats * got.count) << what;
            EXPECT_TRUE(wanted.empty() ||
                        std::memcmp(wanted.data(), got.coordinates.get(), wanted.size() * sizeof(float)) == 0)
                << what << ", written from " << window << " triangles on";
        }
    }
};

TEST_P(Delaunay, IsTheReferencesBitByBit) {
    points::Random random(4);
    expect_as_reference(points::uniform(3000, random, 1000, 1000), "uniform");
    expect_as_reference(points::uniform(2000, random, 7, 1000), "many circles at a time");
    expect_as_reference(points::grid(2500, 1), "columns: large fans, equal centres");
    expect_as_reference(points::circle(700, random, 300), "cavities of many triangles");
    expect_as_reference(points::clusters(2000, random, 0.5f), "clusters");
    expect_as_reference(points::changed(points::clusters(900, random, 0.5f), 1, 1e6f, -3e5f),
                        "edges of more than two triangles");
    expect_as_reference({-1000, 0, 0, -1000, 0, 1000, 439, -6600, 1000.00006f, 0},
                        "a circle that ends before the last point and has it inside, enlarged");
    for (int round = 0; round < 300; ++round)
        expect_as_reference(points::lattice(30, random, 7), "few points");
    for (std::size_t round = 0; round < 1000; ++round)
        expect_as_reference(points::last_digits(3 + round % 6, random), "corners of the sweep on points");
    for (const float height : {1.0f, 2.0f})
        for (int round = 0; round < 10; ++round)
            expect_as_reference(points::changed(points::uniform(190, random, height, 2), 1, 1e5f, 1e7f),
                                "cavities with holes");
}

INSTANTIATE_TEST_SUITE_P(Levels, Delaunay, testing::Values(CpuLevel::sse2, CpuLevel::avx2, CpuLevel::avx512));

} // namespace
