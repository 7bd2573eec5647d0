/** @file
 *  Delaunay triangulation of point sets.
 */
#ifndef BVUTIL_TRIANGULATION_H
#define BVUTIL_TRIANGULATION_H

#include "bvutil/api.h"

/** @addtogroup triangulation
 *  @{ */

BVUTIL_BEGIN_C

/** Triangulates the convex hull of a set of points (Delaunay).
 *
 *  The incremental method of A. Bowyer, "Computing Dirichlet tessellations", and D. F. Watson, "Computing the
 *  n-dimensional Delaunay tessellation" (both The Computer Journal 24(2), 1981), with the points taken by
 *  ascending x, then y, and all arithmetic in single precision. The points are a cloud: their order describes
 *  no edges and no boundary is enforced. Equal points count once (0 equals -0), the first of them is kept.
 *
 *  - The sweep starts with one triangle around the bounding box widened by 1 % on each side and 400 units.
 *  - A point on a circumcircle, or within a squared radius enlarged by the factor 1.000001, counts as inside:
 *    the triangle is replaced. Coordinates that are tiny against 400 or close to each other's last digit
 *    therefore give triangles that overlap; the result is still the same on every machine, bit for bit.
 *  - The triangles are in the order of their circumcentres, by x, then y (a centre that is not a number comes
 *    last), among equal ones by the first point that lies right of the circle, then by the order in which
 *    the sweep made them.
 *  - The third vertex of a triangle is the one that the sweep reached last; the first two are in the order of
 *    the sweep. Nothing is said about the sense of rotation.
 *
 *  Time grows with little more than the number of points; memory is some 70 bytes for each point, most of
 *  them the result, and up to 250 where most circles are in use at once. Not where most points lie on one
 *  circle or parabola or on few lines: there the enlarged circles hold so many of them that the method makes
 *  far more triangles, in time that is quadratic or worse.
 *
 *  @param pointCount     Number of points. Fewer than three different points give no triangles.
 *  @param points         x and y of each point, @p pointCount pairs back to back. Not changed. Points with a
 *                        coordinate that is not a number are left out; an infinite coordinate, or an extent
 *                        beyond the range of float, gives no triangles.
 *  @param triangles      Receives the array: x1, y1, x2, y2, x3, y3 of each triangle back to back. To be
 *                        released with FreeTriangs, also when it has no records.
 *  @param triangleCount  Receives the number of triangles.
 *  @return 1: done. 0: a null argument, nothing is stored; or out of memory (counts whose points cannot be
 *          in memory among them): @p triangles receives null, @p triangleCount 0.
 */
BVUTIL_API int BVUTIL_CALL Triangulieren(unsigned int pointCount, const float* points, float** triangles,
                                         unsigned int* triangleCount);

/** Releases what Triangulieren has given.
 *
 *  @param triangles  The variable that received the array; set to null. It may hold null already.
 *  @return 1: done. 0: the argument is null.
 */
BVUTIL_API int BVUTIL_CALL FreeTriangs(float** triangles);

BVUTIL_END_C

/** @} */

#endif
