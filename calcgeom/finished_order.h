// The order of the finished triangles.
#pragma once

#include "calcgeom/super_triangle.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// A triangle that no later point can change, with its circle's centre and right edge. v3 is the point that
// made the triangle.
struct FinishedTriangle {
    float cx, cy, right;
    Place v1, v2, v3;
};

// Sorts by centre x, then y (what is not a number comes last), then by the point at which the sweep would
// have finished the triangle, then by its creation.
class FinishedOrder {
  public:
    struct Ranked {
        std::uint32_t key;   // float_key of a coordinate of the centre
        std::uint32_t index; // into the triangles
    };
    using Triangles = std::span<const FinishedTriangle>;

    explicit FinishedOrder(const SweepVertices& sweep) : m_sweep(sweep) {}

    // Stays until more are ranked.
    std::span<const Ranked> rank(Triangles triangles);
    // The leftmost in order, the others behind them in none, all centres to the right of the leftmost: at
    // least `wanted`, but for those that lie at `ahead` or beyond. Fast where they are spread from `from` on.
    struct Leftmost {
        std::span<const Ranked> leftmost, others;
    };
    Leftmost rank_leftmost(Triangles triangles, float from, float ahead, std::size_t wanted);

  private:
    using Run = std::span<Ranked>;

    void sort_by_x(Run run, Triangles triangles);
    void sort_by_y(Run run, Triangles triangles);
    template <class Value, class Put>
    void distribute(std::size_t count, float from, float to, std::vector<std::uint32_t>& ends, Value value,
                    Put put);
    bool finished_before(const FinishedTriangle& s, const FinishedTriangle& t) const;
    Place finishing_point(const FinishedTriangle& t) const;

    const SweepVertices& m_sweep;
    std::vector<Ranked> m_ranked, m_spare;
    std::vector<std::uint32_t> m_bucket_of; // of what is being distributed
    std::vector<std::uint32_t> m_ends, m_ends_of_column;
};
