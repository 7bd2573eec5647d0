// Triangulation without memory: null and 0, and nothing kept.
#include "bvutil/triangulation.h"
#include "tests/faults/memory_faults.h"

#include <vector>

TEST(TriangulationMemory, FailsWithNothingLost) {
    std::vector<float> points;
    for (int i = 0; i < 40; ++i)
        points.insert(points.end(), {static_cast<float>(i * 37 % 41), static_cast<float>(i * 17 % 23)});
    memory_faults::fail_each_allocation([&](memory_faults::Fault& fault) {
        float* triangles = points.data();
        unsigned count = 99;
        const bool done =
            fault.succeeds(1, 0, [&] { return Triangulieren(40, points.data(), &triangles, &count); });
        EXPECT_EQ(count > 0, done);
        EXPECT_EQ(triangles != nullptr, done);
        EXPECT_EQ(FreeTriangs(&triangles), 1);
    });
}
