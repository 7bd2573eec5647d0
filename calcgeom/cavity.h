// The triangles that a new point replaces, and the edges around them.
#pragma once

#include "calcgeom/lanes.h"
#include "calcgeom/super_triangle.h"
#include "module/cpu_level.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

// A triangle's vertices, in the order in which they are written; v3 is the point that made the triangle.
struct Corners {
    Place v1, v2, v3;
    std::uint32_t node; // for who keeps it
};

struct Edge {
    Place first, second; // the smaller vertex first
    bool operator==(const Edge&) const = default;
};

class Cavity {
  public:
    Cavity(const SweepVertices& sweep, CpuLevel level)
        : m_sweep(sweep), m_avx2(level >= CpuLevel::avx2), m_triangles(64), m_boundary(256),
          m_numbers(sweep.vertices.size()), m_is_end(sweep.vertices.size()) {}

    void clear() { m_count = m_fan.size = 0; }
    void add(const Corners& corners) {
        if (m_count == m_triangles.size()) m_triangles.resize(2 * m_count);
        m_triangles[m_count++] = corners;
    }

    // Room for so many more triangles, which are to be written there.
    Corners* append(std::size_t count) {
        if (m_count + count > m_triangles.size()) m_triangles.resize(2 * (m_count + count));
        return m_triangles.data() + std::exchange(m_count, m_count + count);
    }

    // Of the triangles that the sweep's latest point has made with edges, no two of them equal, those that
    // are in the cavity. Where they are many, all others have to be told, too.
    void begin_fan(Place point) {
        m_fan_point = point;
        m_fan.size = m_rest_of_fan.size = 0;
    }
    void add_of_fan(const Edge (&eight)[8], unsigned lanes) { m_fan.add(eight, lanes); }
    bool has_large_fan() const { return m_fan.size >= large_fan; }
    void add_to_rest_of_fan(const Edge (&eight)[8], unsigned lanes) { m_rest_of_fan.add(eight, lanes); }

    // The edges that an odd number of the triangles have, in no order, each once. Behind them at least seven
    // more may be read.
    std::span<const Edge> boundary();

  private:
    static constexpr std::size_t large_fan = 6;
    // The edges opposite the fan's point.
    struct FanEdges {
        std::vector<Edge> edges = std::vector<Edge>(64);
        std::size_t size = 0;

        void add(const Edge (&eight)[8], unsigned lanes) {
            if (size + 8 > edges.size()) edges.resize(2 * edges.size());
            const LanesOfEight& set = lanes_of_eight.of_mask[lanes];
            for (std::size_t i = 0; i < 8; ++i)
                edges[size + i] = eight[set.lanes[i]];
            size += set.count;
        }
        std::span<const Edge> used() const { return {edges.data(), size}; }
    };
    std::size_t find_boundary_of_fan();
    std::size_t find_spokes(Edge* spokes);
    template <unsigned words>
    std::size_t find_boundary_in_rows();
    std::size_t find_large_boundary();
    std::size_t find_boundary_by_coordinates();

    const SweepVertices& m_sweep;
    const bool m_avx2;
    std::vector<Corners> m_triangles;
    std::size_t m_count = 0;
    FanEdges m_fan, m_rest_of_fan;
    Place m_fan_point = 0;
    std::vector<Edge> m_boundary;

    static constexpr unsigned most_vertices = 256, word_bits = 32;
    // A cavity without holes has two vertices more than triangles.
    static constexpr std::size_t most_for(unsigned words) { return words * word_bits - 4; }
    // The cavity's vertices, numbered as they are met. A vertex has the number noted for it only if it is
    // listed there, among those of this cavity: neither list nor notes ever need clearing.
    std::array<Place, most_vertices> m_vertices{};
    std::vector<std::uint8_t> m_numbers; // of every vertex of the sweep
    std::vector<std::uint8_t>
        m_is_end; // of every vertex of the sweep: 1 while an odd number of spokes end there
    // A bit for each pair of numbers, in the row of the larger: set while the edge is in.
    std::array<std::uint32_t, most_vertices * most_vertices / word_bits> m_rows{};
};
