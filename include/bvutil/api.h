/** @file
 *  What every header of BvUtil rests on: export decoration, calling convention, the one-byte boolean.
 *
 *  Conventions of the whole interface:
 *  - Every exported function has C linkage, an undecorated name and the C calling convention (the caller
 *    removes the arguments).
 *  - Text is narrow and NUL-terminated, in the ANSI code page; double-byte characters are respected.
 *  - The caller owns every buffer it passes. What a function allocates for the caller is released by the
 *    function that its comment names, never by the caller's own runtime.
 *  - Nothing is thrown across the boundary: running out of memory gives the family's failure result.
 *  - No locks: each family is used from one thread at a time.
 *  - Results do not depend on how the caller's thread computes (precision and rounding of the x87 unit, the
 *    MXCSR register), on its stack alignment, or on the C locale unless a comment says so. What the thread
 *    has set is set again when a function returns, and while it calls a callback; filter plug-ins and the
 *    calculator run with the platform's usual settings.
 */
#ifndef BVUTIL_API_H
#define BVUTIL_API_H

/** @addtogroup conventions
 *  @{ */

#if !defined(_WIN32)
#define BVUTIL_API
#define BVUTIL_CALL
#define BVUTIL_STDCALL
#elif defined(BVUTIL_BUILDING)
#define BVUTIL_API
#define BVUTIL_CALL __cdecl
#define BVUTIL_STDCALL __stdcall
#else
/** Marks what comes from BvUtil.dll. */
#define BVUTIL_API __declspec(dllimport)
/** The calling convention of every export and of every callback that does not say otherwise. */
#define BVUTIL_CALL __cdecl
/** The platform's convention (the called function removes the arguments), for the callbacks that name it. */
#define BVUTIL_STDCALL __stdcall
#endif

#ifdef __cplusplus
/** Declarations with C linkage, in either language, begin here ... */
#define BVUTIL_BEGIN_C extern "C" {
/** ... and end here. */
#define BVUTIL_END_C }
#else
#define BVUTIL_BEGIN_C
#define BVUTIL_END_C
#endif

/** One byte: 0 is false, anything else is true. */
typedef unsigned char BvUtilBool;

/** @} */

#endif
