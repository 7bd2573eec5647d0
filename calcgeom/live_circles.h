// The circles that the sweep can still meet, filed so that a point looks only at those near it.
//
// The sweep advances in slabs of as many points as there are circles, or of one long column. For the length
// of a slab every circle is filed under the interval of y in which a point of the slab can be inside it; a
// circle that lies mostly to the right of the slab touches it with a short arc only, however large it is.
// Intervals are kept in a tree over the slab's y range: a circle is in the smallest node that covers its
// interval, a point looks at the nodes from its leaf to the root. When the slab ends, the circles that lie
// behind are finished, the others are filed anew, which costs each point about one filing.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circle_kernels.h"
#include "calcgeom/result_order.h"
#include "module/cpu_level.h"

#include <cstdint>
#include <span>
#include <vector>

class LiveCircles {
  public:
    LiveCircles(const SweepVertices& sweep, CpuLevel level);

    // Whether a new slab has to begin with the point.
    bool slab_ends_before(Place point) const { return point >= m_slab_end || m_size > m_most_circles; }
    void begin_slab(Place first);

    const Slab& slab() const { return m_slab; }
    // Files the triangles of that third corner with these numbers: eight times the place among `blocks`,
    // whose nodes have been found, plus the lane.
    void file(const FanBlock* blocks, std::span<const std::uint32_t> numbers, Place third);
    // Moves the triangles whose circle has the point inside into the cavity.
    void take_around(const Vertex& point, Cavity& cavity);

    std::size_t size() const { return m_size; }
    // Ends the sweep: the triangles that no point can change any more, without those of the super triangle.
    std::vector<FinishedTriangle> finish();

  private:
    struct Block : EightCircles {
        Corners corners[block_size];

        Circles four_from(unsigned lane) const {
            return {_mm_load_ps(cx + lane), _mm_load_ps(cy + lane), _mm_load_ps(right + lane),
                    _mm_load_ps(enlarged + lane)};
        }
    };
    // Only the first block of a node has free lanes, the high ones.
    struct Node {
        std::uint32_t first_block, circles;
    };
    // What filing has at hand, and changes without looking at any other member.
    struct Filing {
        Block* blocks;
        Node* nodes;
        std::uint32_t* next;
        std::uint32_t free_block;

        void put(std::uint32_t node, float cx, float cy, float enlarged, float right, const Corners& corners);
    };

    Filing begin_filing(std::size_t circles);
    void file_again(const Block& block, unsigned lanes, float from_x);

    // Where to look for circles, and where to list them.
    struct Search {
        const Block* blocks;
        const std::uint32_t* next;
        const Node* nodes;
        std::uint32_t leaf;
        std::uint32_t* hits;
    };
    static std::size_t find_around(const Vertex& point, const Search& search);
    __attribute__((target("avx2"))) static std::size_t find_around_avx2(const Vertex& point,
                                                                        const Search& search);
    void make_room_for_hits();
    std::size_t list_passed(float x);

    void clear_blocks(std::size_t count);
    void add_free_blocks(std::uint32_t first);
    unsigned circles_in(const Block& block) const;
    void measure_slab(Place first, std::size_t points);
    void add_finished(float cx, float cy, const Corners& corners);

    const SweepVertices& m_sweep;
    const bool m_avx2;
    const CircleKernels& m_kernels;
    std::vector<FinishedTriangle> m_finished;
    std::vector<Block> m_blocks, m_old_blocks; // the first is not used
    std::vector<std::uint32_t> m_next; // of a block: the next in its node, or of the free blocks; 0 is none
    std::uint32_t m_free_block = 0;
    std::vector<std::uint32_t> m_hits; // circles found: eight times the block plus the lane
    std::vector<Node> m_nodes;         // 1 is the root, the children of i are 2 i and 2 i + 1
    std::size_t m_size = 0, m_most_circles = 0;
    Place m_slab_end = 0;
    Slab m_slab;
};
