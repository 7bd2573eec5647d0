// The triangulation by size and shape, each against the plain reference (which takes a minute for the
// largest), and the exponent of growth between 10,000 and 1,000,000 uniform points.
#include "bench/bench.h"
#include "bvutil/triangulation.h"
#include "tests/calcgeom/triangulation_points.h"
#include "tests/calcgeom/triangulation_reference.h"

#include <cmath>
#include <cstdio>

namespace {

double time_of(const points::Coordinates& input) {
    const auto count = static_cast<unsigned int>(input.size() / 2);
    const int runs = count <= 10'000 ? 21 : count <= 100'000 ? 7 : 3;
    return bench::median_ms(runs, [&] {
        float* triangles = nullptr;
        unsigned int triangle_count = 0;
        Triangulieren(count, input.data(), &triangles, &triangle_count);
        FreeTriangs(&triangles);
    });
}

double run(const char* shape, const points::Coordinates& input) {
    const std::size_t count = input.size() / 2;
    const double time = time_of(input);
    std::printf("%-14s %8u points %9.2f ms %6.0f ns each", shape, static_cast<unsigned>(count), time,
                1e6 * time / static_cast<double>(count));
    const double plain = bench::median_ms(1, [&] { reference::triangulate(input.data(), count); });
    std::printf(", reference %9.1f ms: %5.1f times\n", plain, plain / time);
    std::fflush(stdout);
    return time;
}

} // namespace

int main() {
    points::Random random(1);
    double at_10_000 = 0, at_1_000_000 = 0;
    for (const std::size_t count : {1'000, 10'000, 100'000, 1'000'000}) {
        const double time = run("uniform", points::uniform(count, random, 1000, 1000));
        if (count == 10'000) at_10_000 = time;
        if (count == 1'000'000) at_1_000_000 = time;
    }
    std::printf("exponent of growth from 10,000 to 1,000,000 points: %.2f\n",
                std::log10(at_1_000_000 / at_10_000) / 2);
    const std::size_t count = 100'000;
    run("square grid", points::grid(count, 1));
    run("gaussian", points::gaussian(count, random, 100));
    run("strip along x", points::uniform(count, random, 10'000, 100));
    run("strip along y", points::uniform(count, random, 100, 10'000));
    run("clusters", points::clusters(count, random, 1));
}
