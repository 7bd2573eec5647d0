/** @file
 *  Text and pictures on their way through XML: UTF-8 from and to the ANSI code page, and files as Base64.
 *
 *  Every output buffer is the caller's, and its size is not known to these functions: each comment says what
 *  it must hold. There are no limits of length.
 */
#ifndef BVUTIL_TEXT_EXCHANGE_H
#define BVUTIL_TEXT_EXCHANGE_H

#include "bvutil/api.h"

/** @addtogroup text_exchange
 *  @{ */

BVUTIL_BEGIN_C

/** Converts UTF-8 to single bytes: each UTF-16 code unit of the text is reduced to its low byte.
 *
 *  Characters up to U+00FF come out as Latin-1. Of any other character only the low byte remains: U+20AC
 *  gives 0xAC, U+0100 a zero byte in the midst of the text, and a character beyond U+FFFF two bytes. What is
 *  not UTF-8 counts as U+FFFD, one or more bytes of it, as the platform's conversion has it.
 *
 *  @param utf8  Zero-terminated UTF-8 text.
 *  @param out   Receives the bytes and a terminating zero: never more bytes than @p utf8 has. May be the same
 *               buffer. Untouched unless the result is 1.
 *  @return 1; 0 for a null argument, an empty text, and when memory runs out.
 */
BVUTIL_API int BVUTIL_CALL ConvertFromUTF8(const char* utf8, char* out);

/** Converts text of the ANSI code page to UTF-8.
 *
 *  @param text  Zero-terminated text in the ANSI code page.
 *  @param out   Receives the UTF-8 text and a terminating zero: at most three bytes for each byte of @p text,
 *               and one. May be the same buffer. Untouched unless the result is 1.
 *  @return 1; 0 for a null argument, an empty text, and when memory runs out.
 */
BVUTIL_API int BVUTIL_CALL ConvertToUTF8(const char* text, char* out);

/** Reads a whole file, of whatever kind, and gives it as Base64 (standard alphabet, padded, no line breaks).
 *
 *  Called twice: first with @p lengthOnly to learn the number of characters, then for the text.
 *
 *  @param path        The file, in the ANSI code page.
 *  @param out         Receives the characters except the last one, and no terminating zero: of the reported
 *                     length n, n - 1 bytes are written, and the byte behind them is the caller's to set.
 *                     (This is the interface's rule: the last of n characters is never copied.) Not used with
 *                     @p lengthOnly; may then be null.
 *  @param length      Receives, with @p lengthOnly, the number of characters, four for each three bytes
 *                     begun: 0 for an empty file. Else it is not used and may be null.
 *  @param lengthOnly  Not 0: only the length is wanted.
 *  @return 1. 0, with nothing written, when an argument that is needed is null, when the file cannot be
 *          opened or read to its end, when memory runs out, and when the length exceeds an int. 0, with a
 *  part of the text written, when another program cuts the file during the call.
 */
BVUTIL_API int BVUTIL_CALL jpgToXML(const char* path, char* out, int* length, int lengthOnly);

BVUTIL_END_C

/** @} */

#endif
