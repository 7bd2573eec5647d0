/** @file
 *  CBvMatFile: material files, which describe one surface material for rendering.
 *
 *  A material file is a profile (ini) file. Its section "Material" holds the material's "Name", and the
 *  section of that name holds the values. Keys, with what a missing one reads as:
 *
 *  | key            | value                                                   | missing       |
 *  |----------------|---------------------------------------------------------|---------------|
 *  | `kdiffus`      | diffuse coefficient                                     | `0.4`         |
 *  | `kambient`     | ambient coefficient                                     | `0.4`         |
 *  | `kspiegel`     | specular coefficient                                    | `0.4`         |
 *  | `alpha`        | opacity                                                 | `0.4`         |
 *  | `Oe`           | specular exponent                                       | `30.0`        |
 *  | `Bits`         | unsigned decimal set of flags                           | 0             |
 *  | `RGBDiffus`    | diffuse colour `r,g,b`, 0.0 to 1.0                      | `0.4,0.4,0.4` |
 *  | `RGBDiffus255` | the same, 0 to 255; read when `RGBDiffus` is `` (empty) | `102,102,102` |
 *  | `RGBSpiegel`   | specular colour `r,g,b`, 0.0 to 1.0                     | `0.5,0.5,0.5` |
 *  | `Testtextur`   | path of a test texture                                  | empty         |
 *
 *  Values are read as at most 255 bytes. Numbers have a decimal point in every locale.
 *
 *  @par Compiler
 *  For C++ alone, and for callers built with the library's own compiler and C++ runtime: `std::string` and
 *  the class's layout cross the boundary.
 *
 *  @par Failures
 *  Nothing is thrown. When memory runs out, Read() and Write() return 0 and any other call leaves its text
 *  empty.
 */
#ifndef BVUTIL_MAT_FILE_H
#define BVUTIL_MAT_FILE_H

#ifndef __cplusplus
#error "bvutil/mat_file.h declares a C++ class"
#endif

#include "bvutil/api.h"

#include <cstddef>
#include <string>

/** @addtogroup profiles
 *  @{ */

/** A material's numbers. The shading constants derive from the exponent e; they are single-precision results
 *  and 0 when e is not above 0.1. */
struct matTyp {
    float diffuseColor[3];  /**< Red, green, blue, 0.0 to 1.0. */
    float specularColor[3]; /**< Red, green, blue, 0.0 to 1.0. */
    float alpha;            /**< Opacity. */
    float ambient;          /**< Ambient coefficient. */
    float diffuse;          /**< Diffuse coefficient. */
    float specular;         /**< Specular coefficient. */
    float exponent;         /**< Specular exponent. */
    float shade1;           /**< -1 / (e * sqrt(e)). */
    float shade2;           /**< shade3 - 1 / (1 - shade1). */
    float shade3;           /**< -1 / shade1, which is e to the power 1.5. */
    unsigned int reserved;  /**< 0 after reading. */
    unsigned int bits;      /**< Flags; bit 0 is never stored in a file. */
};

static_assert(sizeof(matTyp) == 64 && offsetof(matTyp, specularColor) == 12 &&
                  offsetof(matTyp, alpha) == 24 && offsetof(matTyp, ambient) == 28 &&
                  offsetof(matTyp, diffuse) == 32 && offsetof(matTyp, specular) == 36 &&
                  offsetof(matTyp, exponent) == 40 && offsetof(matTyp, shade1) == 44 &&
                  offsetof(matTyp, shade2) == 48 && offsetof(matTyp, shade3) == 52 &&
                  offsetof(matTyp, reserved) == 56 && offsetof(matTyp, bits) == 60,
              "the layout is part of the interface");

/** A material: its numbers, its name, and the paths of its test texture and its file. */
class BVUTIL_API CBvMatFile {
  public:
    /** Not loaded; empty texts, numbers 0. */
    CBvMatFile();
    /** Read() of @p path; IsLoaded() tells the result. */
    CBvMatFile(const std::string& path);
    /** Copies all of it. */
    CBvMatFile(const CBvMatFile& other);
    /** Copies all of it. */
    CBvMatFile& operator=(const CBvMatFile& other);
    virtual ~CBvMatFile();

    /** Reads a material file.
     *
     *  A colour without two commas is ignored. When `RGBSpiegel` is empty the specular colour is black: there
     *  is no key for 0 to 255 (kept: callers rely on it).
     *
     *  @param path  Path with a directory: the platform looks a bare file name up in the Windows directory.
     *  @return 1 when loaded, else 0. Then either the file cannot be read: the stored path becomes empty and
     *          IsLoaded() 0. Or IsLoaded() stays as it was (kept: callers rely on it), and the file has no
     *          name; or `kdiffus` is empty: the log name is the new one; or `kambient` is empty: so is the
     *          log name, `diffuse` is set and all other numbers are 0. Nothing else changes. */
    int Read(const std::string& path);

    /** Writes the material into a file that exists, and leaves the file's other keys and sections as they
     * are. When the file holds a material of another name, that one's section is deleted first.
     *
     *  The log name is used as it is; give an unnamed material one with SetLogName() or GetLogName().
     *
     *  @param path  As for Read(). It does not become the stored path.
     *  @return 1 when written; 0 when @p path is empty, not an existing file or not writable, or when the
     *          platform failed to write. */
    int Write(const std::string& path);
    /** Write() to the path of the last Read(). */
    int Write();

    /** @return 1 once a Read() has loaded a material, until one meets a file that cannot be read; else 0.
     *          Whether a certain Read() has loaded, its own result tells. */
    int IsLoaded();

    /** @return The numbers, for reading and changing; they belong to the object and live as long as it. The
     *          shading constants are not derived anew. */
    matTyp* GetMaterialPtr();

    /** @param out  Receives the material's name. An empty one is first set to the stored path's file name
     *              without directory and extension. */
    void GetLogName(std::string& out);
    /** Sets the name under which Write() stores the material. */
    void SetLogName(const std::string& name);

    /** @param out  Receives the path of the test texture. */
    void GetTestTexturePath(std::string& out);
    /** Sets the path of the test texture. */
    void SetTestTexturePath(const std::string& path);

  private:
    int m_loaded = 0;
    std::string m_logName;
    std::string m_testTexture;
    std::string m_path;
    matTyp m_material = {};
};

/** @} */

#endif
