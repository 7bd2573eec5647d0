/** @file
 *  Typed values in the sections of a profile (ini) file: numbers, strings, lists of numbers, drawing records.
 *
 *  Every value goes through CBvIniFile and follows its rules: a key that is missing, or whose value is
 *  literally
 *  `_TheDefault_`, reads as missing; a value is read as at most 1023 bytes; a write leaves everything else in
 *  the file as it is. A path without a directory is looked up in the Windows directory by the platform, but
 *  in the current directory when it is opened: give a directory.
 *
 *  All functions but the opening and closing ones return 0 for success and -1 for failure, and -1 when any of
 *  their pointers is null. Numbers have a decimal point in every locale.
 *
 *  @par Lists of numbers
 *  Values joined by `,`. A whole number is written as an integer (out of the range of int as -2147483648),
 *  any other with six decimals. On reading, exactly one byte, whatever it is, separates a number from the
 *  next, and white space in front of a number is skipped.
 */
#ifndef BVUTIL_MINI_H
#define BVUTIL_MINI_H

#include "bvutil/api.h"

#include <stddef.h>

/** @addtogroup profiles
 *  @{ */

BVUTIL_BEGIN_C

/** A profile file, opened by mini_open() or mini_open_ex(); closed by mini_close(). */
#ifdef __cplusplus
typedef class CBvIniFile* MiniHandle;
#else
typedef struct CBvIniFile* MiniHandle;
#endif

/** Flags of mini_open(). */
enum { MINI_READONLY = 0x04 /**< For reading only. Writes through such a handle are not prevented. */ };

/** @name Drawing records
 *  Stored as lists of numbers, in the order of their fields; a colour takes three, red, green and blue of 0
 *  to 255. A colour is an integer with red in the low byte, then green and blue; its top byte is 0.
 *  @{ */

/** A GUID in the platform's layout. */
typedef struct MiniGuid {
    unsigned int data1;     /**< The first 8 digits of its text. */
    unsigned short data2;   /**< The next 4. */
    unsigned short data3;   /**< The next 4. */
    unsigned char data4[8]; /**< The last 16, two to a byte. */
} MiniGuid;

#pragma pack(push, 1)
/** Fill style: 10 numbers. */
typedef struct MiniFillStyle {
    unsigned char type;   /**< Number 1 of the list. */
    unsigned int value1;  /**< Number 2. */
    unsigned int color1;  /**< Numbers 3 to 5. */
    unsigned char value2; /**< Number 6. */
    unsigned int color2;  /**< Numbers 7 to 9. */
    unsigned char value3; /**< Number 10. */
} MiniFillStyle;

/** Fill style with a GUID, which has a key of its own: the key followed by "GUID". */
typedef struct MiniFillStyleEx {
    MiniFillStyle fill; /**< The list of numbers. */
    MiniGuid guid;      /**< In braces, under the key of its own. */
} MiniFillStyleEx;
#pragma pack(pop)

/** Pen style: 5 numbers. */
typedef struct MiniPenStyle {
    int style;          /**< Number 1 of the list. */
    float width;        /**< Number 2. */
    unsigned int color; /**< Numbers 3 to 5. */
} MiniPenStyle;

/** Texture properties: 13 numbers. The flags are 0 or 1. */
typedef struct MiniTexProps {
    int enabled;     /**< Number 1 of the list, 0 or 1. */
    float values[8]; /**< Numbers 2 to 9. */
    int flag1;       /**< Number 10. */
    int flag2;       /**< Number 11. */
    float value9;    /**< Number 12. */
    float value10;   /**< Number 13. */
} MiniTexProps;

#ifdef __cplusplus
#define BVUTIL_MINI_ASSERT static_assert
#else
#define BVUTIL_MINI_ASSERT _Static_assert
#endif
BVUTIL_MINI_ASSERT(sizeof(MiniGuid) == 16 && offsetof(MiniGuid, data4) == 8, "the platform's layout");
BVUTIL_MINI_ASSERT(sizeof(MiniFillStyle) == 15 && offsetof(MiniFillStyle, value1) == 1 &&
                       offsetof(MiniFillStyle, color1) == 5 && offsetof(MiniFillStyle, value2) == 9 &&
                       offsetof(MiniFillStyle, color2) == 10 && offsetof(MiniFillStyle, value3) == 14,
                   "the layout is part of the interface");
BVUTIL_MINI_ASSERT(sizeof(MiniFillStyleEx) == 31 && offsetof(MiniFillStyleEx, guid) == 15,
                   "the layout is part of the interface");
BVUTIL_MINI_ASSERT(sizeof(MiniPenStyle) == 12 && offsetof(MiniPenStyle, width) == 4 &&
                       offsetof(MiniPenStyle, color) == 8,
                   "the layout is part of the interface");
BVUTIL_MINI_ASSERT(sizeof(MiniTexProps) == 52 && offsetof(MiniTexProps, values) == 4 &&
                       offsetof(MiniTexProps, flag1) == 36 && offsetof(MiniTexProps, flag2) == 40 &&
                       offsetof(MiniTexProps, value9) == 44 && offsetof(MiniTexProps, value10) == 48,
                   "the layout is part of the interface");
#undef BVUTIL_MINI_ASSERT

/** @} */
/** @name Opening and closing
 *  @{ */

/** Opens a profile file that exists; none is ever created.
 *  @param dir    Directory under which @p file is placed, unless that has a drive; null counts as empty.
 *  @param file   File name or path. The whole path is lower-cased, see BvUtil_Makepath().
 *  @param flags  #MINI_READONLY: the file must be readable; without it, writable. Other bits are ignored.
 *  @return The handle, to be closed with mini_close(); null when @p file is null, the path is empty or is not
 *  a file that may be accessed so, and when memory ran out. */
BVUTIL_API MiniHandle BVUTIL_CALL mini_open(const char* dir, const char* file, int flags);

/** The same for a full path, which is taken as it is. */
BVUTIL_API MiniHandle BVUTIL_CALL mini_open_ex(const char* path, int flags);

/** Closes and destroys a handle; what @p h points to is not cleared.
 *  @return 1 when closed; 0 when `*h` is null; -1 when @p h is null. */
BVUTIL_API int BVUTIL_CALL mini_close(MiniHandle* h);

/** @} */
/** @name Values
 *  Results stay untouched on failure unless a function says otherwise.
 *  @{ */

/** Reads a decimal number; a value that begins with none is 0, one out of range the nearest long.
 *  @return 0; -1 when missing. */
BVUTIL_API int BVUTIL_CALL mini_read_long(MiniHandle h, const char* section, const char* key, long* value);

/** Reads the number that the value begins with; 0 when it begins with none.
 *  @return 0; -1 when missing, empty or too large for a double. */
BVUTIL_API int BVUTIL_CALL mini_read_double(MiniHandle h, const char* section, const char* key,
                                            double* value);

/** Reads a string.
 *  @param buffer  Receives the string and a terminating zero: `*length + 1` bytes.
 *  @param length  In: bytes that @p buffer holds besides the terminating zero; a longer string is cut to them
 *  and leaves @p length unchanged. Out: the length of a string that is shorter.
 *  @return 0; -1 when missing and for a negative length. */
BVUTIL_API int BVUTIL_CALL mini_read_string(MiniHandle h, const char* section, const char* key, char* buffer,
                                            int* length);

/** Reads a list of numbers, as many as there are or as fit.
 *  @param values  Receives them. On failure it holds those in front of the broken one.
 *  @param count   In: numbers that @p values has room for, above 0. Out: numbers read; untouched on failure.
 *  @return 0; -1 when missing or empty, when a number is broken or missing (also behind a separator at the
 *  end), and for a capacity below 1. */
BVUTIL_API int BVUTIL_CALL mini_read_doubles(MiniHandle h, const char* section, const char* key,
                                             double* values, int* count);

/** Writes a decimal number. @return 0; -1 when the platform failed to write. */
BVUTIL_API int BVUTIL_CALL mini_write_long(MiniHandle h, const char* section, const char* key, long value);
/** Writes a number with six significant digits, `0.1` or `1e+20`. */
BVUTIL_API int BVUTIL_CALL mini_write_double(MiniHandle h, const char* section, const char* key,
                                             double value);
/** Writes a string. */
BVUTIL_API int BVUTIL_CALL mini_write_string(MiniHandle h, const char* section, const char* key,
                                             const char* value);
/** Writes a list of @p count numbers; none writes an empty value, and a negative count fails. A list longer
 *  than 1023 bytes is written whole but read cut. */
BVUTIL_API int BVUTIL_CALL mini_write_doubles(MiniHandle h, const char* section, const char* key,
                                              const double* values, int count);

/** @} */
/** @name Values that are drawing records
 *  Reading fails, and leaves the record untouched, when mini_read_doubles() does. Fields whose numbers a
 *  short list lacks are 0. Integers and colours drop the fraction of their numbers; a flag is 1 for a number
 *  of at least 0.0001 in magnitude.
 *
 *  Writing rounds integers and colours to whole numbers, and `value1`, `value2`, `value3`, widths and texture
 *  numbers to five decimals, with BvUtil_PRound().
 *  @{ */

/** Reads a fill style. */
BVUTIL_API int BVUTIL_CALL mini_read_fillstyle(MiniHandle h, const char* section, const char* key,
                                               MiniFillStyle* fill);
/** Writes a fill style. */
BVUTIL_API int BVUTIL_CALL mini_write_fillstyle(MiniHandle h, const char* section, const char* key,
                                                const MiniFillStyle* fill);

/** Reads also the GUID, in braces. @return -1 also when it is missing or does not parse, and for a key of
 *  more than 250 bytes. */
BVUTIL_API int BVUTIL_CALL mini_read_fillstyle_ex(MiniHandle h, const char* section, const char* key,
                                                  MiniFillStyleEx* fill);
/** Writes the numbers and then the GUID, in braces and upper case. @return -1 also for a key of more than 250
 *  bytes; the numbers are then written. */
BVUTIL_API int BVUTIL_CALL mini_write_fillstyle_ex(MiniHandle h, const char* section, const char* key,
                                                   const MiniFillStyleEx* fill);

/** Reads a pen style. */
BVUTIL_API int BVUTIL_CALL mini_read_penstyle(MiniHandle h, const char* section, const char* key,
                                              MiniPenStyle* pen);
/** Writes a pen style. */
BVUTIL_API int BVUTIL_CALL mini_write_penstyle(MiniHandle h, const char* section, const char* key,
                                               const MiniPenStyle* pen);
/** As mini_write_penstyle(), but each part of the colour is divided by 255 before it is rounded: it is
 *  written as 0 below 128 and as 1 from there on (kept: callers rely on it). */
BVUTIL_API int BVUTIL_CALL mini_write_penstyleEX(MiniHandle h, const char* section, const char* key,
                                                 const MiniPenStyle* pen);

/** Reads texture properties. */
BVUTIL_API int BVUTIL_CALL mini_read_texprops(MiniHandle h, const char* section, const char* key,
                                              MiniTexProps* texture);
/** Writes texture properties. */
BVUTIL_API int BVUTIL_CALL mini_write_texprops(MiniHandle h, const char* section, const char* key,
                                               const MiniTexProps* texture);

/** @} */

BVUTIL_END_C

/** @} */

#endif
