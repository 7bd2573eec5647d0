/** @file
 *  A host for image filter plug-ins of the published 8BFM interface (files "*.8bf").
 *
 *  A plug-in is a 32-bit DLL with a property list resource ("PIPL") that names its category, its menu entry
 *  and its entry point. AVGetPSFilterAndInfo() opens one, AVApplyPSFilter() runs it over an image any number
 *  of times, and AVFreeGotPSFilter() closes it, as samples/cpp/batch_filter.cpp does.
 *
 *  Every function returns a #BvUtilBool, 1 or 0. A plug-in is foreign code in the caller's process: what it
 *  does while it is loaded or called, this library cannot contain. Its file, its property lists and the
 *  rectangles that it asks for are checked.
 */
#ifndef BVUTIL_FILTER_HOST_H
#define BVUTIL_FILTER_HOST_H

#include "bvutil/api.h"

/** @addtogroup filter_host
 *  @{ */

BVUTIL_BEGIN_C

/** An opened filter plug-in; opaque. Its only virtual operation, slot 0 of its table, is the deleting
 *  destructor. The plug-in's module stays loaded as long as the object lives. */
#ifdef __cplusplus
class PSFilter_;
#else
typedef struct PSFilter_ PSFilter_;
#endif

/** Told how far an application has got, and asked whether to go on: when the filter reports progress, and
 *  whenever it asks whether the user wants to stop. It must not throw.
 *
 *  @param fraction  The last fraction that the filter reported, 0 at first; usually from 0 to 1.
 *  @param context   The context given to AVApplyPSFilter().
 *  @return 0 to stop, anything else to go on. It is for the filter to heed this. A 0 that answers a progress
 *          report holds for the rest of the application: the filter is told to stop without another call.
 */
typedef BvUtilBool(BVUTIL_STDCALL* AVPSFilterProgress)(float fraction, void* context);

/** Opens a filter plug-in and tells what its property list says.
 *
 *  The first property list that is complete is taken: with an entry point that the file exports, a category
 *  and a name, not meant for another kind of plug-in than "8BFM" nor for an interface newer than 4.0. A list
 *  that lacks its category or name has those of a list before it, if that had any.
 *
 *  @param fileName  The plug-in's file, searched for as the platform searches for libraries. Null counts as a
 *                   file that cannot be loaded.
 *  @param category  Receives a copy of the category; null when it is not wanted.
 *  @param name      Receives a copy of the filter's name; null when it is not wanted.
 *  @param filter    Receives the opened filter, released by AVFreeGotPSFilter(). Must not be null: then the
 *                   call fails and touches nothing.
 *  @param error     Receives 0 or -1; null when it is not wanted.
 *  @return 1 when the filter is open. 0 when the file cannot be loaded or holds no usable property list, or
 *          when memory runs out: then the category, the name and the filter receive null and the error -1.
 *  @note The copies are released by AVFreeGotPSFilterInfo(). Loading runs the plug-in's own start-up code.
 */
BVUTIL_API BvUtilBool BVUTIL_CALL AVGetPSFilterAndInfo(const char* fileName, char** category, char** name,
                                                       PSFilter_** filter, int* error);

/** Releases the texts of AVGetPSFilterAndInfo() and sets them to null.
 *  @param category,name  Either may be null and is then skipped, as is a text that is null already.
 *  @return 1. */
BVUTIL_API BvUtilBool BVUTIL_CALL AVFreeGotPSFilterInfo(char** category, char** name);

/** Closes a filter, unloads its plug-in and sets the pointer to null. What the plug-in itself allocated (its
 *  parameters handle, its data word) is the plug-in's to release.
 *  @param filter  Null, or a pointer to null, is skipped.
 *  @return 1. */
BVUTIL_API BvUtilBool BVUTIL_CALL AVFreeGotPSFilter(PSFilter_** filter);

/** Applies a filter to an image.
 *
 *  The plug-in is asked for its settings (which may show a dialog, owned by the main window of the calling
 *  thread), prepared, and fed with the rectangles that it asks for. It reads the caller's image and writes
 *  into a copy.
 *
 *  @param filter      An open filter.
 *  @param repeatLast  Not 0: the settings of this filter's last application are used again, if there are any.
 *  @param progress    Receives progress and may stop the filter; null when that is not wanted.
 *  @param context     Handed to @p progress.
 *  @param image       @p height rows of @p rowBytes bytes, the first row at the lowest address; each pixel 4
 *                     bytes: blue, green, red and a fourth that filters see as plane 3. Only read.
 *  @param width       Pixels in a row.
 *  @param height      Rows. Plug-ins count in 16 bits: beyond 32767 in either direction they are told less.
 *  @param rowBytes    Bytes from one row to the next; pixels beyond the last byte of the image do not exist.
 *  @param outImage    Receives the result: an image of the same form, released by AVFreeGotPSFilterImage().
 *                     Its memory is four times as large as the image. It is set even when the filter fails.
 *  @param result      Receives the filter's code; null when it is not wanted. 0 is success; a positive code
 *                     means that the filter ended early and has told the user (1: the user cancelled); a
 *                     negative one is an error of the filter interface (-128: the user cancelled).
 *  @return 1 when the code is not negative, else 0. Also 0, with @p outImage and @p result untouched, when
 *          @p filter, @p image or @p outImage is null or when there is no memory for the result, as there
 *          is none for a negative height or row size.
 *  @note One application at a time in a process. An error while the filter works on its rectangles is not
 *        reported; the filter is told to finish, and called again for as long as it asks for rectangles. The
 *        memory that a plug-in's request takes can fail: then the plug-in receives a null buffer. Buffers
 *        that a filter still holds when its start call ends with a code other than 0 stay in its record: the
 *        next exchange takes them back, and writes their output into the image of that application.
 */
BVUTIL_API BvUtilBool BVUTIL_CALL AVApplyPSFilter(PSFilter_* filter, BvUtilBool repeatLast,
                                                  AVPSFilterProgress progress, void* context,
                                                  const void* image, int width, int height, int rowBytes,
                                                  void** outImage, int* result);

/** Tells whether a filter's last application can be repeated with the same settings.
 *  @param filter  An open filter; null cannot be repeated.
 *  @param canDo   Receives 1 when the filter left settings behind, else 0. Null is skipped.
 *  @return 1. */
BVUTIL_API BvUtilBool BVUTIL_CALL AVPSFilterCanDoLastFilter(PSFilter_* filter, BvUtilBool* canDo);

/** Releases an image of AVApplyPSFilter() and sets the pointer to null.
 *  @param image  Null, or a pointer to null, is skipped.
 *  @return 1. */
BVUTIL_API BvUtilBool BVUTIL_CALL AVFreeGotPSFilterImage(void** image);

BVUTIL_END_C

/** @} */

#endif
