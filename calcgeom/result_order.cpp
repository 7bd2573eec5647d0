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
using Run = std::span<Ranked>::iterator;

// The point at which the sweep finishes the triangle: the first after its last vertex that lies beyond its
// circle, or the end. Points beyond are the tail of the order; no point is beyond what is not a number.
Place finishing_point(const FinishedTriangle& t, float right, const SweepVertices& sweep) {
    const auto& vertices = sweep.vertices;
    const auto beyond = std::partition_point(vertices.begin() + static_cast<std::ptrdiff_t>(t.v3) + 1,
                                             vertices.end(), [&](const Vertex& p) { return !(p.x > right); });
    auto place = static_cast<Place>(beyond - vertices.begin());
    while (sweep.super.has(place))
        ++place; // the corners are no points of the sweep
    return place;
}

// Whether the sweep finishes s before t: by the finishing points, which need not be looked for where the
// right edges are the same, as then the earlier triangle is not finished later. Triangles finished by the
// same point were passed in the order of their creation: by creating point, then in the order of the edges
// around it.
bool finished_before(const FinishedTriangle& s, const FinishedTriangle& t, const SweepVertices& sweep) {
    // Calculated again: only triangles of equal centres need their circles' right edges.
    const auto gathered = [&](Place of_s, Place of_t) {
        const Vertex &p = sweep.vertices[of_s], &q = sweep.vertices[of_t];
        return Vertices{_mm_setr_ps(p.x, q.x, p.x, q.x), _mm_setr_ps(p.y, q.y, p.y, q.y)};
    };
    alignas(16) float right[4];
    _mm_store_ps(right,
                 circumcircles(gathered(s.v1, t.v1), gathered(s.v2, t.v2), gathered(s.v3, t.v3)).right);
    const auto [right_of_s, right_of_t, again_s, again_t] = right;
    if (right_of_s != right_of_t) {
        const Place end_of_s = finishing_point(s, right_of_s, sweep);
        const Place end_of_t = finishing_point(t, right_of_t, sweep);
        if (end_of_s != end_of_t) return end_of_s < end_of_t;
    }
    return std::tie(s.v3, s.v1, s.v2) < std::tie(t.v3, t.v1, t.v2);
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

// What comes out is in `ranked`.
void rank(std::span<const FinishedTriangle> triangles, const SweepVertices& sweep, std::span<Ranked> ranked,
          std::span<Ranked> spare) {
    const auto by_key = [](const Ranked& r) { return r.key; };
    const auto equal_keys = [](const Ranked& a, const Ranked& b) { return a.key == b.key; };
    const auto key_of_y = [&](const Ranked& r) { return float_key(triangles[r.index].cy); };
    for (std::uint32_t i = 0; i < ranked.size(); ++i)
        spare[i] = {float_key(triangles[i].cx), i};
    radix_sort(spare, ranked, by_key);

    std::size_t tied = 0;
    for (std::size_t i = 1; i < ranked.size(); ++i)
        tied += ranked[i].key == ranked[i - 1].key;
    if (tied > ranked.size() / 16) { // columns of centres
        for (Ranked& r : ranked)
            r.key = key_of_y(r);
        radix_sort(ranked, spare, by_key);
        for (Ranked& r : spare)
            r.key = float_key(triangles[r.index].cx);
        radix_sort(spare, ranked, by_key);
    }
    const auto by_y = [&](const Ranked& a, const Ranked& b) { return key_of_y(a) < key_of_y(b); };
    const auto equal_y = [&](const Ranked& a, const Ranked& b) { return key_of_y(a) == key_of_y(b); };
    for_runs(ranked.begin(), ranked.end(), equal_keys, [&](Run begin, Run end) {
        if (!std::is_sorted(begin, end, by_y)) std::sort(begin, end, by_y);
        for_runs(begin, end, equal_y, [&](Run b, Run e) {
            std::sort(b, e, [&](const Ranked& r, const Ranked& s) {
                return finished_before(triangles[r.index], triangles[s.index], sweep);
            });
        });
    });
}

} // namespace

std::unique_ptr<float[]> in_result_order(std::span<const FinishedTriangle> triangles,
                                         const SweepVertices& sweep) {
    // New memory is slow, and the array is large enough to sort in: the ranks end in its last third, where no
    // triangle is written over one that is still to come.
    constexpr std::size_t floats = 6;
    static_assert(3 * sizeof(Ranked) == floats * sizeof(float));
    const std::size_t count = triangles.size();
    auto array = std::make_unique_for_overwrite<float[]>(floats * count);
    auto* const first_third = reinterpret_cast<Ranked*>(array.get());
    const std::span ranked(first_third + 2 * count, count);
    rank(triangles, sweep, ranked, std::span(first_third, count));
    float* out = array.get();
    for (std::size_t i = 0; i < count; ++i) {
        const FinishedTriangle& triangle = triangles[ranked[i].index];
        for (const Place place : {triangle.v1, triangle.v2, triangle.v3}) {
            const Vertex vertex = sweep.vertices[place];
            *out++ = vertex.x;
            *out++ = vertex.y;
        }
    }
    return array;
}
