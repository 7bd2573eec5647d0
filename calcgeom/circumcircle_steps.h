// The steps of circumcircles, for as many lanes as `Lanes` has. Included once for each width, into a
// namespace of its own that has
//     Lanes                  a vector of floats
//     Comparison             of two of them: a vector of integers, 0 or -1
//     all(value)             the value in every lane
//     root(lanes)
//     mask_of(comparison)    a bit for each lane that is set
// LANE_STEP makes a function one of the instructions that the width needs: it is inlined in any case, as
// compilers do not mix functions of different instructions by themselves.

// Vertices, each coordinate on its own.
struct Vertices {
    Lanes x, y;
};

// The same vertex in every lane.
LANE_STEP Vertices splat(const Vertex& v) {
    return {all(v.x), all(v.y)};
}

// Circles as the sweep needs them.
struct Circles {
    Lanes cx, cy;   // centre
    Lanes right;    // cx + r: a point beyond can no longer change the triangle
    Lanes enlarged; // r * r * 1.000001: a point whose squared distance is at most this is inside

    // The lanes whose circle has the point inside. A triangle is finished as soon as a point lies beyond
    // cx + r. As x grows and cx + r is fixed, that need not be noticed at once, but the enlarged circle may
    // still have a later point inside: such a one must not be taken, hence the second comparison.
    LANE_STEP unsigned inside(Lanes x, Lanes y) const {
        const Lanes dx = x - cx, dy = y - cy;
        return mask_of((enlarged >= dx * dx + dy * dy) & ~(x > right));
    }
};

// Whether a difference of two y values is too small to divide by.
LANE_STEP Comparison is_flat(Lanes difference) {
    const Lanes epsilon = all(1.1920929e-7f);
    return (difference < epsilon) & (difference > -epsilon);
}

// The centre's x for three points on one horizontal line: the middle of two of them.
LANE_STEP Lanes middle_on_line(Lanes x1, Lanes x2, Lanes x3) {
    return (x2 > x1 ? x1 + (x3 > x2 ? x3 : x2) : x2 + (x1 > x3 ? x3 : x1)) * all(0.5f);
}

// The circles through p1, p2, p3: the intersection of the perpendicular bisectors of the
// first two sides. A flat side has a vertical bisector, and the centre then has the x of that side's middle.
LANE_STEP Circles circumcircles(const Vertices& p1, const Vertices& p2, const Vertices& p3) {
    const auto [x1, y1] = p1;
    const auto [x2, y2] = p2;
    const auto [x3, y3] = p3;
    const Lanes half = all(0.5f);
    const Lanes d12 = y2 - y1, d23 = y3 - y2;
    const Comparison flat12 = is_flat(d12), flat23 = is_flat(d23);
    const Lanes m1 = -(x2 - x1) / d12, m2 = -(x3 - x2) / d23;
    const Lanes mx1 = (x1 + x2) * half, my1 = (y1 + y2) * half;
    const Lanes mx2 = (x2 + x3) * half, my2 = (y2 + y3) * half;

    Circles c;
    c.cx = (m1 * mx1 - m2 * mx2 + my2 - my1) / (m1 - m2);
    c.cx = flat12 ? mx1 : flat23 ? mx2 : c.cx;
    // The height is taken on the bisector of the first side, or of the second when the first is flat.
    const Lanes m = flat12 ? m2 : m1, mx = flat12 ? mx2 : mx1, my = flat12 ? my2 : my1;
    c.cy = m * (c.cx - mx) + my;
    const Comparison level = flat12 & flat23;
    if (mask_of(level)) {
        c.cx = level ? middle_on_line(x1, x2, x3) : c.cx;
        c.cy = level ? y1 : c.cy;
    }

    const Lanes dx = x1 - c.cx, dy = y1 - c.cy, squared = dx * dx + dy * dy;
    // The root is specified in double, stored as a float. A double has more than twice a float's digits
    // and two, hence rounding the double root again gives the float root (Figueroa, 1995): sqrtps it is.
    c.right = c.cx + root(squared);
    c.enlarged = squared * all(1.000001f);
    return c;
}
