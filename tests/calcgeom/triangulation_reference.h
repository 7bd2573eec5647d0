// The triangulation in its plainest form: ordered collections, scalar arithmetic, every triangle looked at
// for every point. Slow, and right by reading; the library's own is held against it bit by bit.
#pragma once

#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <set>
#include <utility>
#include <vector>

namespace reference {

struct Vertex {
    float x, y;
    bool operator<(const Vertex& other) const { return x < other.x || (x == other.x && y < other.y); }
};

struct Triangle {
    const Vertex *v1, *v2, *v3;
    float cx = 0, cy = 0, r = 0, e = 0;

    Triangle(const Vertex* p1, const Vertex* p2, const Vertex* p3) : v1(p1), v2(p2), v3(p3) {
        set_centre();
        const float r2 = (v1->x - cx) * (v1->x - cx) + (v1->y - cy) * (v1->y - cy);
        r = static_cast<float>(std::sqrt(static_cast<double>(r2)));
        e = r2 * 1.000001f;
    }

    void set_centre() {
        const float x1 = v1->x, y1 = v1->y, x2 = v2->x, y2 = v2->y, x3 = v3->x, y3 = v3->y;
        const auto flat = [](float d) { return -1.1920929e-7f < d && d < 1.1920929e-7f; };
        const float d12 = y2 - y1, d23 = y3 - y2;
        if (flat(d12) && flat(d23)) {
            cy = y1;
            cx = x2 > x1 ? (x1 + (x3 > x2 ? x3 : x2)) * 0.5f : (x2 + (x1 > x3 ? x3 : x1)) * 0.5f;
        } else if (flat(d12)) {
            const float m2 = -(x3 - x2) / d23;
            cx = (x1 + x2) / 2.0f;
            cy = m2 * (cx - (x2 + x3) / 2.0f) + (y2 + y3) / 2.0f;
        } else if (flat(d23)) {
            const float m1 = -(x2 - x1) / d12;
            cx = (x2 + x3) / 2.0f;
            cy = m1 * (cx - (x1 + x2) / 2.0f) + (y1 + y2) / 2.0f;
        } else {
            const float m1 = -(x2 - x1) / d12, m2 = -(x3 - x2) / d23;
            const float mx1 = (x1 + x2) / 2.0f, my1 = (y1 + y2) / 2.0f;
            const float mx2 = (x2 + x3) / 2.0f, my2 = (y2 + y3) / 2.0f;
            cx = (m1 * mx1 - m2 * mx2 + my2 - my1) / (m1 - m2);
            cy = m1 * (cx - mx1) + my1;
        }
    }

    // By centre, x before y; what is not a number counts as larger than every number.
    bool operator<(const Triangle& other) const {
        const auto less = [](float a, float b) { return a < b || (std::isnan(b) && !std::isnan(a)); };
        return less(cx, other.cx) || (!less(other.cx, cx) && less(cy, other.cy));
    }
};

struct EdgeLess {
    using Edge = std::pair<const Vertex*, const Vertex*>;
    bool operator()(const Edge& a, const Edge& b) const {
        return *a.first < *b.first || (!(*b.first < *a.first) && *a.second < *b.second);
    }
};
using Edges = std::set<EdgeLess::Edge, EdgeLess>;

inline void toggle(Edges& edges, const Vertex* p, const Vertex* q) {
    const auto edge = *q < *p ? std::pair(q, p) : std::pair(p, q);
    if (const auto [place, added] = edges.insert(edge); !added) edges.erase(place);
}

// Coordinates of the triangles, six floats each. Points with a coordinate that is not a number are left out.
inline std::vector<float> triangulate(const float* coordinates, std::size_t count) {
    std::set<Vertex> points;
    for (std::size_t i = 0; i < count; ++i) {
        const Vertex p{coordinates[2 * i], coordinates[2 * i + 1]};
        if (!std::isnan(p.x) && !std::isnan(p.y)) points.insert(p);
    }
    if (points.size() < 3) return {};

    const float xmin = points.begin()->x, xmax = points.rbegin()->x;
    float ymin = points.begin()->y, ymax = ymin;
    for (const Vertex& p : points) {
        if (p.y < ymin) ymin = p.y;
        if (p.y > ymax) ymax = p.y;
    }
    const float dx = xmax - xmin, dy = ymax - ymin, ex = 0.01f * dx, ey = 0.01f * dy;
    const float left = xmin - ex, right = xmax + ex, bottom = ymin - ey, top = ymax + ey;
    const float width = dx + 2.0f * ex, height = dy + 2.0f * ey, s = 1.7320508f;
    const Vertex a{left - height * s / 3.0f - 400.0f, bottom - 400.0f};
    const Vertex b{right + height * s / 3.0f + 400.0f, bottom - 400.0f};
    const Vertex c{(left + right) * 0.5f, top + width * s * 0.5f + 400.0f};

    std::multiset<Triangle> working, result;
    working.emplace(&a, &b, &c);
    const auto complete = [&](const Triangle& t) {
        for (const Vertex* v : {t.v1, t.v2, t.v3})
            if (v == &a || v == &b || v == &c) return;
        result.insert(t);
    };
    for (const Vertex& p : points) {
        for (auto t = working.begin(); t != working.end();)
            if (p.x > t->cx + t->r) {
                complete(*t);
                t = working.erase(t);
            } else {
                ++t;
            }
        Edges edges;
        for (auto t = working.begin(); t != working.end();)
            if (t->e >= (p.x - t->cx) * (p.x - t->cx) + (p.y - t->cy) * (p.y - t->cy)) {
                toggle(edges, t->v1, t->v2);
                toggle(edges, t->v2, t->v3);
                toggle(edges, t->v3, t->v1);
                t = working.erase(t);
            } else {
                ++t;
            }
        for (const auto& [first, second] : edges)
            working.emplace(first, second, &p);
    }
    for (const Triangle& t : working)
        complete(t);

    std::vector<float> written;
    written.reserve(6 * result.size());
    for (const Triangle& t : result)
        for (const Vertex* v : {t.v1, t.v2, t.v3})
            written.insert(written.end(), {v->x, v->y});
    return written;
}

} // namespace reference
