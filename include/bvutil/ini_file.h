/** @file
 *  CBvIniFile: single values of a profile (ini) file.
 *
 *  Every call goes through the platform's private-profile functions and so follows their rules: sections and
 *  keys are matched without regard to case, blanks around a value and one pair of quotes are dropped on
 *  reading, a file name without a directory is looked up in the Windows directory, and a write creates the
 *  file, the section and the key as needed and leaves everything else in the file as it is.
 *
 *  @par Compiler
 *  For C++ alone, and for callers built with the library's own compiler and C++ runtime: `std::string` and
 *  the class's layout cross the boundary. All other callers have the `mini_` functions.
 *
 *  @par Failures
 *  Nothing is thrown. When memory runs out, a read gives #BVUTIL_INI_MISSING and a constructor or an
 *  assignment leaves the path empty.
 */
#ifndef BVUTIL_INI_FILE_H
#define BVUTIL_INI_FILE_H

#ifndef __cplusplus
#error "bvutil/ini_file.h declares a C++ class; C callers use the mini_ functions"
#endif

#include "bvutil/api.h"

#include <string>

/** @addtogroup profiles
 *  @{ */

/** What a missing section or key reads as. A value that is literally this text cannot be told from it. */
#define BVUTIL_INI_MISSING "_TheDefault_"

/** A profile file, by its path. The static functions do the same for a path given with each call.
 *
 *  A value is read as at most 1023 bytes; the platform cuts a longer one. */
class BVUTIL_API CBvIniFile {
  public:
    /** An object without a path, with flags 0. */
    CBvIniFile();
    /** @param file   Path of the profile file. It is neither opened nor checked.
     *  @param flags  Kept and copied; no operation uses them. */
    CBvIniFile(const std::string& file, unsigned int flags);
    /** Copies path and flags. */
    CBvIniFile(const CBvIniFile& other);
    /** Copies path and flags. */
    CBvIniFile& operator=(const CBvIniFile& other);
    virtual ~CBvIniFile();

    /** Does nothing: the path is set by the constructor alone (kept: callers rely on it).
     *  @return true. */
    bool Open(const std::string& file, unsigned int flags);
    /** Does nothing. */
    void Close();

    /** @return The value; "" when the key has an empty one; #BVUTIL_INI_MISSING when the file, the section or
     *          the key is missing. */
    std::string ReadString(const std::string& section, const std::string& key);
    /** @return The leading decimal or `0x` number of the value, as the platform reads it; 0 when missing. */
    int ReadInt(const std::string& section, const std::string& key);
    /** @return The number that the value begins with, its decimal sign a point in every locale; 0 when it
     *          begins with none; positive infinity when it is empty or missing. */
    double ReadDouble(const std::string& section, const std::string& key);

    /** Sets a value. @return Whether the platform wrote it. */
    bool WriteString(const std::string& section, const std::string& key, const std::string& value);
    /** Sets a value to the decimal text of a number. */
    bool WriteInt(const std::string& section, const std::string& key, int value);
    /** Sets a value to a number of six significant digits, `0.1` or `1e+20`, the same in every locale. */
    bool WriteDouble(const std::string& section, const std::string& key, double value);

    /** @name The same for the profile file @p file
     *  @{ */
    /** ReadString() */
    static std::string FileReadString(const std::string& file, const std::string& section,
                                      const std::string& key);
    /** ReadInt() */
    static int FileReadInt(const std::string& file, const std::string& section, const std::string& key);
    /** ReadDouble() */
    static double FileReadDouble(const std::string& file, const std::string& section, const std::string& key);
    /** WriteString() */
    static bool FileWriteString(const std::string& file, const std::string& section, const std::string& key,
                                const std::string& value);
    /** WriteInt() */
    static bool FileWriteInt(const std::string& file, const std::string& section, const std::string& key,
                             int value);
    /** WriteDouble() */
    static bool FileWriteDouble(const std::string& file, const std::string& section, const std::string& key,
                                double value);
    /** @} */

  private:
    friend class ProfileSection; // the library's own

    std::string m_file;
    unsigned int m_flags = 0;
};

/** @} */

#endif
