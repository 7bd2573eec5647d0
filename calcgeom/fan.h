// The triangles that the sweep's latest point has made, before they are filed with the live circles.
//
// Where points follow each other closely, as the columns of a grid do, nearly all of a point's triangles are
// replaced by the very next point. They are looked at in the order in which they were made and never filed;
// what remains of a fan is filed when the next point has passed.
#pragma once

#include "calcgeom/cavity.h"
#include "calcgeom/circle_kernels.h"
#include "calcgeom/live_circles.h"
#include "module/cpu_level.h"

#include <cstddef>
#include <cstdint>
#include <vector>

class Fan {
  public:
    Fan(const SweepVertices& sweep, CpuLevel level) : m_sweep(sweep), m_kernels(circle_kernels(level)) {}

    // Takes the triangles whose circle has the point inside.
    void take_around(const Vertex& point, const Slab& slab);
    FanSplit& split() { return m_split; }
    // Files the others; none is left.
    void file(LiveCircles& live);
    // Files all triangles.
    void file_all(LiveCircles& live);
    // Triangles from the point to every edge. Fifteen edges more may be read, and all stay where they are.
    // Their order is the sweep's business only where centres are equal, and can be told from the vertices
    // then.
    void connect(Place point, const Edge* edges, std::size_t count);

  private:
    const SweepVertices& m_sweep;
    const CircleKernels& m_kernels;
    std::vector<FanBlock> m_blocks;
    std::size_t m_used = 0;
    FanSplit m_split;
};
