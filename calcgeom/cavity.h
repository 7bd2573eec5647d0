// The triangles that a new point replaces, and the edges around them.
#pragma once

#include "calcgeom/super_triangle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// A triangle's vertices, in the order in which they are written; v3 is the point that made the triangle.
struct alignas(16) Corners {
    Place v1, v2, v3, unused;
};

struct Edge {
    Place first, second; // the smaller vertex first
    bool operator==(const Edge&) const = default;
};

class Cavity {
  public:
    explicit Cavity(const SweepVertices& sweep) : m_sweep(sweep), m_triangles(64), m_boundary(256) {}

    void clear() { m_count = 0; }
    void add(const Corners& corners) {
        if (m_count == m_triangles.size()) m_triangles.resize(2 * m_count);
        m_triangles[m_count++] = corners;
    }

    // The edges that an odd number of the triangles have, in no order, each once. Behind them at least three
    // more may be read.
    std::span<const Edge> boundary();

  private:
    std::size_t toggle(Place p, Place q, std::size_t seen);
    std::size_t find_small_boundary();
    std::size_t find_boundary();
    std::size_t find_large_boundary();
    std::size_t find_boundary_by_coordinates();

    const SweepVertices& m_sweep;
    std::vector<Corners> m_triangles;
    std::size_t m_count = 0;
    std::vector<Edge> m_boundary;

    // Edges seen so far, and where an edge of a given hash was put last. A slot counts only while it is less
    // than the number of edges and the edge there is the one sought, hence it never needs clearing.
    static constexpr std::size_t most_edges = 1024;
    static constexpr unsigned hash_bits = 12;
    std::array<std::uint16_t, 1u << hash_bits> m_slots{};
    std::array<Edge, most_edges + 1> m_edges{};
    std::array<std::uint8_t, most_edges + 1> m_odd{};
};
