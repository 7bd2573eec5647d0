#include "calcgeom/fan.h"

#include "calcgeom/lanes.h"

#include <span>

void Fan::connect(Place point, const Edge* edges, std::size_t count) {
    m_split.third = point;
    m_used = (count + block_size - 1) / block_size;
    if (m_blocks.size() < m_used) m_blocks.resize(2 * m_used);
    m_split.make_room(block_size * m_used, block_size);
    const Vertex* const vertices = m_sweep.vertices.data();
    m_kernels.connect(vertices, vertices[point], edges, count, m_blocks.data());
    for (std::size_t i = 0; i < m_used; ++i)
        m_blocks[i].lanes = (1u << block_size) - 1;
    if (m_used) m_blocks[m_used - 1].lanes >>= block_size * m_used - count;
}

void Fan::take_around(const Vertex& point, const Slab& slab) {
    m_kernels.take_around(point, slab, std::span(m_blocks.data(), m_used), m_split);
    if (!m_split.is_large()) return;
    for (std::size_t i = 0; i < m_split.other_count; ++i) {
        const std::uint32_t other = m_split.others[i];
        m_split.other_edges[i] = m_blocks[other / block_size].edges[other % block_size];
    }
}

void Fan::file(LiveCircles& live) {
    live.file(m_blocks.data(), std::span(m_split.others.data(), m_split.other_count), m_split.third);
}

void Fan::file_all(LiveCircles& live) {
    const float from_x = m_sweep.vertices[m_split.third].x;
    m_split.other_count = 0;
    for (std::uint32_t i = 0; i < m_used; ++i) {
        FanBlock& block = m_blocks[i];
        m_kernels.find_nodes(block.cx, block.cy, block.enlarged, from_x, live.slab(), block.nodes);
        m_split.other_count += list_lanes(block.lanes, block_size * i, &m_split.others[m_split.other_count]);
    }
    file(live);
}
