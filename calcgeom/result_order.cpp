#include "calcgeom/result_order.h"

#include "calcgeom/radix_sort.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

namespace {

struct Ranked {
    std::uint32_t key;   // float_key of a coordinate of the centre
    std::uint32_t index; // into the triangles
};
using Run = std::vector<Ranked>::iterator;

// The right edge of the triangle's circle, calculated again: only triangles of equal centres need it.
float right_edge(const FinishedTriangle& t, const std::vector<Vertex>& vertices) {
    const Circles circle = circumcircles(splat(vertices[t.v1]), splat(vertices[t.v2]), splat(vertices[t.v3]));
    return _mm_cvtss_f32(circle.right);
}

// The point at which the sweep finishes the triangle: the first after its last vertex that lies beyond its
// circle, or the end. Points beyond are the tail of the order; no point is beyond what is not a number.
Place finishing_point(const FinishedTriangle& t, const SweepVertices& sweep) {
    const auto& vertices = sweep.vertices;
    const float right = right_edge(t, vertices);
    const auto beyond = std::partition_point(vertices.begin() + static_cast<std::ptrdiff_t>(t.v3) + 1,
                                             vertices.end(), [&](const Vertex& p) { return !(p.x > right); });
    auto place = static_cast<Place>(beyond - vertices.begin());
    while (sweep.super.has(place))
        ++place; // the corners are no points of the sweep
    return place;
}

// Calls `sort_run(begin, end)` for every run of at least two elements that are `alike`.
template <class Alike, class SortRun>
void for_runs(Run begin, Run end, Alike alike, SortRun sort_run) {
    while (begin != end) {
        Run next = begin + 1;
        while (next != end && alike(*begin, *next))
            ++next;
        if (next - begin > 1) sort_run(begin, next);
        begin = next;
    }
}

// Of equal centres the one that was finished first comes first; those that were finished by the same point
// were passed in the order of their creation: by creating point, then in the order of the edges around it.
void sort_equal_centres(Run begin, Run end, std::span<const FinishedTriangle> triangles,
                        const SweepVertices& sweep) {
    const auto history = [&](const Ranked& ranked) {
        const FinishedTriangle& t = triangles[ranked.index];
        return std::tuple(finishing_point(t, sweep), t.v3, t.v1, t.v2);
    };
    std::sort(begin, end, [&](const Ranked& a, const Ranked& b) { return history(a) < history(b); });
}

} // namespace

std::vector<std::uint32_t> result_order(std::span<const FinishedTriangle> triangles,
                                        const SweepVertices& sweep) {
    std::vector<Ranked> ranked(triangles.size()), spare(triangles.size());
    const auto by_key = [](const Ranked& r) { return r.key; };
    const auto equal_keys = [](const Ranked& a, const Ranked& b) { return a.key == b.key; };
    const auto key_of_y = [&](const Ranked& r) { return float_key(triangles[r.index].cy); };
    for (std::uint32_t i = 0; i < ranked.size(); ++i)
        ranked[i] = {float_key(triangles[i].cx), i};
    radix_sort(ranked, spare, by_key);

    std::size_t tied = 0;
    for (std::size_t i = 1; i < ranked.size(); ++i)
        tied += ranked[i].key == ranked[i - 1].key;
    if (tied > ranked.size() / 16) { // columns of centres
        for (Ranked& r : ranked)
            r.key = key_of_y(r);
        radix_sort(ranked, spare, by_key);
        for (Ranked& r : ranked)
            r.key = float_key(triangles[r.index].cx);
        radix_sort(ranked, spare, by_key);
    }
    const auto by_y = [&](const Ranked& a, const Ranked& b) { return key_of_y(a) < key_of_y(b); };
    const auto equal_y = [&](const Ranked& a, const Ranked& b) { return key_of_y(a) == key_of_y(b); };
    for_runs(ranked.begin(), ranked.end(), equal_keys, [&](Run begin, Run end) {
        if (!std::is_sorted(begin, end, by_y)) std::sort(begin, end, by_y);
        for_runs(begin, end, equal_y, [&](Run b, Run e) { sort_equal_centres(b, e, triangles, sweep); });
    });

    std::vector<std::uint32_t> order(ranked.size());
    std::transform(ranked.begin(), ranked.end(), order.begin(), [](const Ranked& r) { return r.index; });
    return order;
}
