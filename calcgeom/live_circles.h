// The circles that the sweep can still meet, filed so that a point looks only at those near it.
//
// The sweep advances in slabs of as many points as there are circles, or of one long column. For the length
// of a slab every circle is filed under the interval of y in which a point of the slab can be inside it; a
// circle that lies mostly to the right of the slab touches it with a short arc only, however large it is.
// Intervals are kept in a tree over the slab's y range: a circle is in the smallest node that covers its
// interval, a point looks at the nodes from its leaf to the root. When the slab ends, the circles that lie
// behind are finished, the others are filed anew, which costs each point about one filing.
//
// A circle stays in its slot of a node, which has a bit in a mask while it is in use: taking circles changes
// masks only. They go to the lowest slots that are free, so that few have to be looked at.
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
    LiveCircles(const SweepVertices& sweep, CpuLevel level, ResultOrder& finished);

    // Whether a new slab has to begin with the point.
    bool slab_ends_before(Place point) const {
        return point >= m_slab_end || m_size > m_most_circles || m_used.size() > m_most_nodes;
    }
    void begin_slab(Place first);

    const Slab& slab() const { return m_slab; }
    // Files the triangles of that third corner with these numbers: block_size times the place among
    // `blocks`, whose nodes have been found, plus the lane.
    void file(const FanBlock* blocks, std::span<const std::uint32_t> numbers, Place third);
    // Takes the triangles whose circle has the point inside, as hits, which can be read until others are
    // filed.
    void take_around(const Vertex& point);
    // Adds those of a fan that is not large.
    void add_to_hits(const FanSplit& fan);
    const Hits& hits() const { return m_found; }
    // Moves them all into the cavity, but for those whose circle ends before x: they are finished.
    void move_hits_to(Cavity& cavity, float x);

    // Ends the sweep: no point can change any triangle any more.
    void finish();

  private:
    // What filing has at hand, and changes without looking at any other member.
    struct Filing {
        LiveCircles& live;
        CircleNode* nodes = live.m_nodes.data();
        std::uint32_t* used = live.m_used.data();

        explicit Filing(LiveCircles& circles) : live(circles) {}
        void put(std::uint32_t node, float cx, float cy, float enlarged, __m128i corners);
    };
    struct KeptBlock : CircleLanes<block_size> {
        Corners corners[block_size];
    };
    std::uint32_t node_beside(std::uint32_t full);
    std::size_t keep_from(float x);
    void file_again(std::size_t circles, float from_x);
    std::size_t list_blocks(float y);
    void measure_slab(Place first, std::size_t points);
    void add_finished(float cx, float cy, const Corners& corners);
    void add_finished(const CircleNode& node, std::uint32_t slot);

    const SweepVertices& m_sweep;
    const CircleKernels& m_kernels;
    ResultOrder& m_finished; // without those of the super triangle
    // 1 is the root, the children of i are 2 i and 2 i + 1; behind the leaves are the nodes that had to be
    // added, each to a full one.
    std::vector<CircleNode> m_nodes;
    std::vector<std::uint32_t> m_used;   // the slots of each node
    std::vector<std::uint32_t> m_more;   // the node that was added last to this one; 0 is none
    std::vector<std::uint32_t> m_blocks; // to be searched: node_blocks times the node plus the block
    std::vector<std::uint32_t> m_hits;   // circles found: node_circles times the node plus the slot
    Hits m_found;
    std::vector<KeptBlock> m_kept; // from one slab to the next
    std::size_t m_size = 0, m_most_circles = 0, m_most_nodes = 0;
    Place m_slab_end = 0;
    Slab m_slab;
};
