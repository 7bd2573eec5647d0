/** @file
 *  GDI+ through plain functions and two kinds of handles: bitmaps from files, device bitmaps and raw pixels,
 *  resizing, saving, drawing, filling and printing.
 *
 *  gdiPlusInit() comes before any other call, gdiPlusExit() at the end, both from one thread.
 *
 *  @par Handles
 *  An image handle points to an object laid out as the platform's wrapper class `Gdiplus::Bitmap` (native
 *  bitmap and last status; 12 bytes and a load status), a graphics handle to one laid out as
 *  `Gdiplus::Graphics`. A caller may use them as such, and may pass its own objects of these classes. Handles
 *  are released by gdiPlusFreeImage() and gdiPlusFreeGraphics(), never by `delete`: compilers differ in how
 *  that is called. (The virtual table is the one that the platform's own compiler expects.)
 *
 *  @par Results
 *  1 for done, 0 for refused. Null handles, buffers and out-parameters give 0, and so does a bitmap, or
 *  graphics of a device context, that cannot be made: out-parameters are then untouched. When a later GDI+
 *  call on a handle fails, its status is kept in the handle (`GetLastStatus()` of the wrapper class) and the
 *  result is 1 all the same, unless a comment says otherwise.
 *
 *  @par Pixels
 *  Raw pixels are blue, green, red and, with four bytes, one more. A bitmap that is made of them is
 *  independent of the caller's buffer. Sizes below 1 and buffers above 2 GB are refused. The platform wants
 *  row lengths of 32-bit and 24-bit bitmaps to be multiples of 4.
 */
#ifndef BVUTIL_GDIPLUS_SERVICES_H
#define BVUTIL_GDIPLUS_SERVICES_H

#include "bvutil/api.h"

#include <windows.h>

/** @addtogroup pictures
 *  @{ */

#ifdef __cplusplus
namespace Gdiplus {
class Image;
class Bitmap;
class Graphics;
} // namespace Gdiplus
/** An image handle. */
typedef Gdiplus::Bitmap* BvUtilImage;
/** A graphics handle. */
typedef Gdiplus::Graphics* BvUtilGraphics;
#else
typedef struct BvUtilImageObject* BvUtilImage;
typedef struct BvUtilGraphicsObject* BvUtilGraphics;
#endif

BVUTIL_BEGIN_C

/** An image in memory, for gdiPlusBitmapFromRamStruct(). */
typedef struct RamStruct {
    const BYTE* data;  /**< Rows, bottom row first; pixels stand 4 bytes apart. */
    int reserved;      /**< Not read. */
    int height;        /**< Rows. */
    int width;         /**< Pixels of a row. */
    int bytesPerPixel; /**< A row has width times this many bytes. Meant to be 4. */
} RamStruct;

/** @name Start and end
 *  @{ */

/** Starts GDI+, once in the life of the process: also after gdiPlusExit() it is not started again.
 *  @return 1, also when GDI+ could not be started. */
BVUTIL_API int BVUTIL_CALL gdiPlusInit(void);

/** Shuts GDI+ down. All handles must have been freed. @return 1. */
BVUTIL_API int BVUTIL_CALL gdiPlusExit(void);

/** Does nothing. @return 1. */
BVUTIL_API int BVUTIL_CALL gdiPlusLoad(void);

/** @} */
/** @name Encoders and files
 *  @{ */

/** Finds the encoder of a mime type.
 *  @param mimeType  Such as "image/png", in the ANSI code page; compared exactly, case included.
 *  @param clsid     Receives the encoder's class; untouched when there is none.
 *  @return 1 when found, else 0. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetEncoderClsid(const char* mimeType, CLSID* clsid);

/** Opens a picture file of any kind that GDI+ decodes. The platform may keep the file open, and so closed to
 *  writers, until the image is freed.
 *  @param path   The file, in the ANSI code page.
 *  @param image  Receives the handle, released by gdiPlusFreeImage(). */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmapFromFile(const char* path, BvUtilImage* image);

/** Saves an image. An existing file is replaced.
 *  @param path    The file, in the ANSI code page.
 *  @param format  1: JPEG of quality 100. 2: GIF. 3: TIFF. Any other value, 0 and 4 among them: BMP.
 *  @return 0 for null, else 1: whether the file was written, the handle's status tells. */
BVUTIL_API int BVUTIL_CALL gdiPlusSaveImage(BvUtilImage image, const char* path, int format);

/** Frees an image. @return 1; 0 for null. */
BVUTIL_API int BVUTIL_CALL gdiPlusFreeImage(BvUtilImage image);

/** @} */
/** @name Images from bitmaps and pixels
 *  All give a handle that gdiPlusFreeImage() releases.
 *  @{ */

/** An image of a device bitmap, which stays the caller's and must not be selected into a device context. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmapFromHBitmap(HBITMAP bitmap, BvUtilImage* image);

/** An image over a device-independent bitmap.
 *  @param info,bits  Header with colour table, and pixels: as large as the header tells, and to be kept until
 *                    the image is freed. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmapFromBitmapInfo(const BITMAPINFO* info, void* bits,
                                                          BvUtilImage* image);

/** Imports pixels, taking pure white for transparent: its alpha is 0, that of all other pixels is @p alpha.
 *  The result is drawn on opaque white, as everything was that callers know of this function: where alpha is
 *  below 255, it shows as a mixture with white.
 *
 *  @param bits    Rows without padding, bottom row first: `width * height * sourceBytesPerPixel` bytes.
 *  @param width,height         Size in pixels.
 *  @param sourceBytesPerPixel  Distance of the pixels in @p bits, meant to be 3 or 4; the first three are
 *  read.
 *  @param targetBytesPerPixel  Distance of the pixels in the image made of them: 4 for 32 bits, 3 for 24
 *  bits. Pixels closer than that overwrite each other in turn, wider gaps are 0.
 *  @param alpha      Alpha of pixels other than white.
 *  @param withAlpha  Not 0: the image has 32 bits with alpha. 0: it has 24 bits. */
BVUTIL_API int BVUTIL_CALL gdiPlusBitmapFromBits(const BYTE* bits, int width, int height,
                                                 int sourceBytesPerPixel, int targetBytesPerPixel, BYTE alpha,
                                                 int withAlpha, BvUtilImage* image);

/** The same from a record; both pixel distances are 4, and pixels that a row cannot hold are cut. */
BVUTIL_API int BVUTIL_CALL gdiPlusBitmapFromRamStruct(const RamStruct* record, BYTE alpha, int withAlpha,
                                                      BvUtilImage* image);

/** Imports 24-bit rows.
 *  @param width,height  Size in pixels.
 *  @param stride   Bytes from one row to the next: at least three for each pixel, a multiple of 4.
 *  @param reserved Ignored.
 *  @param bits     Rows, top row first. Only read. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmap24BPPRGB(int width, int height, int stride, int reserved,
                                                    BYTE* bits, BvUtilImage* image);

/** Imports rows, top row first.
 *  @param stride  Bytes from one row to the next, of which pixels are cut that it cannot hold.
 *  @param format  0: as gdiPlusGetBitmap24BPPRGB(). 1: four bytes for each pixel give 32-bit RGB. Any other
 *                 value: the same with alpha, which is 255. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmap(int width, int height, int stride, int format, const BYTE* bits,
                                            BvUtilImage* image);

/** Imports rows of three-byte pixels.
 *  @param sourceStride,targetStride  Bytes from one row to the next, in @p bits and in the image made of
 *  them.
 *  @param format  0: as gdiPlusGetBitmap24BPPRGB() with @p sourceStride, top row first. 1: 32-bit RGB. Any
 *  other value: 32 bits with alpha. For both the rows are bottom row first.
 *  @param alpha   Alpha of all pixels. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetBitmapEx(int width, int height, int sourceStride, int targetStride,
                                              int format, BYTE alpha, const BYTE* bits, BvUtilImage* image);

/** A copy of a device bitmap in another size, bicubic, 32 bits with alpha, of 600 dots per inch. */
BVUTIL_API int BVUTIL_CALL gdiPlusResizeBitmap(HBITMAP bitmap, int width, int height, BvUtilImage* image);

/** @} */
/** @name Graphics of an image
 *  @{ */

/** Makes the graphics that draw on an image.
 *  @param graphics  Receives the handle, released by gdiPlusFreeGraphics(); null when memory runs out. When
 *  the image cannot be drawn on, the graphics are empty and their status tells why.
 *  @return 1; 0 for null. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetGraphicsFromBitmap(BvUtilImage image, BvUtilGraphics* graphics);

/** Gives a device context of graphics, to be given back by gdiPlusFreeHDC() before they are freed.
 *  @param dc  Receives it; null when there is none. */
BVUTIL_API int BVUTIL_CALL gdiPlusGetHDCFromGraphics(BvUtilGraphics graphics, HDC* dc);

/** Gives back a device context of gdiPlusGetHDCFromGraphics(). */
BVUTIL_API int BVUTIL_CALL gdiPlusFreeHDC(BvUtilGraphics graphics, HDC dc);

/** Frees graphics. The image stays. @return 1; 0 for null. */
BVUTIL_API int BVUTIL_CALL gdiPlusFreeGraphics(BvUtilGraphics graphics);

/** @} */
/** @name Drawing on a device context
 *  @{ */

/** Fills the whole target with an opaque colour. @return 1 when that succeeded. */
BVUTIL_API int BVUTIL_CALL gdiPlusClearGraphics(HDC target, BYTE red, BYTE green, BYTE blue);

/** Fills the rectangle from (0, 0), in the target's own unit. @return 1 when that succeeded. */
BVUTIL_API int BVUTIL_CALL gdiPlusFillRect(HDC target, BYTE alpha, BYTE red, BYTE green, BYTE blue, int width,
                                           int height);

/** Fills a polygon, where it overlaps itself alternately.
 *  @param reserved  Ignored.
 *  @param points    Corners in pixels, @p count of them.
 *  @return 1 when that succeeded. */
BVUTIL_API int BVUTIL_CALL gdiPlusFillPolygon(HDC target, int reserved, BYTE alpha, BYTE red, BYTE green,
                                              BYTE blue, const POINT* points, int count);

/** Draws an image at (x, y), one image pixel to one device pixel. For that the image takes on the resolution
 *  of the target. @return 1 when that succeeded. */
BVUTIL_API int BVUTIL_CALL gdiPlusDrawImage(BvUtilImage image, HDC target, float x, float y);

/** Clears the target to white and draws an image into a parallelogram, in pixels: upper left, upper right and
 *  lower left corner. */
BVUTIL_API int BVUTIL_CALL gdiPlusDrawImage2(BvUtilImage image, HDC target, int x1, int y1, int x2, int y2,
                                             int x3, int y3);

/** Clears the target to white and draws a part of an image in the place and size of the whole.
 *
 *  With the image's bounds X, Y, W, H the part is left X * @p fx, top H * @p fy + Y, width W * @p fw and
 *  height H * @p fh + top. (The top is part of the height: kept, callers rely on it.) */
BVUTIL_API int BVUTIL_CALL gdiPlusDrawImage3(BvUtilImage image, HDC target, float fx, float fw, float fy,
                                             float fh);

/** Clears the target to white and draws an image at (x, y) with its own alpha. */
BVUTIL_API int BVUTIL_CALL gdiPlusDrawTranspImage(BvUtilImage image, HDC target, int x, int y);

/** Clears the target to white and draws an image at (x, y), all of it scaled, the position too.
 *
 *  This one function is exported under the decorated name of a C++ function,
 *  `?gdiPlusPrintImage@@YAHPAVImage@Gdiplus@@PAUHDC__@@HHMM@Z`. From C it can be called with compilers that
 *  let a declaration name its symbol.
 *  @return 1 when the draw succeeded. */
#if defined(BVUTIL_BUILDING)
int BVUTIL_CALL gdiPlusPrintImage(Gdiplus::Image* image, HDC target, int x, int y, float scaleX,
                                  float scaleY);
#elif defined(__MINGW32__)
/* GNU's assembler wants the name in quotes, of which clang would make a part of it. */
#if defined(__clang__)
#define BVUTIL_PRINT_IMAGE "?gdiPlusPrintImage@@YAHPAVImage@Gdiplus@@PAUHDC__@@HHMM@Z"
#else
#define BVUTIL_PRINT_IMAGE "\"?gdiPlusPrintImage@@YAHPAVImage@Gdiplus@@PAUHDC__@@HHMM@Z\""
#endif
#ifdef __cplusplus
int BVUTIL_CALL gdiPlusPrintImage(Gdiplus::Image* image, HDC target, int x, int y, float scaleX,
                                  float scaleY) __asm__(BVUTIL_PRINT_IMAGE);
#else
int BVUTIL_CALL gdiPlusPrintImage(BvUtilImage image, HDC target, int x, int y, float scaleX,
                                  float scaleY) __asm__(BVUTIL_PRINT_IMAGE);
#endif
#endif

/** @} */

BVUTIL_END_C

#if !defined(BVUTIL_BUILDING) && !defined(__MINGW32__) && defined(__cplusplus)
BVUTIL_API int BVUTIL_CALL gdiPlusPrintImage(Gdiplus::Image* image, HDC target, int x, int y, float scaleX,
                                             float scaleY);
#endif

/** @} */

#endif
