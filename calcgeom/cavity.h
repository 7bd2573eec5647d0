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
    explicit Cavity(const SweepVertices& sweep)
        : m_sweep(sweep), m_triangles(64), m_boundary(256), m_numbers(sweep.vertices.size()) {}

    void clear() { m_count = 0; }
    void add(const Corners& corners) {
        if (m_count == m_triangles.size()) m_triangles.resize(2 * m_count);
        m_triangles[m_count++] = corners;
    }

    // The edges that an odd number of the triangles have, in no order, each once. Behind them at least three
    // more may be read.
    std::span<const Edge> boundary();

  private:
    template <unsigned words>
    std::size_t find_boundary_in_rows();
    std::size_t find_large_boundary();
    std::size_t find_boundary_by_coordinates();

    const SweepVertices& m_sweep;
    std::vector<Corners> m_triangles;
    std::size_t m_count = 0;
    std::vector<Edge> m_boundary;

    static constexpr unsigned most_vertices = 256, word_bits = 32;
    // A cavity without holes has two vertices more than triangles.
    static constexpr std::size_t most_for(unsigned words) { return words * word_bits - 4; }
    // The cavity's vertices, numbered as they are met. A vertex has the number noted for it only if it is
    // listed there, among those of this cavity: neither list nor notes ever need clearing.
    std::array<Place, most_vertices> m_vertices{};
    std::vector<std::uint8_t> m_numbers; // of every vertex of the sweep
    // A bit for each pair of numbers, in the row of the larger: set while the edge is in.
    std::array<std::uint32_t, most_vertices * most_vertices / word_bits> m_rows{};
};
