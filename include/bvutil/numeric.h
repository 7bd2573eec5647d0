/** @file
 *  Rounding, trigonometry in degrees, guarded division, sign.
 *
 *  All work in IEEE double precision. NaN arguments give NaN unless a function says otherwise.
 */
#ifndef BVUTIL_NUMERIC_H
#define BVUTIL_NUMERIC_H

#include "bvutil/api.h"

/** @addtogroup numeric
 *  @{ */

BVUTIL_BEGIN_C

/** Rounds to a multiple of a power of ten: floor(x / q + 0.5) * q with q the double nearest to 10 to the
 *  power @p p. Halves go up: 2.5 becomes 3, -2.5 becomes -2.
 *  What counts is the double: 1.234565, which has none, is stored a little lower and rounds down.
 *
 *  @param x  The number.
 *  @param p  Power of ten: 0 rounds to whole numbers, -5 to five decimals, 2 to hundreds. Where q is no
 *  finite number above 0 (@p p above 308 or below -323) the formula gives NaN.
 *  @return The formula's value, each step rounded to double. */
BVUTIL_API double BVUTIL_CALL BvUtil_PRound(double x, int p);

/** BvUtil_PRound() of @p x as a double; the result is narrowed to float. */
BVUTIL_API float BVUTIL_CALL BvUtil_FRound(float x, int p);

/** Cuts off the fraction: 2.7 gives 2, -2.7 gives -2. Despite its name it does not round (kept: callers rely
 *  on it).
 *  @return The whole part; the lowest long, -2147483648, when it is out of range and for NaN. */
BVUTIL_API long BVUTIL_CALL BvUtil_LRound(double x);

/** @return sin(@p degrees * pi/180); NaN for an infinity. */
BVUTIL_API double BVUTIL_CALL sin_deg(double degrees);
/** @return cos(@p degrees * pi/180); NaN for an infinity. */
BVUTIL_API double BVUTIL_CALL cos_deg(double degrees);
/** @return Angle in degrees, -90 to 90, whose tangent is @p x. */
BVUTIL_API double BVUTIL_CALL atan_deg(double x);
/** @return Angle in degrees, -180 to 180, of the point (@p x, @p y); 0 or 180 for the origin, as atan2(). */
BVUTIL_API double BVUTIL_CALL atan2_deg(double y, double x);
/** Not the counterpart of cos_deg(): the argument is converted, not the result (kept: callers rely on it).
 *  @return acos(@p x * pi/180) in radians; NaN when |x * pi/180| is above 1. */
BVUTIL_API double BVUTIL_CALL acos_deg(double x);

/** @return @p a / @p b; 0 when @p b is 0 or -0. */
BVUTIL_API double BVUTIL_CALL ddiv(double a, double b);
/** The same in single precision. */
BVUTIL_API float BVUTIL_CALL fdiv(float a, float b);
/** @return -1 below 0, 1 above 0, else 0 (also for -0 and NaN). */
BVUTIL_API double BVUTIL_CALL fsgn(double x);

BVUTIL_END_C

/** @} */

#endif
