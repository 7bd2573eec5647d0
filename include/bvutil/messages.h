/** @file
 *  Messages to the user, and the log file that can take them instead.
 */
#ifndef BVUTIL_MESSAGES_H
#define BVUTIL_MESSAGES_H

#include "bvutil/api.h"

/** @addtogroup messages
 *  @{ */

BVUTIL_BEGIN_C

/** Tells the user something: one line in the log file when logging is on and a log is open, else a modal
 *  message box, which this call waits for.
 *
 *  The text is @p text1, @p text2 and @p text3 one after the other without separators. A log line is
 *  `<month day, year, hour:minute> :: <text> in "<sourceFile>" line <line>`, flushed at once. The box
 *  belongs to the window with the keyboard focus and is titled `MESSAGE in "<sourceFile>" line <line>:`,
 *  or `MESSAGE` without a source file.
 *
 *  @param text1,text2,text3  Any of them may be null and is then left out.
 *  @param sourceFile         Name of the reporting source; may be null.
 *  @param line               Line in that source.
 */
BVUTIL_API void BVUTIL_CALL BvUtil_Message(const char* text1, const char* text2, const char* text3,
                                           const char* sourceFile, int line);

/** Switches the log file on or off.
 *
 *  Off closes the log. On opens @p logPath, or, when that cannot be opened, the first of `logPath_1` to
 *  `logPath_20` that can (overwriting it, and telling so in a message box); when none can be opened, a box
 *  says so and logging is off again. A log that is open already stays open and @p logPath is ignored.
 *
 *  @param enable   0 switches off, anything else on.
 *  @param logPath  File to write. Null opens nothing: logging counts as on, yet messages go to boxes.
 *  @param append   0 overwrites the file, anything else appends to it.
 */
BVUTIL_API void BVUTIL_CALL BvUtil_SetWriteToLogfile(int enable, const char* logPath, int append);

/** @return 1 when logging is switched on, else 0. */
BVUTIL_API int BVUTIL_CALL BvUtil_GetWriteToLogfile(void);

BVUTIL_END_C

/** @} */

#endif
