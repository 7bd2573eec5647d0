/** @file
 *  A bitmap object that reads BMP images of 8 bits per pixel and more, holds them with 32, draws them, and
 *  writes them as BMP files of 24 bits per pixel.
 *
 *  Every function returns 0 for a null object and 1 otherwise, whatever happened inside: what was loaded
 *  shows in what is drawn. An object is used by one thread at a time. There is no function that releases one:
 *  objects live until the process ends, each with the pixels of its last image, so keep one and load into it
 *  again.
 *
 *  @par What is read
 *  The two headers are taken as they stand; neither the type mark nor the header size nor the compression is
 *  looked at. 8-bit pixels are looked up in the palette; 16-bit ones are 5-5-5, and each channel keeps its
 *  value of 0 to 31 (the picture is dark); 24- and 32-bit pixels are blue, green, red; pixels of any other
 *  size are held as zeros.
 *
 *  An image that is cut short is held with the rows and pixels that are there, and zeros for the rest. No
 *  pixels are held after an image with headers cut short, below 8 bits per pixel, with a width or height
 *  below 1 (rows from top to bottom are not read), with more than 2 GB of pixels, and when memory runs out.
 *  An image in memory ends for this purpose where the process cannot read on.
 *
 *  A palette's entries beyond the 256th are passed over; entries that it lacks are those of the image before.
 */
#ifndef BVUTIL_BITMAP_EX_H
#define BVUTIL_BITMAP_EX_H

#include "bvutil/api.h"

#include <windows.h>

/** @addtogroup pictures
 *  @{ */

BVUTIL_BEGIN_C

/** The bitmap object; opaque. */
#ifdef __cplusplus
class CBitmapEx;
#else
typedef struct CBitmapEx CBitmapEx;
#endif

/** Makes an object without pixels; its headers are zeros.
 *  @param bitmap  Receives the object; untouched on failure.
 *  @return 1; 0 for null and when memory runs out. */
BVUTIL_API int BVUTIL_CALL bmpExInit(CBitmapEx** bitmap);

/** Loads a BMP file. The pixels are read directly behind the headers and, with 8 bits per pixel, the palette;
 *  the offset that the header tells is not used.
 *  @param path  The file, in the ANSI code page. For null, and when it cannot be opened, the image before
 *  stays.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExLoad(CBitmapEx* bitmap, const char* path);

/** Loads the image of a BMP file that stands in memory.
 *
 *  @param image  File header, info header, from byte 54 the palette (8 bits per pixel only), and the pixels,
 *                bottom row first, each row padded to 4 bytes. The pixels are taken from behind as many
 *  palette entries as the object holds, and it holds those of its last image of 8 bits: a 24-bit image loaded
 *  after an 8-bit one of 256 colours must have its pixels at byte 54 + 1024. As many bytes as the headers
 *  claim must be there. Null: the image before stays.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExLoadFromBits(CBitmapEx* bitmap, const BYTE* image);

/** Loads an image in memory, with or without a file header.
 *
 *  @param data           With a file header, as bmpExLoadFromBits() takes it. Without, the info header, the
 *                        palette from byte 54 all the same (kept: callers rely on it), and the pixels from
 *  byte 40 plus 4 for each palette entry held; the object's file header stays as it is. Null: the image
 *  before stays.
 *  @param hasFileHeader  Not 0: there is a file header.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExLoadFromBits2(CBitmapEx* bitmap, const BYTE* data, int hasFileHeader);

/** Loads an image whose headers stand apart.
 *
 *  @param fileHeader,infoHeader  The headers.
 *  @param data  The palette (8 bits per pixel only), and the pixels from byte 4 times the palette entries
 *  held. For any of the three null, the image before stays.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExLoadFromBits3(CBitmapEx* bitmap, const BITMAPFILEHEADER* fileHeader,
                                              const BITMAPINFOHEADER* infoHeader, const BYTE* data);

/** Draws the image at (0, 0) in its own size. Without pixels nothing is drawn, nor with an info header that
 *  the platform does not draw by (shorter than 40 bytes, or of compressed pixels).
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExDraw(CBitmapEx* bitmap, HDC target);

/** Draws the whole image stretched into a rectangle; else like bmpExDraw().
 *  @param x,y,width,height  The rectangle, in the target's units.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExDraw2(CBitmapEx* bitmap, HDC target, int x, int y, int width, int height);

/** Makes a device bitmap of 32 bits per pixel of the image.
 *  @param handle  Must hold 0 on entry; any other value is left alone, and no bitmap is made. Receives the
 *                 bitmap, owned by the caller (DeleteObject()), or null when the platform cannot make it.
 *                 Without pixels it stays 0.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExSave(CBitmapEx* bitmap, HBITMAP* handle);

/** Writes the image as a BMP file of 24 bits per pixel: headers of 14 and 40 bytes, then the rows, bottom row
 *  first, padded with zeros to 4 bytes. File size, data offset and bit count are those of the file; all other
 *  header fields are written as they were loaded. Without pixels the file has the headers only.
 *
 *  Afterwards the object holds 32 bits again, and the fourth byte of every pixel is 0 (also when the file
 *  cannot be opened).
 *  @param path  The file, in the ANSI code page; an existing one is replaced. Null: nothing happens.
 *  @return 0 for a null @p bitmap, else 1. */
BVUTIL_API int BVUTIL_CALL bmpExSaveToFile(CBitmapEx* bitmap, const char* path);

BVUTIL_END_C

/** @} */

#endif
