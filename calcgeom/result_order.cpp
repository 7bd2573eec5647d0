#include "calcgeom/result_order.h"

#include "calcgeom/circumcircle.h"
#include "calcgeom/radix_sort.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t floats = TriangleArray::floats;

// Whether the late triangle belongs before one of the written ones, of which only the coordinates are left.
// Not where the centres are equal: the sweep had finished the written one by then, and finishes the late one
// at the same point at best, having made it later.
bool belongs_before(const FinishedTriangle& late, const float* written) {
    Vertex v[3];
    std::memcpy(v, written, sizeof v);
    const Vertices corners[3] = {splat(v[0]), splat(v[1]), splat(v[2])};
    const Circles circle = circumcircles(corners[0], corners[1], corners[2]);
    return std::tuple(float_key(late.cx), float_key(late.cy)) <
           std::tuple(float_key(_mm_cvtss_f32(circle.cx)), float_key(_mm_cvtss_f32(circle.cy)));
}

} // namespace

ResultOrder::ResultOrder(const SweepVertices& sweep, TriangleRoom room, std::size_t window)
    : m_sweep(sweep), m_order(sweep), m_window(window), m_next_write(window), m_room(std::move(room)) {
    m_waiting.reserve(window + window / 4);
}

TriangleRoom::TriangleRoom(std::size_t count) {
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max() / sizeof(float) / floats;
    if (count <= most) array.reset(new (std::nothrow) float[floats * count]);
    if (array) triangles = count;
}

void ResultOrder::make_room(std::size_t more) {
    if (m_room.array && m_count + more <= m_room.triangles) return;
    TriangleRoom larger(std::max(m_count + more, m_room.triangles + m_room.triangles / 2));
    if (!larger.array) throw std::bad_alloc();
    move_to(std::move(larger));
}

void ResultOrder::move_to(TriangleRoom room) {
    std::copy_n(m_room.array.get(), floats * m_count, room.array.get());
    m_room = std::move(room);
}

inline void ResultOrder::write(const FinishedTriangle& triangle, float* to) const {
    for (const Place place : {triangle.v1, triangle.v2, triangle.v3}) {
        const Vertex vertex = m_sweep.vertices[place];
        *to++ = vertex.x;
        *to++ = vertex.y;
    }
}

// Of the waiting ones.
void ResultOrder::append(std::span<const FinishedOrder::Ranked> order) {
    make_room(order.size());
    float* to = m_room.array.get() + floats * m_count;
    for (const auto& ranked : order) {
        write(m_waiting[ranked.index], to);
        to += floats;
    }
    m_count += order.size();
}

void ResultOrder::write_some(float x, std::size_t live) {
    if (m_waiting.size() < m_next_write) return;
    // The first of the vertices is mostly a corner, the second the leftmost point.
    const float from = m_count > 0 ? m_written_to : m_sweep.vertices[1].x;
    // Where circles are large against the points' extent along x, nearly all would come late.
    const auto is_left = [&](const FinishedTriangle& t) { return t.cx < from; };
    if (m_count == 0 &&
        std::ranges::count_if(m_waiting, is_left) > static_cast<std::ptrdiff_t>(m_waiting.size() / 8)) {
        m_next_write = 2 * m_waiting.size();
        return;
    }
    const auto [leftmost, others] = m_order.rank_leftmost(m_waiting, from, x, m_waiting.size() / 4 * 3);
    if (!leftmost.empty()) {
        append(leftmost);
        m_written_to = m_waiting[leftmost.back().index].cx;
        m_rest.clear();
        for (const auto& ranked : others)
            m_rest.push_back(m_waiting[ranked.index]);
        m_rest.swap(m_waiting);
    }
    // Where circles are large here and there, as between clusters, more have to wait.
    constexpr std::size_t many = 32, most_patience = 64;
    if (m_late.size() > m_count / many) m_patience = std::min(2 * m_patience, most_patience);
    m_next_write = std::max({m_window, m_patience * live, 2 * m_waiting.size()});
}

// From the last one on, each before the first of the written triangles that it belongs before: looked for in
// steps that double, as there may be many late ones, and then in the last of these steps by halves.
void ResultOrder::merge_late() {
    make_room(m_late.size());
    const auto order = m_order.rank(m_late);
    float* const array = m_room.array.get();
    std::size_t end = m_count;
    for (std::size_t i = order.size(); i-- > 0;) {
        const FinishedTriangle& late = m_late[order[i].index];
        std::size_t place = end, behind = end;
        for (std::size_t step = 1; place > 0; step *= 2) {
            place -= std::min(step, place);
            if (!belongs_before(late, array + floats * place)) {
                ++place;
                break;
            }
            behind = place;
        }
        while (place < behind) {
            const std::size_t middle = place + (behind - place) / 2;
            if (belongs_before(late, array + floats * middle))
                behind = middle;
            else
                place = middle + 1;
        }
        std::copy_backward(array + floats * place, array + floats * end, array + floats * (end + i + 1));
        write(late, array + floats * (place + i));
        end = place;
    }
    m_count += m_late.size();
}

TriangleArray ResultOrder::finish() {
    m_rest = {};
    append(m_order.rank(m_waiting));
    merge_late();
    // Most points may be on a line. What is too large is better than nothing, though.
    if (m_count < m_room.triangles / 2) {
        TriangleRoom exact(m_count);
        if (exact.array) move_to(std::move(exact));
    }
    return {std::move(m_room.array), m_count};
}
