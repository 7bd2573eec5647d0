// The triangles that a new point replaces, and the edges around them.
#pragma once

#include "calcgeom/lanes.h"
#include "calcgeom/super_triangle.h"
#include "module/cpu_level.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// A triangle's vertices, in the order in which they are written; v3 is the point that made the triangle.
struct Corners {
    Place v1, v2, v3;
    float right; // edge of the circle, for who keeps it
};

struct Edge {
    Place first, second; // the smaller vertex first
    bool operator==(const Edge&) const = default;
};

struct Hits;

// What a point makes of the triangles that the last one has made: from edges, no two of them equal, to
// itself.
struct FanSplit {
    Place third = 0;                   // the point that made them, the latest of their vertices to be reached
    std::vector<Edge> taken;           // the edges of those that have the new point inside
    std::vector<Edge> other_edges;     // of the others, only if a large fan is taken
    std::vector<std::uint32_t> others; // block_size times the block plus the lane
    std::size_t taken_count = 0, other_count = 0;

    // For so many, and a block more.
    void make_room(std::size_t triangles, std::size_t block) {
        if (taken.size() < triangles + block) taken.resize(2 * triangles + block);
        if (others.size() < triangles + block) {
            others.resize(2 * triangles + block);
            other_edges.resize(others.size());
        }
    }

    static constexpr std::size_t large = 6;
    bool is_large() const { return taken_count >= large; }
};

class Cavity {
  public:
    Cavity(const SweepVertices& sweep, CpuLevel level) : m_sweep(sweep), m_level(level), m_triangles(64) {}

    void clear() {
        m_count = 0;
        m_fan = nullptr;
    }
    // Where up to so many more triangles may be written, and how many were.
    Corners* room_for(std::size_t count) {
        if (m_count + count > m_triangles.size()) m_triangles.resize(2 * (m_count + count));
        return m_triangles.data() + m_count;
    }
    void added(std::size_t count) { m_count += count; }
    // Adds the triangles that are taken of a large fan. They are not there any more when the boundary is
    // found.
    void add_large_fan(FanSplit& fan) { m_fan = &fan; }

    // Finds the boundary: the edges that an odd number of the triangles have, in no order, each once. Behind
    // them at least fifteen more may be read. They stay until the boundary after the next is looked for.
    void find_boundary();
    // The same of hits, around a point at x, when nothing has been added, if there is a way for so few.
    bool find_boundary_of_few(const Hits& hits, float x);
    const Edge* boundary() const { return m_boundary.data(); }
    std::size_t boundary_size() const { return m_boundary_size; }

  private:
    std::size_t find_boundary_of_fan();
    std::size_t find_boundary_of_triangles();
    std::size_t find_spokes(Edge* spokes);
    template <unsigned words>
    std::size_t find_boundary_in_rows();
    std::size_t find_large_boundary();
    std::size_t find_boundary_by_coordinates();

    const SweepVertices& m_sweep;
    const CpuLevel m_level;
    std::vector<Corners> m_triangles;
    std::size_t m_count = 0;
    FanSplit* m_fan = nullptr;
    std::vector<Edge> m_boundary, m_former_boundary;
    std::size_t m_boundary_size = 0;

    static constexpr unsigned most_vertices = 256, word_bits = 32;
    // A cavity without holes has two vertices more than triangles.
    static constexpr std::size_t most_for(unsigned words) { return words * word_bits - 4; }
    // The cavity's vertices, numbered as they are met. A vertex has the number noted for it only if it is
    // listed there, among those of this cavity: neither list nor notes ever need clearing.
    std::array<Place, most_vertices> m_vertices{};
    std::vector<std::uint8_t> m_numbers; // of every vertex of the sweep, if needed
    std::vector<std::uint8_t>
        m_is_end; // of every vertex of the sweep, if needed: 1 while an odd number of spokes end there
    // A bit for each pair of numbers, in the row of the larger: set while the edge is in.
    std::array<std::uint32_t, most_vertices * most_vertices / word_bits> m_rows{};
};
