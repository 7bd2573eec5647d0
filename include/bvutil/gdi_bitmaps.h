/** @file
 *  Bitmaps for user interfaces: a window region from a bitmap, embossed and transparent drawing.
 *
 *  All three work on the platform's device contexts and bitmaps. A bitmap that is given must not be selected
 *  into a device context, as the platform selects a bitmap into one at a time.
 */
#ifndef BVUTIL_GDI_BITMAPS_H
#define BVUTIL_GDI_BITMAPS_H

#include "bvutil/api.h"

#include <windows.h>

/** @addtogroup pictures
 *  @{ */

BVUTIL_BEGIN_C

/** Makes a region of all pixels of a bitmap that do not have the transparent colour.
 *
 *  @param bitmap            The bitmap; the region's point (0, 0) is its upper left corner.
 *  @param transparentColor  Blue in the lowest byte, then green and red, 0x00RRGGBB; the highest byte is
 *                           ignored. This is not the order of a COLORREF: RGB(255, 0, 0) stands for blue
 *  here. Only exactly equal pixels are transparent.
 *  @return The region, owned by the caller (DeleteObject()); an empty one when all pixels are transparent.
 *          Null when @p bitmap is null or no bitmap, when a device context or a copy of the bitmap cannot be
 *          made, and when memory runs out.
 */
BVUTIL_API HRGN BVUTIL_CALL BvUtil_CreateRegionFromBitmap(HBITMAP bitmap, DWORD transparentColor);

/** Draws a bitmap as a disabled control shows it: its dark pixels in the shadow colour of the system, with a
 *  highlight one pixel to the right and below, on the colour of a button's face.
 *
 *  @param target           The device context that is drawn on; its selections are restored.
 *  @param x,y              Upper left corner on the target.
 *  @param width,height     Size in pixels of what is drawn. The highlight reaches one pixel beyond it to the
 *                          right and below.
 *  @param bitmap           The bitmap. Its dark pixels, those nearer to black than to white, are what shows.
 *  @param sourceX,sourceY  Upper left corner in the bitmap.
 *  @return Not 0 when done. 0 for a null @p target or @p bitmap and when no device context can be made; other
 *          failures of the platform's drawing are not reported.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_DrawEmbossedBitmap(HDC target, int x, int y, int width, int height,
                                                     HBITMAP bitmap, int sourceX, int sourceY);

/** Draws a bitmap at its own size, except for the pixels of one colour.
 *
 *  @param target            The device context that is drawn on; its colours and selections are restored.
 *  @param bitmap            The bitmap.
 *  @param x,y               Upper left corner on the target.
 *  @param transparentColor  Pixels of exactly this colour leave the target as it was.
 *  @return Not 0 when done. 0 for a null @p target or @p bitmap, and when the mask cannot be made; other
 *          failures of the platform's drawing are not reported.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_DrawTransparentBitmap(HDC target, HBITMAP bitmap, short x, short y,
                                                        COLORREF transparentColor);

BVUTIL_END_C

/** @} */

#endif
