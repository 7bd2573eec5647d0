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
        const Triangulation got = triangulate(input.data(), input.size() / 2, GetParam());
        const auto ordered = in_result_order(got.triangles, got.sweep);
        ASSERT_EQ(wanted.size(), 6 * got.triangles.size()) << what;
        EXPECT_EQ(std::memcmp(wanted.data(), ordered.get(), wanted.size() * sizeof(float)), 0) << what;
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
    for (int round = 0; round < 300; ++round)
        expect_as_reference(points::lattice(30, random, 7), "few points");
}

INSTANTIATE_TEST_SUITE_P(Levels, Delaunay, testing::Values(CpuLevel::sse2, CpuLevel::avx2));

} // namespace
