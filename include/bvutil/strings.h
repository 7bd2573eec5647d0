/** @file
 *  Texts, file paths, lines of C runtime streams, and directory listings.
 *
 *  All text is narrow and follows the multibyte code page of the C runtime (`_setmbcp()`): where a function
 *  looks for a character, the second byte of a double-byte character is never taken for one. A lead byte at
 *  the end of a text stands for itself; nothing is read beyond the terminating zero. Positions are bytes
 *  from 0.
 *
 *  @par Runtime
 *  A `FILE*` crosses this interface: it must come from the runtime that the library uses, msvcrt.dll. A
 *  stream of any other C runtime has another layout and cannot be passed.
 */
#ifndef BVUTIL_STRINGS_H
#define BVUTIL_STRINGS_H

#include "bvutil/api.h"

#include <stddef.h>
#include <stdio.h>

/** @addtogroup strings
 *  @{ */

BVUTIL_BEGIN_C

/** @name Paths
 *  Both `\` and `/` separate directories; a drive is a first character followed by a colon.
 *  @{ */

/** Sizes of the buffers of BvUtil_Divide(), the terminating zero included. */
enum {
    BVUTIL_DRIVE_SIZE = 3, /**< For the drive. */
    BVUTIL_DIR_SIZE = 256, /**< For the directory. */
    BVUTIL_NAME_SIZE = 256 /**< For the name. */
};

/** Splits a path: `C:\data\a.b.ini` into `C:`, `\data\` and `a.b.ini`. The three parts, one after the other,
 *  are the path again. The name is what follows the last separator, so `..` and `.ini` are names, and a path
 *  of a server, `\\server\share\f`, has no drive.
 *
 *  @param path   The path; null counts as empty.
 *  @param drive  Receives the drive letter and colon, or "". 3 bytes.
 *  @param dir    Receives the directory up to and including its last separator, or "". 256 bytes.
 *  @param name   Receives the file name with its extension, or "". 256 bytes. Any of the three may be null.
 *  @return Always 0. When a part does not fit its buffer, all three are emptied, as the platform's own path
 *          splitting does.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_Divide(const char* path, char* drive, char* dir, char* name);

/** Resolves a file against a directory and that against a base, and lower-cases the result.
 *
 *  A file with a drive is taken as it is. Else it is placed under @p dir, and, when that has no drive either,
 *  the two are placed under @p base. One backslash is inserted behind a directory that ends in a name, and
 *  one is dropped where two would meet; otherwise the texts are only joined: `..` stays, and `\f` under
 *  `C:\x` is `c:\x\f`. Lower case is that of the multibyte code page.
 *
 *  @param out   Receives the path; may be one of the other arguments. Its size is the caller's care: the
 *               result has at most the lengths of the three texts plus 2 bytes, and a terminating zero. 260
 *               bytes serve for every path that the platform can open.
 *  @param base,dir,file  Any of them may be null or empty and is then left out.
 *  @return @p out. Null when @p out is null, or when memory ran out (@p out is then untouched).
 */
BVUTIL_API char* BVUTIL_CALL BvUtil_Makepath(char* out, const char* base, const char* dir, const char* file);

/** Finds the extension of a file name.
 *
 *  @param name  A name or path. Directories are not told apart: in `a.b\c` the dot is found.
 *  @return Position of the last dot; -1 when there is none, when it is the first byte, and for null.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_GetExtensionPos(const char* name);

/** @} */
/** @name Lines of streams
 *  @{ */

/** Reads one line. It ends at a line feed or a zero byte, which are taken and not stored, at a lone carriage
 *  return, which is taken and not stored either, at the end of the file, or when @p maxLen bytes are stored
 *  (what follows stays in the stream). A carriage return with a line feed behind it (from a stream in binary
 *  mode) ends the line too, and the line feed is stored.
 *
 *  @param stream  A stream of msvcrt.dll, open for reading.
 *  @param maxLen  Bytes to store at most, above 0.
 *  @param buffer  Receives the line and a terminating zero: `maxLen + 1` bytes.
 *  @return 0 when anything was read, an empty line included; -1 at the end of the file (@p buffer is then
 *          empty), and for a null argument or a @p maxLen below 1.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_GetString(FILE* stream, int maxLen, char* buffer);

/** Writes a text in a field of a fixed width, without a line end.
 *
 *  @param stream  A stream of msvcrt.dll, open for writing.
 *  @param text    The text.
 *  @param width   Bytes to write: a longer text is cut, a shorter one is followed by blanks. 0 stands for the
 *                 length of the text; below 0 nothing is written.
 *  @return 0; -1 for a null argument and when a write failed (what was written before stays).
 */
BVUTIL_API int BVUTIL_CALL BvUtil_PutString(FILE* stream, const char* text, int width);

/** @} */
/** @name Directory listing
 *  @{ */

/** Flags of BvUtilEntry::attributes. An entry is a file or a directory; the others are added. */
enum {
    BVUTIL_ENTRY_FILE = 0x001,      /**< A file. */
    BVUTIL_ENTRY_DIRECTORY = 0x002, /**< A directory. */
    BVUTIL_ENTRY_READONLY = 0x008,  /**< It cannot be written. */
    BVUTIL_ENTRY_HIDDEN = 0x040,    /**< Listings usually leave it out. */
    BVUTIL_ENTRY_SYSTEM = 0x080,    /**< It belongs to the system. */
    BVUTIL_ENTRY_ARCHIVE = 0x200    /**< Changed since it was last archived. */
};

/** BvUtilEntry::modified of an entry without a usable time: 1979-12-31 23:00 UTC. */
#define BVUTIL_ENTRY_NO_TIME 315529200

/** One file or directory found. */
typedef struct BvUtilEntry {
    char name[256];          /**< Name without directory, zero-terminated; a longer one is cut. */
    unsigned int attributes; /**< Flags, see #BVUTIL_ENTRY_FILE. */
    unsigned int size;       /**< Size in bytes, its lower 32 bits. */
    int modified;            /**< Last write, in seconds since 1970 UTC. */
    unsigned int reserved;   /**< Always 0. */
} BvUtilEntry;

#ifdef __cplusplus
static_assert(sizeof(BvUtilEntry) == 272, "callers step through the entries by 272 bytes");
static_assert(offsetof(BvUtilEntry, attributes) == 256 && offsetof(BvUtilEntry, size) == 260 &&
                  offsetof(BvUtilEntry, modified) == 264,
              "the layout is part of the interface");
#else
_Static_assert(sizeof(BvUtilEntry) == 272, "callers step through the entries by 272 bytes");
#endif

/** Lists what a directory holds, in the order in which the system delivers it; "." and ".." are listed when
 *  the pattern matches them. Times and sizes that 32 bits cannot hold are #BVUTIL_ENTRY_NO_TIME and cut.
 *
 *  @param dir       Directory; a separator between it and the pattern is inserted when needed. Empty: the
 *                   pattern alone is searched, under the current directory.
 *  @param pattern   Name with the platform's wildcards; null or empty stands for all names, `*.*`.
 *  @param reserved  Ignored.
 *  @param entries   Receives the array of entries, to be freed with BvUtil_FreeEntries(); null on failure.
 *  @param count     Receives the number of entries; 0 on failure.
 *  @return 0; also, with nothing listed, when there was no memory to begin with. -1 when nothing matched,
 *  when memory ran out later, and for a null @p dir, @p entries or @p count.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_Listdir(const char* dir, const char* pattern, int reserved,
                                          BvUtilEntry** entries, int* count);

/** Frees what BvUtil_Listdir() stored in @p entries and sets it to null. Null is ignored. */
BVUTIL_API void BVUTIL_CALL BvUtil_FreeEntries(BvUtilEntry** entries);

/** @} */
/** @name Texts
 *  White space is blank, tab, line feed, vertical tab, form feed and carriage return.
 *  @{ */

/** @return Position of the first character @p c of @p s, case-sensitive; -1 when there is none, for a zero
 *          @p c and for null. Double-byte characters are never found. */
BVUTIL_API int BVUTIL_CALL BvUtil_StrIChr(const char* s, char c);

/** @return Position of the first occurrence of @p sub in @p s, character by character and case-sensitive; 0
 *          for an empty @p sub; -1 when there is none, and for null. Takes time in proportion to the lengths.
 */
BVUTIL_API int BVUTIL_CALL BvUtil_StrIPos(const char* s, const char* sub);

/** Removes leading white space in place; the freed end is filled with zero bytes. @return @p s, also null. */
BVUTIL_API char* BVUTIL_CALL BvUtil_StrLTrim(char* s);

/** Removes leading, not trailing, white space, as BvUtil_StrLTrim() (kept: callers rely on it).
 *  @return @p s, also null. */
BVUTIL_API char* BVUTIL_CALL BvUtil_StrRTrim(char* s);

/** Removes leading and trailing white space in place; the freed end is filled with zero bytes.
 *  @return @p s, also null. */
BVUTIL_API char* BVUTIL_CALL BvUtil_StrTrim(char* s);

/** Converts the number that a text begins with; what follows it is not looked at, however long. White space
 *  in front is skipped. The decimal sign is a point in every locale; `d` marks an exponent as `e` does.
 *
 *  @return The nearest double; 0 when the text begins with no number; an infinity when it is too large;
 *          negative infinity for null and when memory ran out. */
BVUTIL_API double BVUTIL_CALL BvUtil_StringToDouble(const char* s);

/** @} */

BVUTIL_END_C

/** @} */

#endif
