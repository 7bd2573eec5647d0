// The circles that the sweep can still meet, filed so that a point looks only at those near it.
//
// The sweep advances in slabs of as many points as there are circles. For the length of a slab every circle
// is filed under the interval of y in which a point of the slab can be inside it; a circle that lies mostly
// to the right of the slab touches it with a short arc only, however large it is. Intervals are kept in a
// tree over the slab's y range: a circle is in the smallest node that covers its interval, a point looks at
// the nodes from its leaf to the root. When the slab ends, the circles that lie behind are finished, the
// others are filed anew, which costs each point about one filing.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circumcircle.h"
#include "calcgeom/result_order.h"

#include <cstdint>
#include <vector>

class LiveCircles {
  public:
    explicit LiveCircles(const SweepVertices& sweep);

    // Whether a new slab has to begin with the point.
    bool slab_ends_before(Place point) const { return point >= m_slab_end || m_size > m_most_circles; }
    void begin_slab(Place first);

    // Files the triangles in some lanes of four. The points to come have an x of at least `from_x`.
    void file(const Circles& circles, const Corners* corners, unsigned lanes, float from_x);
    // Moves the triangles whose circle has the point inside into the cavity.
    void take_around(const Vertex& point, Cavity& cavity);

    std::size_t size() const { return m_size; }
    // Ends the sweep: the triangles that no point can change any more, without those of the super triangle.
    std::vector<FinishedTriangle> finish();

  private:
    // Four circles. A lane without one has a negative enlarged radius, which has nothing inside.
    struct alignas(64) Block {
        float cx[4], cy[4], enlarged[4] = {-1, -1, -1, -1}, right[4];
        Corners corners[4];

        Circles circles() const {
            return {_mm_load_ps(cx), _mm_load_ps(cy), _mm_load_ps(right), _mm_load_ps(enlarged)};
        }
    };
    // Only the first block of a node has free lanes, the high ones.
    struct Node {
        std::uint32_t first_block, circles;
    };
    // Leaves of the tree.
    struct Leaves {
        __m128i lowest, highest;
    };

    Leaves leaves_touched(const Circles& circles, float from_x) const;
    __m128i leaf_of(__m128 y) const;
    std::uint32_t new_place(Node& node);
    void remove(std::uint32_t place);
    std::size_t find_around(const Vertex& point);
    void clear_blocks(std::size_t count);
    void add_free_blocks(std::uint32_t first);
    unsigned circles_in(const Block& block) const;
    void measure_slab(Place first, std::size_t points);
    void add_finished(float cx, float cy, const Corners& corners);

    const SweepVertices& m_sweep;
    std::vector<FinishedTriangle> m_finished;
    std::vector<Block> m_blocks, m_old_blocks; // the first is not used
    std::vector<std::uint32_t> m_next; // of a block: the next in its node, or of the free blocks; 0 is none
    std::uint32_t m_free_block = 0, m_free_blocks = 0;
    std::vector<std::uint32_t> m_hits; // circles found: 4 times the block plus the lane
    std::vector<Node> m_nodes;         // 1 is the root, the children of i are 2 i and 2 i + 1
    // From a leaf to its smallest node with another one, by the bits in which the numbers of the two differ.
    std::vector<std::uint8_t> m_levels_up;
    std::uint32_t m_leaves = 1;
    std::size_t m_size = 0, m_most_circles = 0;
    Place m_slab_end = 0;
    float m_slab_right = 0, m_slab_bottom = 0, m_leaves_per_unit = 0;
};
