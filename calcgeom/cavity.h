// The triangles that a new point replaces, and the edges around them.
#pragma once

#include "calcgeom/super_triangle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

struct Edge {
    Place first, second; // the smaller vertex first
    bool operator==(const Edge&) const = default;
};

class Cavity {
  public:
    explicit Cavity(const SweepVertices& sweep) : m_sweep(sweep) {}

    void clear() { m_triangles.clear(); }
    void add(Place v1, Place v2, Place v3) { m_triangles.push_back({v1, v2, v3}); }

    // The edges that an odd number of the triangles have, in no order, each once.
    const std::vector<Edge>& boundary();

  private:
    using Corners = std::array<Place, 3>;

    void toggle(Place p, Place q);
    void find_boundary();
    void find_large_boundary();
    void find_boundary_by_coordinates();

    const SweepVertices& m_sweep;
    std::vector<Corners> m_triangles;
    std::vector<Edge> m_boundary;

    // Edges seen so far, and where an edge of a given hash was put last. A slot counts only while it is less
    // than the number of edges and the edge there is the one sought, hence it never needs clearing.
    static constexpr std::size_t most_edges = 255;
    static constexpr unsigned hash_bits = 10;
    std::array<std::uint8_t, 1u << hash_bits> m_slots{};
    std::array<Edge, most_edges> m_edges;
    std::array<std::uint8_t, most_edges> m_odd;
    std::size_t m_count = 0;
};
