#include "calcgeom/finished_order.h"

#include "calcgeom/radix_sort.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

// Numbers of equal intervals between two values; what lies outside is in the first or in the last, which also
// has what is not a number. Monotone in float_key where `to - from` is finite.
class Buckets {
  public:
    Buckets(float from, float to, std::size_t count)
        : m_from(from), m_per_unit(static_cast<float>(count) / (to - from)),
          m_last(static_cast<float>(count - 1)) {}
    std::uint32_t operator()(float value) const {
        const float scaled = (value - m_from) * m_per_unit, bounded = scaled < m_last ? scaled : m_last;
        return static_cast<std::uint32_t>(static_cast<std::int32_t>(bounded > 0 ? bounded : 0));
    }

  private:
    float m_from, m_per_unit, m_last;
};

constexpr std::size_t most_buckets = 1 << 20; // numbers that are floats, too

// Calls `use(run)` for every run of at least two elements that have the same key.
template <class Item, class Use>
void for_equal_keys(std::span<Item> items, Use use) {
    for (std::size_t begin = 0, end; begin < items.size(); begin = end) {
        end = begin + 1;
        while (end < items.size() && items[end].key == items[begin].key)
            ++end;
        if (end - begin > 1) use(items.subspan(begin, end - begin));
    }
}

// Of at least two; mostly they are two.
template <class Item, class Before>
void sort_run(std::span<Item> run, Before before) {
    if (run.size() > 2)
        std::sort(run.begin(), run.end(), before);
    else if (before(run[1], run[0]))
        std::swap(run[0], run[1]);
}

constexpr auto by_key = [](const auto& r, const auto& s) { return r.key < s.key; };

} // namespace

// The point at which the sweep finishes the triangle: the first after its last vertex that lies beyond its
// circle, or the end. Points beyond are the tail of the order; no point is beyond what is not a number.
Place FinishedOrder::finishing_point(const FinishedTriangle& t) const {
    const auto& vertices = m_sweep.vertices;
    const auto beyond =
        std::partition_point(vertices.begin() + static_cast<std::ptrdiff_t>(t.v3) + 1, vertices.end(),
                             [&](const Vertex& p) { return !(p.x > t.right); });
    auto place = static_cast<Place>(beyond - vertices.begin());
    while (m_sweep.super.has(place))
        ++place; // the corners are no points of the sweep
    return place;
}

// Of two triangles with the same centre: by the finishing points, which need not be looked for where the
// right edges are the same, as then the earlier triangle is not finished later. Triangles finished by the
// same point were passed in the order of their creation: by creating point, then in the order of the edges
// around it.
bool FinishedOrder::finished_before(const FinishedTriangle& s, const FinishedTriangle& t) const {
    if (s.right != t.right) {
        const Place end_of_s = finishing_point(s), end_of_t = finishing_point(t);
        if (end_of_s != end_of_t) return end_of_s < end_of_t;
    }
    return std::tie(s.v3, s.v1, s.v2) < std::tie(t.v3, t.v1, t.v2);
}

// Calls `put(place, i)` for each i below `count`, at least 1: the places are such that the values of 0 to
// `count` are in as many buckets. Where each bucket ends is in `ends` then.
template <class Value, class Put>
void FinishedOrder::distribute(std::size_t count, float from, float to, std::vector<std::uint32_t>& ends,
                               Value value, Put put) {
    const std::size_t buckets = std::min(count, most_buckets);
    const Buckets bucket(from, to, buckets);
    ends.assign(buckets, 0);
    if (m_bucket_of.size() < count) m_bucket_of.resize(count + count / 4);
    std::uint32_t *const bucket_of = m_bucket_of.data(), *const end = ends.data();
    for (std::size_t i = 0; i < count; ++i) {
        bucket_of[i] = bucket(value(i));
        ++end[bucket_of[i]];
    }
    std::uint32_t sum = 0;
    for (std::size_t b = 0; b < buckets; ++b)
        sum += std::exchange(end[b], sum);
    for (std::size_t i = 0; i < count; ++i)
        put(end[bucket_of[i]]++, i);
}

// Of one x: a pair, or a column, as grids have them.
void FinishedOrder::sort_by_y(Run run, Triangles triangles) {
    for (Ranked& r : run)
        r.key = float_key(triangles[r.index].cy);
    constexpr std::size_t large = 32;
    if (run.size() <= large) {
        sort_run(run, by_key);
    } else {
        m_spare.assign(run.begin(), run.end());
        const auto y = [&](std::size_t i) { return triangles[m_spare[i].index].cy; };
        const auto [lowest, highest] = std::minmax_element(run.begin(), run.end(), by_key);
        distribute(run.size(), triangles[lowest->index].cy, triangles[highest->index].cy, m_ends_of_column, y,
                   [&](std::size_t place, std::size_t i) { run[place] = m_spare[i]; });
        std::size_t begin = 0;
        for (const std::size_t end : m_ends_of_column) {
            if (end - begin > 1) sort_run(run.subspan(begin, end - begin), by_key);
            begin = end;
        }
    }
    for_equal_keys(run, [&](Run alike) {
        sort_run(alike, [&](const Ranked& r, const Ranked& s) {
            return finished_before(triangles[r.index], triangles[s.index]);
        });
    });
}

void FinishedOrder::sort_by_x(Run run, Triangles triangles) {
    sort_run(run, by_key);
    for_equal_keys(run, [&](Run alike) { sort_by_y(alike, triangles); });
}

std::span<const FinishedOrder::Ranked> FinishedOrder::rank(Triangles triangles) {
    m_ranked.resize(triangles.size());
    m_spare.resize(triangles.size());
    for (std::uint32_t i = 0; i < triangles.size(); ++i)
        m_spare[i] = {float_key(triangles[i].cx), i};
    radix_sort(Run(m_spare), Run(m_ranked), [](const Ranked& r) { return r.key; });
    for_equal_keys(Run(m_ranked), [&](Run alike) { sort_by_y(alike, triangles); });
    return m_ranked;
}

FinishedOrder::Leftmost FinishedOrder::rank_leftmost(Triangles triangles, float from, float ahead,
                                                     std::size_t wanted) {
    m_ranked.resize(triangles.size());
    const Run ranked(m_ranked);
    const auto x = [&](std::size_t i) { return triangles[i].cx; };
    distribute(triangles.size(), from, ahead, m_ends, x, [&](std::size_t place, std::size_t i) {
        ranked[place] = {float_key(triangles[i].cx), static_cast<std::uint32_t>(i)};
    });
    // The last bucket has all that lie ahead.
    std::size_t done = 0;
    for (std::size_t b = 0; b + 1 < m_ends.size() && done < wanted; ++b) {
        const std::size_t end = m_ends[b];
        if (end - done > 1) sort_by_x(ranked.subspan(done, end - done), triangles);
        done = end;
    }
    return {ranked.first(done), ranked.subspan(done)};
}
