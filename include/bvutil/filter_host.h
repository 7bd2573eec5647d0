/** @file
 *  A host for image filter plug-ins of the published 8BFM interface (files "*.8bf").
 *
 *  A plug-in is a 32-bit DLL with a property list resource ("PIPL") that names its category, its menu entry
 *  and its entry point. AVGetPSFilterAndInfo() opens one, AVApplyPSFilter() runs it over an image any number
 *  of times, and AVFreeGotPSFilter() closes it:
 *
 *  @code
 *  char *category, *name;
 *  PSFilter_* filter;
 *  int error;
 *  if (AVGetPSFilterAndInfo("sharpen.8bf", &category, &name, &filter, &error)) {
 *      ...
 *      AVFreeGotPSFilterInfo(&category, &name);
 *      AVFreeGotPSFilter(&filter);
 *  }
 *  @endcode
 *
 *  Every function returns a #BvUtilBool, 1 or 0. A plug-in is foreign code in the caller's process: what it
 *  does while it is loaded or called, this library cannot contain. Its file, its property lists and the
 *  rectangles that it asks for are checked.
 */
#ifndef BVUTIL_FILTER_HOST_H
#define BVUTIL_FILTER_HOST_H

#include "bvutil/api.h"

BVUTIL_BEGIN_C

/** An opened filter plug-in; opaque. Its only virtual operation, slot 0 of its table, is the deleting
 *  destructor. The plug-in's module stays loaded as long as the object lives. */
#ifdef __cplusplus
class PSFilter_;
#else
typedef struct PSFilter_ PSFilter_;
#endif

/** Opens a filter plug-in and tells what its property list says.
 *
 *  The first property list that names a filter (kind "8BFM", interface version 4.0 or older) with an entry
 *  point that the file exports, a category and a name is taken.
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

BVUTIL_END_C

#endif
