/** @file
 *  Where the suite keeps its files, what system it runs on, and how it starts other programs.
 *
 *  Paths are written to buffers of the caller's that hold at least #BVUTIL_PATH_SIZE bytes. A path that would
 *  need more is refused: the function fails and leaves the buffer as it was.
 *
 *  @par The main configuration file
 *  Its name is mb9.ini, mb8.ini, ... mb1.ini or mb.ini, the first of these that exists. Each name is looked
 *  for in the current directory, in the directory that the environment variable MB names and in the root of
 *  drive C, and only then the next name is.
 *
 *  @warning Looking for the main configuration file returns only when there is one: after mb.ini the search
 *  goes on with mb65535.ini down to mb10.ini and begins again, for ever (kept: callers rely on it).
 *  A caller that cannot be sure of the file looks for it before.
 */
#ifndef BVUTIL_LOCATIONS_H
#define BVUTIL_LOCATIONS_H

#include "bvutil/api.h"

/** @addtogroup locations
 *  @{ */

BVUTIL_BEGIN_C

/** Buffers for paths. */
enum { BVUTIL_PATH_SIZE = 260 /**< Size in bytes, the terminating zero included. */ };

/** Tells the version of the operating system, as the platform reports it to programs without a manifest.
 *  @param major,minor  Receive the version numbers.
 *  @return 1; 0, with nothing stored, when a pointer is null. */
BVUTIL_API int BVUTIL_CALL BvUtil_GetOperatingSystem(int* major, int* minor);

/** Gives the folder of the suite's program data, "Morvane Software GmbH\Brenvik Morvane +2011\Programm" under
 *  a folder that depends on the system.
 *
 *  @param path  In: on systems other than 5.0 to 5.2 and 6.0, the folder to build on; the function does not
 *               find it there (kept: callers rely on it). Out: the program data folder. A backslash is put
 *               between the two when the first has a backslash that is not its last character, and only then:
 *               behind "data" there is none, behind "C:\data\" there are two.
 *  @return @p path; null when the system's folder cannot be found, when the result does not fit, and for
 *  null; an empty constant text, after a box, when the system cannot tell its version. */
BVUTIL_API char* BVUTIL_CALL BvUtil_GetProgPathAppData(char* path);

/** Gives the user's folder for application data that follows the user to other machines.
 *  @param path  Receives the folder; nothing is appended.
 *  @return 1; 0 when it cannot be found, and for null. */
BVUTIL_API int BVUTIL_CALL BvUtil_GetProgPathRoamingAppData(char* path);

/** Reads the value "InstallLocation" of a registry key below HKEY_LOCAL_MACHINE.
 *  @param subKey  The key.
 *  @param size    Size of @p buffer in bytes.
 *  @param buffer  Receives the bytes of the value as they are stored, with the zero that ends a text.
 *  @return 1; 0, with @p buffer untouched, when the key or the value is missing, empty, longer than @p size
 *          or than 2048 bytes, and for null. */
BVUTIL_API int BVUTIL_CALL GetLocalMachineRegistryEntry(const char* subKey, int size, void* buffer);

/** Searches a file: in the current directory, in the directory that the environment variable MB names, then
 *  in the directories that an entry of the main configuration file lists, separated by ";".
 *
 *  @param section,key  The entry. When either is null or empty, the result is the main configuration file,
 *                      lower-cased.
 *  @param file         The file to search, a name or a path; also a directory. Null: the result is the main
 *                      configuration file.
 *  @param out          Receives the path, 260 bytes; lower-cased (BvUtil_Makepath()), except for a null
 *                      @p file, where the case is that of the current directory, or "C:\".
 *  @return 0. -1 when the file is not found, the entry is empty or the path does not fit, and for a null
 *          @p out. A missing entry counts as one directory named "_TheDefault_" (CBvIniFile).
 *  @warning Without a main configuration file the search does not end, unless the file lies in the current
 *           directory or that of MB; see above. */
BVUTIL_API int BVUTIL_CALL BvUtil_MB_SucheDatei(const char* section, const char* key, const char* file,
                                                char* out);

/** Reads a path from the main configuration file.
 *
 *  @param section,key  The entry.
 *  @param out          Receives its value, lower-cased; 260 bytes. "_thedefault_" when the entry is missing.
 *  @return 0. -1 with the message "Sektion ... oder Eintrag ... in ... nicht gefunden!" when the value is
 *          empty; with "Es konnte keine mb.ini (mb[1-9].ini) gefunden werden!" when the configuration file's
 *          own path has 260 bytes or more; without a message when the value has, and for null arguments.
 *  @warning Without a main configuration file the search does not end; see above. */
BVUTIL_API int BVUTIL_CALL BvUtil_MB_SuchePfad(const char* section, const char* key, char* out);

/** Reads a value of a profile file.
 *
 *  @param iniFile,section,key  Where the value is, as for CBvIniFile::FileReadString().
 *  @param out   Receives the value. When it has fewer than `*size - 1` bytes, zero bytes fill up to that
 *               number (the last byte of @p out stays as it was); else it is copied whole, with a terminating
 *               zero, whatever @p size says: 1024 bytes always suffice.
 *  @param size  In: the size of @p out. Out: the length of the value when it was copied whole.
 *  @return 0; 6, with nothing changed, when the value is empty, and for null. A missing value gives the text
 *          "_TheDefault_". */
BVUTIL_API int BVUTIL_CALL BvUtil_MB_IniReadString(const char* iniFile, const char* section, const char* key,
                                                   char* out, int* size);

/** Starts a program with one argument and waits until it ends.
 *
 *  The command line is `"<program>" "<argument>"`: quotation marks inside are not escaped. While it waits,
 *  each message that arrives for this thread takes one message from its queue, which is thrown away, a
 *  request to quit included; windows of the thread do not repaint.
 *
 *  @param program   The program's file with its extension; it is not searched for.
 *  @param argument  Its argument; "" gives an empty one.
 *  @return 1 when the program has ended, and also when it could not be started (kept: callers rely on it); 0
 *          when waiting failed, memory ran out, and for null. */
BVUTIL_API int BVUTIL_CALL BvUtil_ExecuteProgram(const char* program, const char* argument);

BVUTIL_END_C

/** @} */

#endif
