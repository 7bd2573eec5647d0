// The kernels of circle_kernels.h, for as many lanes as `Lanes` has. Included behind circumcircle_steps.h, in
// the namespace of the same width, which has beside it
//     gathered(vertices, places)    the vertices of every other place from `places` on
// LANE_KERNEL makes a function that is called by its address one of the width's instructions.

constexpr unsigned width = sizeof(Lanes) / sizeof(float);

LANE_STEP const Lanes& at(const float* lanes) {
    return *reinterpret_cast<const Lanes*>(lanes);
}

LANE_STEP void put(float* lanes, Lanes value) {
    *reinterpret_cast<Lanes*>(lanes) = value;
}

// As Slab has it, from 0 on. Monotone for all floats: 0 · infinity, of a slab without height, is not above 0.
LANE_STEP Comparison leaf_of(Lanes y, const Slab& slab) {
    const Lanes zero = all(0), last = all(static_cast<float>(slab.leaves - 1));
    const Lanes scaled = (y - all(slab.bottom)) * all(slab.leaves_per_unit);
    const Lanes from_first = scaled > zero ? scaled : zero;
    return __builtin_convertvector(from_first < last ? from_first : last, Comparison);
}

// A point y of the slab is inside only if (x - cx)² + (y - cy)² as calculated is at most E, the enlarged
// squared radius. Each calculated operation errs by at most u = 2^-24 of its result (a square below the
// normal range by 2^-150), and nothing cancels after the differences, which err by u as well; hence then (y -
// cy)² <= E (1 + 5u) - (x - cx)² + 2^-148. Over the rest of the slab |x - cx| is at least D, the distance of
// cx from the interval of x, calculated with an error of u, its square with 3u. The bound taken below is 2e-6
// E more than E - D² and at most 2u E less by its own rounding, when 11u = 7e-7 would do, and 1e-36 covers
// what is too small for relative errors; the surplus also covers the root's rounding. cy - h and cy + h need
// no margin of their own: rounding is monotone, so y >= cy - h leaves y, a float, at or above the rounded
// cy - h. The map from y to leaves is monotone, too.
LANE_STEP void find_nodes(Lanes cx, Lanes cy, Lanes enlarged, float from_x, const Slab& slab,
                          std::uint32_t* nodes) {
    const Lanes zero = all(0);
    const Lanes before = all(from_x) - cx, behind = cx - all(slab.right);
    const Lanes farther = before > behind ? before : behind;
    const Lanes distance = farther > zero ? farther : zero;
    const Lanes bound = enlarged * all(1.000002f) - distance * distance;
    const Lanes h = root((bound > zero ? bound : zero) + all(1e-36f));
    const Comparison lowest = leaf_of(cy - h, slab), highest = leaf_of(cy + h, slab);

    // From a leaf as many levels up as the two differ in low bits: a float, exact up to 2^24, has their
    // number in its exponent. An infinite circle may have anything inside: the root, 1.
    const Lanes different = __builtin_convertvector(lowest ^ highest, Lanes);
    const Comparison exponent = (reinterpret_cast<Comparison>(different) >> 23) - 126;
    const Comparison levels = exponent & (exponent > 0);
    const Comparison finite = enlarged < all(std::numeric_limits<float>::infinity());
    const Comparison covering = (static_cast<int>(slab.leaves) + lowest) >> levels;
    *reinterpret_cast<Comparison*>(nodes) = (finite & covering) | (~finite & 1);
}

LANE_KERNEL void find_nodes(const float* cx, const float* cy, const float* enlarged, float from_x,
                            const Slab& slab, std::uint32_t* nodes) {
    for (unsigned lane = 0; lane < block_size; lane += width)
        find_nodes(at(cx + lane), at(cy + lane), at(enlarged + lane), from_x, slab, nodes + lane);
}

LANE_KERNEL void connect(const Vertex* vertices, const Vertex& third, const Edge* edges, std::size_t count,
                         FanBlock* blocks) {
    const Vertices thirds{all(third.x), all(third.y)};
    for (std::size_t i = 0; i < count; i += block_size) {
        FanBlock& block = blocks[i / block_size];
        block.edges = edges + i;
        for (unsigned lane = 0; lane < block_size && i + lane < count; lane += width) {
            const Edge* const e = edges + i + lane;
            const Circles circles =
                circumcircles(gathered(vertices, &e->first), gathered(vertices, &e->second), thirds);
            put(block.cx + lane, circles.cx);
            put(block.cy + lane, circles.cy);
            put(block.enlarged + lane, circles.enlarged);
            put(block.right + lane, circles.right);
        }
    }
}

LANE_KERNEL void take_around(const Vertex& point, const Slab& slab, std::span<FanBlock> blocks,
                             FanSplit& split) {
    const Lanes x = all(point.x), y = all(point.y);
    Edge* const split_taken = split.taken.data();
    std::uint32_t* const split_others = split.others.data();
    std::size_t taken = 0, others = 0;
    std::uint32_t first = 0;
    for (FanBlock& block : blocks) {
        unsigned inside = 0;
        for (unsigned lane = 0; lane < block_size; lane += width) {
            const Circles circles{at(block.cx + lane), at(block.cy + lane), at(block.right + lane),
                                  at(block.enlarged + lane)};
            inside |= circles.inside(x, y) << lane;
        }
        const std::uint32_t outside = block.lanes & ~inside;
        for (unsigned lane = 0; outside >> lane; lane += width)
            find_nodes(at(block.cx + lane), at(block.cy + lane), at(block.enlarged + lane), point.x, slab,
                       block.nodes + lane);
        if (const std::uint32_t hit = block.lanes & inside) // rare in fans that are not large
            taken += list_edges(hit, block.edges, split_taken + taken);
        others += list_lanes(outside, first, split_others + others);
        first += block_size;
    }
    split.taken_count = taken;
    split.other_count = others;
}

LANE_KERNEL std::size_t take_hits(const Vertex& point, const CircleNode* nodes, std::uint32_t* used_of_node,
                                  std::span<const std::uint32_t> blocks, std::uint32_t* hits) {
    const Lanes x = all(point.x), y = all(point.y);
    std::size_t count = 0;
    for (const std::uint32_t number : blocks) {
        const CircleNode& node = nodes[number / node_blocks];
        const std::uint32_t shift = number % node_blocks * block_size;
        unsigned inside = 0;
        for (unsigned lane = 0; lane < block_size; lane += width) {
            const Lanes dx = x - at(node.cx + shift + lane), dy = y - at(node.cy + shift + lane);
            inside |= mask_of(at(node.enlarged + shift + lane) >= dx * dx + dy * dy) << lane;
        }
        std::uint32_t& used = used_of_node[number / node_blocks];
        inside &= used >> shift;
        used ^= inside << shift;
        count += list_lanes(inside, block_size * number, hits + count);
    }
    return count;
}
