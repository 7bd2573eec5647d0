// Circumcircles in single precision, four at a time. Every lane takes exactly the steps that a scalar
// calculation would take: SSE2's operations are rounded as the scalar ones are, no step is fused or
// estimated.
#pragma once

#include "calcgeom/lanes.h"

#include <emmintrin.h>

struct Vertex {
    float x, y;
};

// Four vertices, each coordinate on its own.
struct Vertices {
    __m128 x, y;
};

// The same vertex four times.
inline Vertices splat(const Vertex& v) {
    return {_mm_set1_ps(v.x), _mm_set1_ps(v.y)};
}

// Four circles as the sweep needs them.
struct Circles {
    __m128 cx, cy;   // centre
    __m128 right;    // cx + r: a point beyond can no longer change the triangle
    __m128 enlarged; // r * r * 1.000001: a point whose squared distance is at most this is inside

    // The lanes whose circle has the point inside. A triangle is finished as soon as a point lies beyond
    // cx + r. As x grows and cx + r is fixed, that need not be noticed at once, but the enlarged circle may
    // still have a later point inside: such a one must not be taken, hence the second comparison.
    unsigned inside(__m128 x, __m128 y) const {
        const __m128 dx = _mm_sub_ps(x, cx), dy = _mm_sub_ps(y, cy);
        const __m128 squared = _mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy));
        return mask_of(_mm_and_ps(_mm_cmpge_ps(enlarged, squared), _mm_cmpngt_ps(x, right)));
    }
};

inline __m128 select(__m128 mask, __m128 if_set, __m128 if_clear) {
    return _mm_or_ps(_mm_and_ps(mask, if_set), _mm_andnot_ps(mask, if_clear));
}

// Whether a difference of two y values is too small to divide by.
inline __m128 is_flat(__m128 difference) {
    const __m128 epsilon = _mm_set1_ps(1.1920929e-7f);
    const __m128 magnitude = _mm_andnot_ps(_mm_set1_ps(-0.0f), difference);
    return _mm_cmplt_ps(magnitude, epsilon);
}

// The centre's x for three points on one horizontal line: the middle of two of them.
inline __m128 middle_on_line(__m128 x1, __m128 x2, __m128 x3) {
    // The operands of max and min are in the order that keeps "x3 > x2 ? x3 : x2" for equal values, too.
    const __m128 rising = _mm_cmpgt_ps(x2, x1);
    const __m128 sum = select(rising, _mm_add_ps(x1, _mm_max_ps(x3, x2)), _mm_add_ps(x2, _mm_min_ps(x3, x1)));
    return _mm_mul_ps(sum, _mm_set1_ps(0.5f));
}

// The circles through p1, p2, p3: the intersection of the perpendicular bisectors of the
// first two sides. A flat side has a vertical bisector, and the centre then has the x of that side's middle.
inline Circles circumcircles(const Vertices& p1, const Vertices& p2, const Vertices& p3) {
    const auto [x1, y1] = p1;
    const auto [x2, y2] = p2;
    const auto [x3, y3] = p3;
    const __m128 half = _mm_set1_ps(0.5f), sign = _mm_set1_ps(-0.0f);
    const __m128 d12 = _mm_sub_ps(y2, y1), d23 = _mm_sub_ps(y3, y2);
    const __m128 flat12 = is_flat(d12), flat23 = is_flat(d23);
    const __m128 m1 = _mm_div_ps(_mm_xor_ps(_mm_sub_ps(x2, x1), sign), d12);
    const __m128 m2 = _mm_div_ps(_mm_xor_ps(_mm_sub_ps(x3, x2), sign), d23);
    const __m128 mx1 = _mm_mul_ps(_mm_add_ps(x1, x2), half), my1 = _mm_mul_ps(_mm_add_ps(y1, y2), half);
    const __m128 mx2 = _mm_mul_ps(_mm_add_ps(x2, x3), half), my2 = _mm_mul_ps(_mm_add_ps(y2, y3), half);

    const __m128 numerator =
        _mm_sub_ps(_mm_add_ps(_mm_sub_ps(_mm_mul_ps(m1, mx1), _mm_mul_ps(m2, mx2)), my2), my1);
    Circles c;
    c.cx = _mm_div_ps(numerator, _mm_sub_ps(m1, m2));
    c.cx = select(flat12, mx1, select(flat23, mx2, c.cx));
    // The height is taken on the bisector of the first side, or of the second when the first is flat.
    const __m128 m = select(flat12, m2, m1), mx = select(flat12, mx2, mx1), my = select(flat12, my2, my1);
    c.cy = _mm_add_ps(_mm_mul_ps(m, _mm_sub_ps(c.cx, mx)), my);
    const __m128 level = _mm_and_ps(flat12, flat23);
    if (mask_of(level)) {
        c.cx = select(level, middle_on_line(x1, x2, x3), c.cx);
        c.cy = select(level, y1, c.cy);
    }

    const __m128 dx = _mm_sub_ps(x1, c.cx), dy = _mm_sub_ps(y1, c.cy);
    const __m128 squared = _mm_add_ps(_mm_mul_ps(dx, dx), _mm_mul_ps(dy, dy));
    // The root is specified in double, stored as a float. A double has more than twice a float's digits
    // and two, hence rounding the double root again gives the float root (Figueroa, 1995): sqrtps it is.
    c.right = _mm_add_ps(c.cx, _mm_sqrt_ps(squared));
    c.enlarged = _mm_mul_ps(squared, _mm_set1_ps(1.000001f));
    return c;
}
