#include "calcgeom/fan.h"

#include "calcgeom/lanes.h"

#include <algorithm>

void Fan::connect(Place point, std::span<const Edge> edges) {
    m_point = point;
    m_used = (edges.size() + block_size - 1) / block_size;
    if (m_blocks.size() < m_used) m_blocks.resize(2 * m_used);
    const Vertex* const vertices = m_sweep.vertices.data();
    m_kernels.connect(vertices, vertices[point], edges.data(), edges.size(), m_blocks.data());
    for (std::size_t i = 0; i < m_used; ++i)
        m_blocks[i].lanes = all_of_eight;
    if (m_used) m_blocks[m_used - 1].lanes >>= block_size * m_used - edges.size();
}

void Fan::take_around(const Vertex& point, Cavity& cavity, LiveCircles& live) {
    m_kernels.take_around(point, live.slab(), m_blocks.data(), m_used);
    cavity.begin_fan(m_point);
    const std::span<const FanBlock> blocks(m_blocks.data(), m_used);
    for (const FanBlock& block : blocks)
        if (block.taken) cavity.add_of_fan(block.edges, block.taken);
    if (cavity.has_large_fan())
        for (const FanBlock& block : blocks)
            if (block.lanes) cavity.add_to_rest_of_fan(block.edges, block.lanes);
    file(live);
}

void Fan::file_all(LiveCircles& live) {
    const float from_x = m_sweep.vertices[m_point].x;
    for (FanBlock& block : std::span(m_blocks.data(), m_used))
        m_kernels.find_nodes(block, from_x, live.slab(), block.nodes);
    file(live);
}

// First where, then all of them in one loop.
void Fan::file(LiveCircles& live) {
    if (m_to_file.size() < block_size * m_used) m_to_file.resize(2 * block_size * m_used);
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_used; ++i) {
        if (!m_blocks[i].lanes) continue;
        const LanesOfEight& lanes = lanes_of_eight.of_mask[m_blocks[i].lanes];
        list_lanes(lanes, static_cast<std::uint32_t>(block_size * i), &m_to_file[count]);
        count += lanes.count;
    }
    live.file(m_blocks.data(), std::span(m_to_file.data(), count), m_point);
    m_used = 0;
}
