// Triangulieren, held bit by bit against the plain reference.
#include "bvutil/triangulation.h"
#include "tests/calcgeom/triangulation_points.h"
#include "tests/calcgeom/triangulation_reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <limits>
#include <string>

namespace {

using points::Coordinates;
using points::Random;

Coordinates triangulated(const Coordinates& input) {
    float* triangles = nullptr;
    unsigned int count = 77;
    const float nothing[2] = {};
    const auto points = static_cast<unsigned int>(input.size() / 2);
    EXPECT_EQ(Triangulieren(points, input.empty() ? nothing : input.data(), &triangles, &count), 1);
    EXPECT_NE(triangles, nullptr);
    Coordinates result(triangles, triangles + 6 * count);
    EXPECT_EQ(FreeTriangs(&triangles), 1);
    EXPECT_EQ(triangles, nullptr);
    return result;
}

// The same bits, so that zeros of different sign and values that are not numbers count.
bool same_bits(const Coordinates& a, const Coordinates& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

void expect_as_reference(const Coordinates& input, const std::string& what) {
    const Coordinates got = triangulated(input),
                      wanted = reference::triangulate(input.data(), input.size() / 2);
    if (same_bits(got, wanted)) return;
    const auto at = std::mismatch(got.begin(), got.end(), wanted.begin(), wanted.end()).first - got.begin();
    ADD_FAILURE() << what << ", " << input.size() / 2 << " points: " << got.size() / 6
                  << " triangles instead of " << wanted.size() / 6 << ", first difference near triangle "
                  << at / 6;
}

const struct {
    const char* name;
    std::function<Coordinates(std::size_t, Random&)> make;
} shapes[] = {
    {"square", [](std::size_t n, Random& r) { return points::uniform(n, r, 1000, 1000); }},
    {"strip along x", [](std::size_t n, Random& r) { return points::uniform(n, r, 1000, 7); }},
    {"strip along y", [](std::size_t n, Random& r) { return points::uniform(n, r, 7, 1000); }},
    {"gaussian", [](std::size_t n, Random& r) { return points::gaussian(n, r, 100); }},
    {"grid", [](std::size_t n, Random&) { return points::grid(n, 10); }},
    {"inexact grid", [](std::size_t n, Random&) { return points::grid(n, 0.7f); }},
    {"circle", [](std::size_t n, Random& r) { return points::circle(n, r, 300); }},
    {"clusters", [](std::size_t n, Random& r) { return points::clusters(n, r, 0.5f); }},
    {"horizontal line", [](std::size_t n, Random& r) { return points::line(n, r, 3, 0); }},
    {"vertical line", [](std::size_t n, Random& r) { return points::line(n, r, 0, 3); }},
    {"slanting line", [](std::size_t n, Random& r) { return points::line(n, r, 2, 3); }},
    {"few values", [](std::size_t n, Random& r) { return points::lattice(n, r, 5); }},
    {"some values", [](std::size_t n, Random& r) { return points::lattice(n, r, 60); }},
};

const struct {
    float factor, shift_x, shift_y;
} changes[] = {
    {1, 0, 0},         {1e-3f, 0, 0},     {1e-8f, 0, 0},   {1e-20f, 0, 0},
    {1e-42f, 0, 0},    {1e4f, 0, 0},      {1e10f, 0, 0},   {1e15f, 0, 0},
    {1e17f, 0, 0},     {1e20f, 0, 0},     {3e35f, 0, 0},   {1, 1e6f, -3e5f},
    {1, 1e10f, 1e10f}, {0.1f, -2e9f, 40}, {1, -500, -500}, {1, 1e-3f, 16777216},
    {1, 3e38f, 1e38f},
};

void compare_sets(int rounds, std::size_t most, unsigned seed) {
    Random random(seed);
    for (int round = 0; round < rounds; ++round)
        for (const auto& shape : shapes) {
            const auto& change = changes[random() % std::size(changes)];
            // Mostly small, a few as large as they may be.
            const std::size_t limit =
                3 + static_cast<std::size_t>(static_cast<float>(most) * std::pow(points::unit(random), 3.0f));
            const Coordinates made = shape.make(random() % limit, random);
            expect_as_reference(points::changed(made, change.factor, change.shift_x, change.shift_y),
                                shape.name + std::string(" times ") + std::to_string(change.factor));
        }
}

TEST(Triangulation, IsTheReferencesBitByBit) {
    compare_sets(600, 60, 1);
    compare_sets(30, 500, 2);
}

TEST(Triangulation, IsTheReferencesForEveryShapeUnchanged) {
    Random random(3);
    for (const auto& shape : shapes)
        expect_as_reference(shape.make(2000, random), shape.name);
}

TEST(Triangulation, KnowsTheSmallestSets) {
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();
    const struct {
        const char* name;
        Coordinates points, triangles;
    } cases[] = {
        {"none", {}, {}},
        {"two points many times", {1, 1, 2, 2, 1, 1, 2, 2, 1, 1}, {}},
        {"zeros of either sign are one point", {0.0f, 0, -0.0f, 0, 1, 1}, {}},
        {"the first of equal points is kept", {-0.0f, 5, 0.0f, 5, 1, 1, 2, 4}, {-0.0f, 5, 1, 1, 2, 4}},
        {"a triangle", {2, 4, 0, 0, 4, 0}, {0, 0, 2, 4, 4, 0}},
        {"a square, whose diagonal follows from the sweep",
         {0, 0, 0, 2, 2, 0, 2, 2},
         {0, 0, 0, 2, 2, 2, 0, 0, 2, 0, 2, 2}},
        {"what is not a number is left out", {nan, 0, 2, 4, 0, 0, 1, nan, 4, 0}, {0, 0, 2, 4, 4, 0}},
        {"an infinite x", {0, 0, 1, 1, 2, 0, infinity, 3}, {}},
        {"an infinite y", {0, 0, 1, 1, 2, 0, 3, -infinity}, {}},
        {"an infinite extent", {-3e38f, 0, 3e38f, 1, 2, 0}, {}},
    };
    for (const auto& [name, points, triangles] : cases) {
        const Coordinates got = triangulated(points);
        EXPECT_TRUE(same_bits(got, triangles)) << name << ": " << testing::PrintToString(got);
        expect_as_reference(points, name);
    }
}

// Independent of the reference: the triangles of well-conditioned points cover the hull once.
TEST(Triangulation, CoversTheHullOnce) {
    const int side = 40;
    const Coordinates got = triangulated(points::grid(side * side, 8));
    double area = 0;
    for (std::size_t i = 0; i < got.size(); i += 6)
        area += std::abs((got[i + 2] - got[i]) * (got[i + 5] - got[i + 1]) -
                         (got[i + 4] - got[i]) * (got[i + 3] - got[i + 1]));
    EXPECT_EQ(got.size() / 6, 2u * (side - 1) * (side - 1));
    EXPECT_EQ(area / 2, 64.0 * (side - 1) * (side - 1));
}

TEST(Triangulation, RefusesNullAndCountsBeyondMemory) {
    const float points[] = {0, 0, 1, 1, 2, 0};
    float marker = 0, *triangles = &marker;
    unsigned int count = 77;
    EXPECT_EQ(Triangulieren(3, nullptr, &triangles, &count), 0);
    EXPECT_EQ(Triangulieren(3, points, nullptr, &count), 0);
    EXPECT_EQ(Triangulieren(3, points, &triangles, nullptr), 0);
    EXPECT_EQ(triangles, &marker);
    EXPECT_EQ(count, 77u);
    for (const unsigned int huge : {0x20000000u, 0x80000001u, 0xFFFFFFFFu}) {
        triangles = &marker;
        EXPECT_EQ(Triangulieren(huge, points, &triangles, &count), 0) << huge;
        EXPECT_EQ(triangles, nullptr);
        EXPECT_EQ(count, 0u);
    }
    EXPECT_EQ(FreeTriangs(&triangles), 1);
    EXPECT_EQ(FreeTriangs(nullptr), 0);
}

} // namespace
