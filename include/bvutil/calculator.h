/** @file
 *  Expressions and number texts, by way of the calculator component.
 *
 *  The library evaluates and formats nothing itself: each function passes its work to the calculator, a COM
 *  object of the class {9BA593B7-2640-493B-AA8A-B3D9172337C1}, through its interface
 *  {9464C5B0-CAB6-4093-A21D-4572A1B7513E}. The first call of any of them connects, once for the process.
 *  While the calculator is missing, every call tries again and, having failed, shows a message box with
 *  "Keine Verbindung zum Calculator(COM-Objekt)", which it waits for. A call with a null argument is refused
 *  before that: without connecting and without a message.
 *
 *  The @p option values go to the calculator unchanged and mean what it makes of them. For BvCalc.dll, the
 *  calculator that comes with this library, docs/calculator.md defines every one of them.
 *
 *  Call these functions from the thread that loaded the library: its COM apartment holds the connection.
 *  Text to the calculator is read in the system's ANSI code page, text from it is written in the calling
 *  thread's.
 */
#ifndef BVUTIL_CALCULATOR_H
#define BVUTIL_CALCULATOR_H

#include "bvutil/api.h"

/** @addtogroup calculator
 *  @{ */

BVUTIL_BEGIN_C

/** Result codes of the conversions. All others are the calculator's own. */
enum {
    CALC_SUCCESS = 0x1000,      /**< Done. */
    CALC_NOT_REACHABLE = 0x1006 /**< No calculator, the call to it failed, a null argument, out of memory. */
};

/** Prepares the calculator.
 *  @param option  Passed through. */
BVUTIL_API void BVUTIL_CALL calc_init(int option);

/** Hands an expression to the calculator. Whether it succeeded is for calc_error() to tell.
 *  @param expression       The text; null does nothing.
 *  @param option1,option2  Passed through. */
BVUTIL_API void BVUTIL_CALL calc_expression(const char* expression, int option1, int option2);

/** Gets a message text from the calculator.
 *  @param option1,option2,option3  Passed through.
 *  @param text  Receives the text with its terminating zero; untouched when there is no calculator or the
 *               call to it fails. There is no length limit: the caller's buffer must be large enough for any
 *               text that its calculator produces. Null does nothing. */
BVUTIL_API void BVUTIL_CALL calc_error(int option1, int option2, int option3, char* text);

/** Converts a text to a number.
 *  @param text    The text.
 *  @param option  Passed through.
 *  @param value   Receives the number when the result is #CALC_SUCCESS, else untouched.
 *  @return #CALC_SUCCESS, #CALC_NOT_REACHABLE (also for a null argument), or a code of the calculator's. */
BVUTIL_API int BVUTIL_CALL ConvStringToDouble(const char* text, int option, double* value);

/** Converts a number to a text.
 *  @param value                    The number.
 *  @param option1,option2,option3  Passed through.
 *  @param text  Receives the text with its terminating zero when the result is #CALC_SUCCESS, else untouched;
 *               no length limit, as for calc_error().
 *  @return #CALC_SUCCESS, #CALC_NOT_REACHABLE (also for a null buffer), or a code of the calculator's. */
BVUTIL_API int BVUTIL_CALL ConvDoubleToString(double value, int option1, int option2, int option3,
                                              char* text);

BVUTIL_END_C

/** @} */

#endif
