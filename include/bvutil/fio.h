/** @file
 *  Data files with an optional header that names the byte order of their numbers.
 *
 *  The header is 16 bytes: the text `1.1  @mb` (two blanks) and the name of the byte order, `INTEL   ` or
 *  `MOTOROLA`; data follow. The library writes and recognises it. Numbers are the caller's to convert: it
 *  reads the byte order from the handle.
 */
#ifndef BVUTIL_FIO_H
#define BVUTIL_FIO_H

#include "bvutil/api.h"

#include <stddef.h>
#include <stdio.h>

/** @addtogroup fio
 *  @{ */

BVUTIL_BEGIN_C

/** Mode of fio_open(): exactly one of read, write and append, with any of the others added. */
enum {
    FIO_READ = 0x01,   /**< The file must exist. */
    FIO_WRITE = 0x02,  /**< Creates the file, or empties it. */
    FIO_APPEND = 0x04, /**< Creates the file if needed; every write goes to its end. */
    FIO_UPDATE = 0x08, /**< Both reading and writing. */
    FIO_TEXT = 0x10,   /**< Line ends are translated; otherwise the file is binary. */
    FIO_HEADER = 0x20  /**< With #FIO_WRITE the header is written, with #FIO_READ it is looked for. Without
                            effect together with #FIO_TEXT or #FIO_APPEND. */
};

/** FioFile::byteOrder */
enum {
    FIO_INTEL = 0,     /**< Little-endian; also what a header that names anything else reads as. */
    FIO_MOTOROLA = 1,  /**< Big-endian. */
    FIO_NO_HEADER = -1 /**< A header was looked for and there is none. */
};

/** An open file. Callers read #byteOrder and leave the other fields alone. */
typedef struct FioFile {
    FILE* stream;  /**< Stream of the library's C runtime, msvcrt.dll. */
    int byteOrder; /**< #FIO_INTEL, #FIO_MOTOROLA or #FIO_NO_HEADER; #FIO_INTEL when no header was asked for.
                    */
    int mode;      /**< As given to fio_open(). */
    char* path;    /**< The full path; "????" when there was no memory for it. */
} FioFile;

#if defined(_WIN32) && defined(__cplusplus)
static_assert(sizeof(FioFile) == 16 && offsetof(FioFile, byteOrder) == 4, "callers find the byte order here");
#elif defined(_WIN32)
_Static_assert(sizeof(FioFile) == 16 && offsetof(FioFile, byteOrder) == 4,
               "callers find the byte order here");
#endif

/** Opens a file.
 *
 *  With #FIO_HEADER and #FIO_READ the first 8 bytes are taken for a header's when they contain `@mb` or `1.1`
 *  anywhere before a zero byte (kept: a text that begins with `1.1` counts too, and its first 16 bytes are
 *  skipped). Otherwise the position stays at 0 and the byte order is #FIO_NO_HEADER. Files are always created
 *  as #FIO_INTEL.
 *
 *  @param dir   Directory under which @p file is placed, unless that has a drive; null counts as empty.
 *  @param file  File name or path. The whole path is lower-cased, see BvUtil_Makepath().
 *  @param mode  See #FIO_READ. Unknown bits are kept in FioFile::mode and otherwise ignored.
 *  @return The handle, to be closed with fio_close(). Null, with no file touched, when @p mode has not
 *  exactly one of read, write and append or @p file is null; null when the file cannot be opened or its
 *  header not be written, and when memory ran out.
 */
BVUTIL_API FioFile* BVUTIL_CALL fio_open(const char* dir, const char* file, int mode);

/** Closes the file and frees the handle, even when closing fails.
 *  @return 0, also for null; -1 when closing failed: what was written may not have reached the file. */
BVUTIL_API int BVUTIL_CALL fio_close(FioFile* h);

/** Writes out what is buffered. @return 0; -1 when that failed and for null. */
BVUTIL_API int BVUTIL_CALL fio_flush(FioFile* h);

/** Reads one character.
 *  @param c  Receives it; untouched at the end of the file. May be null.
 *  @return With @p c null: the character, 0 to 255. Else 0. In both cases -1 at the end of the file, for a
 *          null handle and for a file opened for writing alone. */
BVUTIL_API int BVUTIL_CALL fio_getchar(FioFile* h, char* c);

/** Writes one character. @return 0; -1 when that failed and for a null handle. */
BVUTIL_API int BVUTIL_CALL fio_putchar(FioFile* h, char c);

/** Reads one line, as BvUtil_GetString() does.
 *  @param buffer  Receives the line: `maxLen + 1` bytes.
 *  @return 0; -1 at the end of the file, for bad arguments and for a file opened for writing alone. */
BVUTIL_API int BVUTIL_CALL fio_getstring(FioFile* h, int maxLen, char* buffer);

/** Writes a text in a field of @p width bytes, as BvUtil_PutString() does.
 *  @return 0; -1 when a write failed and for a null argument. */
BVUTIL_API int BVUTIL_CALL fio_putstring(FioFile* h, const char* text, int width);

/** Moves the position. Between reading and writing a file opened with #FIO_UPDATE such a call is needed.
 *  @param offset  Bytes; the header counts.
 *  @param origin  0 from the start, 1 from the current position, anything else from the end.
 *  @return 0; -1 when that failed and for a null handle. */
BVUTIL_API int BVUTIL_CALL fio_seek(FioFile* h, long offset, int origin);

/** @return The position in bytes from the start, the header included; -1 when unknown and for null. */
BVUTIL_API long BVUTIL_CALL fio_tell(FioFile* h);

BVUTIL_END_C

/** @} */

#endif
