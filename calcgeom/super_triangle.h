// The triangle around all points, and the vertices of the sweep: the points and that triangle's corners.
#pragma once

#include "calcgeom/circumcircle.h"

#include <cstdint>
#include <vector>

// A vertex is named by its place in the vertex order (by x, then y), so that places compare as vertices do.
using Place = std::uint32_t;

// Places of the super triangle's corners.
struct SuperTriangle {
    Place a, b, c;
    bool has(Place vertex) const { return vertex == a || vertex == b || vertex == c; }
};

struct SweepVertices {
    std::vector<Vertex> vertices;
    SuperTriangle super;
    // Among coordinates so large that the margins around the points are rounded away, a corner may fall on
    // a point or on another corner. It stays a vertex of its own, yet edges are compared by coordinates.
    bool corners_coincide;

    // The first of the vertices at the same coordinates.
    Place first_equal(Place place) const;
};

// `points` as point_set gives them, at least one; best with room for three more.
SweepVertices with_super_triangle(std::vector<Vertex> points);
