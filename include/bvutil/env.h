/** @file
 *  The environment store: a tree of named values in memory, layered, read from and written to text files.
 *
 *  An environment holds sections; a section holds elements; an element is a data text, a block of further
 *  elements, or an external: an opaque 32-bit word of the caller's. Numbers and arrays are stored as text.
 *
 *  @par Paths
 *  An element is addressed by a section and a path of names, separated by the delimiter ("@" unless
 *  env_set_delimiter() chose another). A component made of digits behind a name is that name's occurrence
 *  number among its same-named siblings, 1 when it is left out: `walls@2@height` is the child `height` of the
 *  second child `walls`. Empty components vanish. On a sub-environment the section is ignored and paths start
 *  at the element it stands on; without a path (null) that element itself is addressed. The argument @p exact
 *  is 1 when each component must be a direct child, and 0 when each may lie at any depth: the search goes
 *  breadth first, and an occurrence counts within one list of siblings. With an occurrence number of 0 the
 *  exact walk takes the first child whatever its name (kept: callers rely on it).
 *
 *  @par Layers
 *  An environment may be opened on a fallback. The typed reads look there when the environment itself has
 *  nothing at (section, path), and return the tag of the layer that answered. Checks, counts, positions and
 *  all writes stay in the environment they are given.
 *
 *  @par Results
 *  An #EnvStatus: 0 or a layer tag for success (tags are the caller's; use non-negative ones), else a
 *  negative code. A null handle gives #ENV_INVALID and the message "Nil parametr". Problems that the user
 *  should see go to BvUtil_Message() with the source "BvUtilEnv". Running out of memory gives #ENV_INVALID or
 *  a null handle and leaves the store as it was. Only reading and copying keep what was done before: the
 *  sections that were complete, the leaves that were copied.
 *
 *  @par Lifetime
 *  Texts handed out by pointer live until their element is changed or deleted. A sub-environment whose
 *  element is deleted addresses nothing from then on: lookups give #ENV_NOT_FOUND, writes #ENV_INVALID.
 *
 *  The delimiter and the iteration of env_get_first() are process-wide, and nothing is locked: use the store
 *  from one thread at a time.
 */
#ifndef BVUTIL_ENV_H
#define BVUTIL_ENV_H

#include "bvutil/api.h"

/** @addtogroup env
 *  @{ */

BVUTIL_BEGIN_C

/** An environment or a sub-environment; made by env_open(), env_open_subenv() and env_create_subenv(),
 *  released by env_close(). */
typedef struct EnvHandleRecord* EnvHandle;

/** Result codes; -9 does not exist. */
enum {
    ENV_OK = 0,           /**< Done. */
    ENV_IS_DATA = -1,     /**< The element is a data text. */
    ENV_IS_BLOCK = -2,    /**< The element is a block. */
    ENV_IS_EXTERNAL = -3, /**< The element is an external. */
    ENV_NOT_FOUND = -4,   /**< No such section or element. */
    ENV_SYNTAX = -5,      /**< A file or value text does not have the expected form. */
    ENV_BAD_PATH = -6,    /**< The path has no component. */
    ENV_TOO_SMALL = -7,   /**< A buffer or array of the caller's is too small. */
    ENV_BUSY = -8,        /**< Sub-environments or layered environments still refer to the handle. */
    ENV_INVALID = -10     /**< Null handle or other invalid argument; out of memory. */
};

/** One of the codes above, or a layer tag. */
typedef int EnvStatus;

/** @name Environments and elements
 *  @{ */

/** Opens an empty environment.
 *  @param layer_tag  Reported by every read that this environment answers.
 *  @param fallback   Consulted when a read finds nothing here; null for none. It cannot be closed before
 *                    this environment.
 *  @return The handle, for env_close(); null only when memory runs out. */
BVUTIL_API EnvHandle BVUTIL_CALL env_open(long layer_tag, EnvHandle fallback);

/** Closes an environment with all its elements, or a sub-environment without touching them.
 *  @param close_chain  Non-zero: then closes the fallback of a main environment, and so on down the chain;
 *                      the result is the last one's.
 *  @return 0; #ENV_BUSY while sub-environments or layered environments refer to the handle (nothing is
 *          changed); #ENV_INVALID for a null handle. */
BVUTIL_API EnvStatus BVUTIL_CALL env_close(EnvHandle env, int close_chain);

/** Opens a sub-environment standing on an element, of any kind; it becomes a block when a child is put
 *  under it. Without a path on a main environment it stands on the section. It has the layer tag and the
 *  fallback of @p env, and must be closed before it.
 *  @return The handle, or null when the element is not found or an argument is invalid. */
BVUTIL_API EnvHandle BVUTIL_CALL env_open_subenv(EnvHandle env, const char* section, const char* path,
                                                 int exact);

/** Opens a sub-environment at the exact (section, path); when nothing is there, first creates an external 0
 *  in its place.
 *  @return The handle, or null when it can be neither opened nor created. */
BVUTIL_API EnvHandle BVUTIL_CALL env_create_subenv(EnvHandle env, const char* section, const char* path);

/** Tells what is at (section, path).
 *  @return #ENV_IS_DATA, #ENV_IS_BLOCK, #ENV_IS_EXTERNAL or #ENV_NOT_FOUND; #ENV_INVALID for a null handle.
 *          On a main environment a null section stands for the whole top level (a block when it holds a
 *  section), and a section without path is a block whatever it holds. A sub-environment without path that
 *  stands on an empty block gives #ENV_NOT_FOUND (kept: callers rely on it). */
BVUTIL_API EnvStatus BVUTIL_CALL env_check(EnvHandle env, const char* section, const char* path, int exact);

/** @return 1 when env_check() finds an element of any kind, else 0. */
BVUTIL_API int BVUTIL_CALL env_exist(EnvHandle env, const char* section, const char* path, int exact);
/** @return 1 when env_check() gives #ENV_IS_BLOCK, else 0. */
BVUTIL_API int BVUTIL_CALL env_exist_block(EnvHandle env, const char* section, const char* path, int exact);
/** @return 1 when env_check() gives #ENV_IS_DATA, else 0. */
BVUTIL_API int BVUTIL_CALL env_exist_data(EnvHandle env, const char* section, const char* path, int exact);
/** @return 1 when env_check() gives #ENV_IS_EXTERNAL, else 0. */
BVUTIL_API int BVUTIL_CALL env_exist_external(EnvHandle env, const char* section, const char* path,
                                              int exact);

/** Deletes the element at the exact path with all below it, or without a path the section.
 *  @return 0, #ENV_NOT_FOUND, #ENV_BAD_PATH, or #ENV_INVALID (also without a path on a sub-environment). */
BVUTIL_API EnvStatus BVUTIL_CALL env_delete(EnvHandle env, const char* section, const char* path);

/** Creates an element in front of the one at the exact path: an external 0, or, without a path on a main
 *  environment, an empty block in front of the section. Without a path on a sub-environment the new external
 *  goes in front of the element it stands on.
 *  @return 0; #ENV_NOT_FOUND, #ENV_BAD_PATH, #ENV_INVALID. Without a path a missing section inserts nothing
 *  and gives 0 all the same (kept: callers rely on it), but #ENV_NOT_FOUND when there is no section at all.
 */
BVUTIL_API EnvStatus BVUTIL_CALL env_insert_before(EnvHandle env, const char* section, const char* path,
                                                   const char* name);

/** @return The number of sections (null section on a main environment), or of the children of what is at
 *          (section, path); 0 when that is no block or missing; #ENV_INVALID for a null handle. */
BVUTIL_API long BVUTIL_CALL env_count_elements(EnvHandle env, const char* section, const char* path,
                                               int exact);

/** @return The length in bytes of a data element's text; 0 for anything else. */
BVUTIL_API long BVUTIL_CALL env_data_length(EnvHandle env, const char* section, const char* path, int exact);

/** @} */
/** @name Paths and positions
 *  @{ */

/** Chooses the delimiter. Every character of it separates when a path is split; its first character joins.
 *  @param delim  At most 254 bytes are taken; null or empty changes nothing.
 *  @return The delimiter until now, in a static buffer that the next call overwrites. */
BVUTIL_API const char* BVUTIL_CALL env_set_delimiter(const char* delim);

/** Joins texts to a path: @p first and the further `const char*` arguments up to a null.
 *  @param bufsize  Size of @p buf in bytes.
 *  @return 0, also with a null @p first (@p buf is then untouched); #ENV_TOO_SMALL when @p bufsize is below 1
 *          or @p first does not fit (untouched), or a further text does not fit (@p buf is emptied);
 *          #ENV_INVALID for a null @p buf. */
BVUTIL_API EnvStatus BVUTIL_CALL env_create_path(long bufsize, char* buf, const char* first, ...);

/** Joins the texts of a null-terminated array to a path.
 *  @return 0; #ENV_TOO_SMALL when @p bufsize is below 1 or the path does not fit (@p buf is emptied);
 *          #ENV_INVALID for a null @p buf or array. */
BVUTIL_API EnvStatus BVUTIL_CALL env_create_array_path(long bufsize, char* buf,
                                                       const char* const* components);

/** Counts same-named siblings.
 *  @return The number of elements in the list of the element at (section, path) that are called as the path's
 *  last component (a number there is compared as a name); 0 when not found; #ENV_INVALID, #ENV_BAD_PATH. */
BVUTIL_API long BVUTIL_CALL env_count_path(EnvHandle env, const char* section, const char* path, int exact);

/** Reads the child at a position of the block at (section, path), or the section at a position when @p env is
 *  a main environment and @p section is null. Never falls back.
 *  @param pos           From 1.
 *  @param layer_out     Receives the layer tag on every find. It and each output below may be null.
 *  @param name_buf      Receives the name when it is shorter than @p name_size.
 *  @param value_buf     Receives a data text when it is shorter than @p value_size.
 *  @param external_out  Receives an external's value.
 *  @return The kind; #ENV_TOO_SMALL when a text did not fit (those that fit are copied), #ENV_NOT_FOUND, also
 *          for a position below 1; #ENV_BAD_PATH, #ENV_INVALID. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_pos(EnvHandle env, const char* section, const char* path, int exact,
                                             long pos, long* layer_out, long name_size, char* name_buf,
                                             long value_size, char* value_buf, long* external_out);

/** env_get_pos() at position 1; when it finds a kind, an iteration begins that env_get_next() carries on.
 *  There is one iteration in the process; it ends when its environment is closed. A section or path of 256
 *  bytes or more is read but not iterated. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_first(EnvHandle env, const char* section, const char* path,
                                               int exact, long* layer_out, long name_size, char* name_buf,
                                               long value_size, char* value_buf, long* external_out);

/** The next element of the iteration, as env_get_pos(). Any result but a kind ends it.
 *  @return The kind; #ENV_NOT_FOUND at the end and without an iteration; else as env_get_pos(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_next(long name_size, char* name_buf, long value_size,
                                              char* value_buf, long* external_out);

/** @} */
/** @name Reading values
 *  Each looks in the fallback layers when (section, path) is missing, and returns the tag of the layer that
 *  answered. Outputs are untouched on failure unless a function says otherwise; a null one is #ENV_INVALID
 *  except where a function allows it.
 *  @{ */

/** Reads an element without copying: by position when @p pos is above 0 (as env_get_pos()), else by path.
 *  @param layer_out,name_out,text_out,external_out  Receive the layer tag and the name on every find, the
 *  text of a data element, the value of an external; each may be null. The texts belong to the store.
 *  @return The kind; #ENV_NOT_FOUND, #ENV_BAD_PATH, #ENV_INVALID. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_core(EnvHandle env, const char* section, const char* path, int exact,
                                              long pos, long* layer_out, const char** name_out,
                                              const char** text_out, long* external_out);

/** Copies a data text.
 *  @param buf_size  The text must be shorter than this.
 *  @return The layer tag; #ENV_TOO_SMALL; -1 (#ENV_IS_DATA) when the element is not data; lookup codes. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get(EnvHandle env, const char* section, const char* path, int exact,
                                         long buf_size, char* buf);

/** Hands out a data text by pointer. @return As env_get(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_reference(EnvHandle env, const char* section, const char* path,
                                                   int exact, const char** text_out);

/** Copies a data text whole.
 *  @param size  Not consulted (kept: callers rely on it). @p buf must hold the text: env_data_length() + 1.
 *  @return As env_get_reference(); on failure @p buf is set to "". */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_string(EnvHandle env, const char* section, const char* path,
                                                int exact, long size, char* buf);

/** Reads one whole number. @return The layer tag; #ENV_SYNTAX when the text is none; -1 when not data. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_long(EnvHandle env, const char* section, const char* path, int exact,
                                              long* value);

/** Reads one number. @return The layer tag; #ENV_SYNTAX when the text is none; -1 when not data. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_double(EnvHandle env, const char* section, const char* path,
                                                int exact, double* value);

/** Reads a comma-separated list of whole numbers.
 *  @param count  In: the capacity of @p values; out: the number read, 0 on failure.
 *  @return The layer tag; #ENV_SYNTAX; #ENV_TOO_SMALL for more items than the capacity; -1 when not data. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_longs(EnvHandle env, const char* section, const char* path,
                                               int exact, long* count, long* values);

/** Reads a comma-separated list of numbers. As env_get_longs(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_doubles(EnvHandle env, const char* section, const char* path,
                                                 int exact, long* count, double* values);

/** Reads a comma-separated list of words of ASCII letters and digits; any other text is #ENV_SYNTAX, also one
 *  that env_put_strings() stored.
 *  @param item_size  Size of each buffer; an item must be shorter.
 *  @param items      The caller's buffers; a null one counts as no room. Buffers may be written on failure.
 */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_strings(EnvHandle env, const char* section, const char* path,
                                                 int exact, long* count, long item_size, char** items);

/** Reads an external's value. @return The layer tag; -3 (#ENV_IS_EXTERNAL) when it is none. */
BVUTIL_API EnvStatus BVUTIL_CALL env_get_external(EnvHandle env, const char* section, const char* path,
                                                  int exact, long* value);

/** @} */
/** @name Writing values
 *  A write walks exactly, creates what is missing and replaces what is there, a block with all below it.
 *  Occurrence n of a name with k same-named siblings appends n - k elements; those before the last are empty
 *  data texts. A data or external element on the way becomes a block. A path without components stores
 *  nothing and gives 0, and so does a missing path on a main environment, which at most creates the section
 *  (both kept: callers rely on them). Occurrence 0 of anything under a block without children gives
 *  #ENV_NOT_FOUND.
 *  @{ */

/** Writes @p text as data, or, when it is null, @p external as an external. @return 0 or #ENV_INVALID. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_core(EnvHandle env, const char* section, const char* path,
                                              const char* text, long external);
/** Writes a text. @return 0; #ENV_INVALID, also for a null text. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put(EnvHandle env, const char* section, const char* path,
                                         const char* text);
/** The same as env_put(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_string(EnvHandle env, const char* section, const char* path,
                                                const char* text);
/** Writes an external: a word that the store keeps and never looks at, and that no file holds. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_external(EnvHandle env, const char* section, const char* path,
                                                  long value);
/** Writes a whole number as its decimal text. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_long(EnvHandle env, const char* section, const char* path,
                                              long value);
/** Writes a number as its "%g" text: six significant digits, a decimal point in every locale. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_double(EnvHandle env, const char* section, const char* path,
                                                double value);
/** Writes a text formatted as printf() does, with a decimal point in every locale. @return 0; #ENV_INVALID,
 *  also when the text has 1024 bytes or more. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_format(EnvHandle env, const char* section, const char* path,
                                                const char* format, ...);
/** Writes a list of whole numbers, joined by ",". The joined text holds 1023 bytes; what does not fit is left
 *  out silently, and when its separator fitted the text ends in "," and reads as #ENV_SYNTAX (kept: files in
 *  use were written so). @return 0; #ENV_INVALID, also for a count below 1 or null values. */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_longs(EnvHandle env, const char* section, const char* path,
                                               long count, const long* values);
/** Writes a list of numbers in their "%g" texts. As env_put_longs(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_doubles(EnvHandle env, const char* section, const char* path,
                                                 long count, const double* values);
/** Writes a list of texts as they are. A null entry or one of more than 1024 bytes ends the list. As
 *  env_put_longs(). */
BVUTIL_API EnvStatus BVUTIL_CALL env_put_strings(EnvHandle env, const char* section, const char* path,
                                                 long count, const char* const* values);

/** @} */
/** @name Files
 *  @{ */

/** Source of characters: returns the next byte as a signed char value, or -1 at the end. */
typedef int(BVUTIL_CALL* EnvReadChar)(void* source);
/** Sink of characters: takes each byte as a signed char value. */
typedef void(BVUTIL_CALL* EnvWriteChar)(int character, void* sink);

/** Replaces all sections of a main environment by those read from @p read_char, which is called until it
 *  returns -1 or the text is found wrong. After a syntax error, which a message tells, the sections
 *  completed before it are there. NUL characters are dropped.
 *  @return 0; #ENV_SYNTAX; #ENV_INVALID (null arguments, a sub-environment: "can not read subenv", an
 *          environment that is being read, by its own callback). */
BVUTIL_API EnvStatus BVUTIL_CALL env_read(EnvReadChar read_char, void* source, EnvHandle env);

/** The same from a file, in text mode; a byte 0xFF ends it. @return As env_read(); #ENV_INVALID with the
 *  message "cann't open to read: <file_name>" when it cannot be opened (the environment is then unchanged).
 */
BVUTIL_API EnvStatus BVUTIL_CALL env_read_file(const char* file_name, EnvHandle env);

/** Writes a main environment as text, without its externals; lines are folded with a backslash.
 *  Texts that the format cannot hold (beginning with "{", with a line end inside, ...) are written as they
 *  are. */
BVUTIL_API void BVUTIL_CALL env_write(EnvWriteChar write_char, void* sink, EnvHandle env);

/** The same to a file, in text mode. A byte 0xFF is left out. A write error is not told; check the file where
 *  it matters. "cann't open to write:" is the message when the file cannot be opened. */
BVUTIL_API void BVUTIL_CALL env_write_file(const char* file_name, EnvHandle env);

/** @} */
/** @name Walking and copying
 *  @{ */

/** Receives an element of a walk.
 *  @param subenv   Stands on the element; open during the call only. Null when the element's own path does
 *  not lead to it (a name that holds the delimiter).
 *  @param section  Section argument that addresses it.
 *  @param path     Path that addresses it, each name with its occurrence number; null for a section. */
typedef void(BVUTIL_CALL* EnvVisit)(EnvHandle subenv, const char* section, const char* path, void* user);

/** Visits the children of the block at (section, path) in order, or the sections when @p env is a main
 *  environment and @p section is null. The callback may use and change the store.
 *  @return 0; #ENV_BAD_PATH; #ENV_INVALID; -2 (not -4; kept) when there is no such block or it has no
 *          children. */
BVUTIL_API EnvStatus BVUTIL_CALL env_traverse(EnvHandle env, const char* section, const char* path, int exact,
                                              EnvVisit callback, void* user);

/** Visits every data and external element of the environment, depth first; @p path is the full path inside
 *  the section, e.g. `layers@1@name@2`. The callback must not start another leaf walk.
 *  @return 0; #ENV_INVALID when a step failed (the rest is then passed over). */
BVUTIL_API EnvStatus BVUTIL_CALL env_traverse_leafs(EnvHandle env, EnvVisit callback, void* user);

/** Lists the names of the children of the block at (section, path), each followed by @p separator.
 *  @return 0; -2 (kept) when it is no block; #ENV_TOO_SMALL, #ENV_BAD_PATH, #ENV_INVALID. @p buf is emptied
 *  on failure, except when @p buf_size is below 2. */
BVUTIL_API EnvStatus BVUTIL_CALL env_list_elem_names(EnvHandle env, const char* section, const char* path,
                                                     int exact, char separator, long buf_size, char* buf);

/** Copies the data leaves of @p src into @p dst, in the order of env_traverse_leafs(); externals are passed
 *  over.
 *  @param mode  0: only what @p dst does not have; 1: each as a further occurrence; 2: always, overwriting;
 *  3: only what @p dst has.
 *  @return 0; #ENV_INVALID when a copy failed, as it does for texts of 255 bytes and more (what came before
 *  is copied, what comes behind is passed over), and when there is nothing to walk over. */
BVUTIL_API EnvStatus BVUTIL_CALL env_sink(EnvHandle dst, EnvHandle src, int mode);

/** Copies the block at the exact (section, path) of @p src to the same place of @p dst, as env_sink().
 *  @return 0; #ENV_INVALID, also when @p src has nothing there. */
BVUTIL_API EnvStatus BVUTIL_CALL env_copy_block(EnvHandle dst, EnvHandle src, const char* section,
                                                const char* path, int mode);

/** @} */

BVUTIL_END_C

/** @} */

#endif
