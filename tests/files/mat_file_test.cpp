// Material files through the exported class.
#include "bvutil/mat_file.h"
#include "module/handles.h"
#include "tests/files/comma_locale.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace {

using Floats = std::array<float, 14>; // the record's, in its order

struct Numbers {
    Floats values;
    unsigned reserved, bits;
    explicit Numbers(const matTyp& material) { std::memcpy(this, &material, sizeof material); }
};

// What a section without any key reads as.
constexpr Floats defaults = {0.4f, 0.4f, 0.4f, 0.5f, 0.5f, 0.5f, 0.4f, 0.4f, 0.4f, 0.4f, 30.0f, 0, 0, 0};
enum Index { diffuse_red = 0, specular_red = 3, alpha = 6, ambient, diffuse, specular, exponent };

class MatFile : public testing::Test {
  protected:
    // A file whose material "Holz" has these lines.
    const std::string& with(const std::string& lines) {
        write_file(path, "[Material]\r\nName=Holz\r\n[Holz]\r\n" + lines);
        return path;
    }
    static std::string log_name(CBvMatFile& file) {
        std::string name = "old";
        file.GetLogName(name);
        return name;
    }
    static std::string texture(CBvMatFile& file) {
        std::string texture = "old";
        file.GetTestTexturePath(texture);
        return texture;
    }

    TempDir dir;
    const std::string path = dir.file("One.Two.mat");
};

TEST_F(MatFile, EveryKeyFillsItsField) {
    const struct {
        const char* line;
        int first; // field, and what it reads as: one value or a colour
        std::initializer_list<float> values;
    } cases[] = {
        {"", diffuse, {0.4f}},
        {"kdiffus=0.25", diffuse, {0.25f}},
        {"kambient=0.125", ambient, {0.125f}},
        {"kambient=abc", ambient, {0}},
        {"kspiegel=0.75x", specular, {0.75f}},
        {"kspiegel=", specular, {0}},
        {"alpha=1e-1", alpha, {0.1f}},
        {"alpha=", alpha, {0}},
        {"Oe=", exponent, {0, 0, 0, 0}},
        {"Oe=0.05", exponent, {0.05f, 0, 0, 0}},
        {"Oe=0.1", exponent, {0.1f, 0, 0, 0}},
        {"Oe=-4", exponent, {-4, 0, 0, 0}},
        {"Oe=4", exponent, {4, -0.125f, 8.0f - 1.0f / 1.125f, 8}},
        {"RGBDiffus=0.1,0.2,0.3", diffuse_red, {0.1f, 0.2f, 0.3f}},
        {"RGBDiffus=1,2;3,4", diffuse_red, {1, 2, 4}},
        {"RGBDiffus=x,,1,9", diffuse_red, {0, 0, 1}},
        {"RGBDiffus=0.1,0.2", diffuse_red, {0, 0, 0}},
        {"RGBDiffus=0.1 0.2 0.3\r\nRGBDiffus255=255,0,51", diffuse_red, {0, 0, 0}},
        {"RGBDiffus255=255,0,51", diffuse_red, {0.4f, 0.4f, 0.4f}},
        {"RGBDiffus=\r\nRGBDiffus255=255,0,51", diffuse_red, {1, 0, 0.2f}},
        {"RGBDiffus=\r\nRGBDiffus255=510,1.9,x", diffuse_red, {2, 1 / 255.0f, 0}},
        {"RGBDiffus=\r\nRGBDiffus255=255 0 51", diffuse_red, {0, 0, 0}},
        {"RGBDiffus=", diffuse_red, {0.4f, 0.4f, 0.4f}},
        {"RGBSpiegel=0.1,0.2,0.3", specular_red, {0.1f, 0.2f, 0.3f}},
        {"RGBSpiegel=\r\nRGBSpiegel255=255,0,51", specular_red, {0, 0, 0}},
    };
    const CommaLocale locale;
    for (const auto& [line, first, values] : cases) {
        SCOPED_TRACE(line);
        CBvMatFile file(with(line));
        ASSERT_EQ(file.IsLoaded(), 1);
        EXPECT_EQ(log_name(file), "Holz");
        const Numbers read(*file.GetMaterialPtr());
        Floats expected = defaults;
        std::copy(values.begin(), values.end(), expected.begin() + first);
        for (std::size_t i = 0; i < (first == exponent ? 14u : 11u); ++i)
            EXPECT_FLOAT_EQ(read.values[i], expected[i]) << i;
        EXPECT_EQ(read.reserved, 0u);
    }
    const float e = 30, first = -1.0f / (e * std::sqrt(e)), third = -1.0f / first;
    const matTyp usual = *CBvMatFile(with("")).GetMaterialPtr();
    EXPECT_EQ(usual.shade1, first);
    EXPECT_EQ(usual.shade3, third);
    EXPECT_EQ(usual.shade2, third - 1.0f / (1.0f - first));
    const std::pair<const char*, unsigned> bits[] = {
        {"", 0},     {"7", 7},   {"4294967295", 4294967295u}, {"99999999999", 4294967295u},
        {"0x10", 0}, {"12a", 12}};
    for (const auto& [text, value] : bits)
        EXPECT_EQ(CBvMatFile(with("Bits=" + std::string(text))).GetMaterialPtr()->bits, value) << text;
}

TEST_F(MatFile, StopsAtTheFirstThingThatIsMissing) {
    CBvMatFile file;
    const auto load = [&] {
        return file.Read(with("kdiffus=0.25\r\nkambient=0.5\r\nBits=6\r\nTesttextur=t.bmp"));
    };
    EXPECT_EQ(file.IsLoaded(), 0);
    EXPECT_EQ(log_name(file), "");
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(texture(file), "t.bmp");

    for (const std::string& gone : {dir.file("none.mat"), dir.path(), std::string()}) {
        ASSERT_EQ(load(), 1);
        EXPECT_EQ(file.Read(gone), 0);
        EXPECT_EQ(file.IsLoaded(), 0);
        EXPECT_EQ(file.Write(), 0) << "the stored path is empty";
        EXPECT_EQ(file.GetMaterialPtr()->diffuse, 0.25f);
        EXPECT_EQ(log_name(file), "Holz");
    }
    const struct {
        const char *text, *name;
        float diffuse, ambient;
        unsigned bits;
    } cases[] = {
        {"[Material]\r\n[Holz]\r\nkdiffus=1\r\n", "Holz", 0.25f, 0.5f, 6},
        {"[Material]\r\nName=\r\n", "Holz", 0.25f, 0.5f, 6},
        {"[Material]\r\nName=Neu\r\n[Neu]\r\nkdiffus=\r\n", "Neu", 0.25f, 0.5f, 6},
        {"[Material]\r\nName=Neu\r\n[Neu]\r\nkdiffus=1\r\nkambient=\r\n", "Neu", 1, 0, 0},
    };
    for (const auto& [text, name, diffuse, ambient, bits] : cases) {
        ASSERT_EQ(load(), 1);
        write_file(path, text);
        EXPECT_EQ(CBvMatFile(path).IsLoaded(), 0) << text;
        EXPECT_EQ(file.Read(path), 0) << text;
        EXPECT_EQ(file.IsLoaded(), 1) << "the flag of the material before\n" << text;
        EXPECT_EQ(log_name(file), name);
        EXPECT_EQ(texture(file), "t.bmp");
        EXPECT_EQ(file.GetMaterialPtr()->diffuse, diffuse) << text;
        EXPECT_EQ(file.GetMaterialPtr()->ambient, ambient) << text;
        EXPECT_EQ(file.GetMaterialPtr()->bits, bits) << text;
    }
}

TEST_F(MatFile, ReadsValuesOf255Bytes) {
    const std::string name(300, 'n');
    write_file(path, "[Material]\r\nName=" + name + "\r\n[" + name.substr(0, 255) +
                         "]\r\nkdiffus=0.5\r\nTesttextur=" + std::string(254, 't') + "xy\r\n");
    CBvMatFile file(path);
    EXPECT_EQ(log_name(file), name.substr(0, 255));
    EXPECT_EQ(file.GetMaterialPtr()->diffuse, 0.5f);
    EXPECT_EQ(texture(file), std::string(254, 't') + "x");
}

constexpr char values[] =
    "]\r\nkdiffus=0.25\r\nkambient=0.4\r\nkspiegel=0.666667\r\nalpha=1e-07\r\nOe=30\r\nBits=6\r\n"
    "RGBDiffus=0.1,0.2,0.3\r\nRGBSpiegel=0.5,0.5,0.5\r\nTesttextur=c:\\t.bmp\r\n";

TEST_F(MatFile, WritesEveryKeyAndRemovesTheFormerMaterial) {
    const CommaLocale locale;
    CBvMatFile file(
        with("kdiffus=0.25\r\nkspiegel=0.66666666\r\nalpha=1e-7\r\nBits=7\r\nRGBDiffus=0.1,0.2,0.3\r\n"));
    file.SetTestTexturePath("c:\\t.bmp");
    const std::string target = dir.file("target.mat");
    const struct {
        const char *name, *before, *kept;
    } cases[] = {
        {"Holz", "", ""},
        {"a]b", "", ""},
        {"Holz", "[Other]\r\nx=1\r\n[Material]\r\nmore=2\r\nName=Alt\r\n[Alt]\r\nkdiffus=1\r\ny=3\r\n",
         "[Other]\r\nx=1\r\n[Material]\r\nmore=2\r\n"},
        {"Holz", "[Material]\r\nName=Alt\r\n[Alt]\r\ny=3\r\n", "[Alt]\r\ny=3\r\n"}, // no material: stays
    };
    for (const auto& [name, before, kept] : cases) {
        write_file(target, before);
        file.SetLogName(name);
        ASSERT_EQ(file.Write(target), 1);
        const std::string text = read_file(target);
        EXPECT_NE(text.find("Name=" + std::string(name) + "\r\n"), std::string::npos) << text;
        EXPECT_NE(text.find(std::string("[") + name + values), std::string::npos) << text;
        for (std::string line, rest = kept; !rest.empty(); rest.erase(0, line.size())) {
            line = rest.substr(0, rest.find('\n') + 1);
            EXPECT_NE(text.find(line), std::string::npos) << line << "is lost in\n" << text;
        }
        EXPECT_EQ(text.find("[Alt]") != std::string::npos, std::strstr(kept, "[Alt]") != nullptr) << text;
        CBvMatFile again(target);
        EXPECT_EQ(again.IsLoaded(), 1);
        EXPECT_EQ(again.GetMaterialPtr()->bits, 6u);
        EXPECT_EQ(again.GetMaterialPtr()->diffuseColor[2], 0.3f);
    }
    EXPECT_EQ(read_file(path).find("Testtextur"), std::string::npos);
    EXPECT_EQ(file.Write(), 1);
    EXPECT_NE(read_file(path).find("Testtextur=c:\\t.bmp"), std::string::npos);
}

TEST_F(MatFile, RefusesWhatCannotBeWritten) {
    CBvMatFile file(with("kdiffus=1\r\n"));
    const std::string before = read_file(path);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    for (const std::string& target : {std::string(), dir.file("none.mat"), dir.path(), path})
        EXPECT_EQ(file.Write(target), 0) << target;
    EXPECT_EQ(file.Write(), 0);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    {
        const unique_file holder(
            CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(file.Write(), 0);
    }
    EXPECT_EQ(read_file(path), before);
    EXPECT_FALSE(std::filesystem::exists(dir.file("none.mat")));
}

TEST_F(MatFile, NamesAnUnnamedMaterialAfterItsFileAndCopies) {
    write_file(path, "[Other]\r\n");
    CBvMatFile file(path);
    EXPECT_EQ(file.IsLoaded(), 0);
    EXPECT_EQ(log_name(file), "One.Two");
    file.Read("");
    EXPECT_EQ(log_name(file), "One.Two") << "a name that is set stays";

    CBvMatFile original(with("kdiffus=0.25\r\nTesttextur=t\r\n"));
    CBvMatFile copy(original);
    file = original;
    for (CBvMatFile* other : {&copy, &file}) {
        EXPECT_EQ(other->IsLoaded(), 1);
        EXPECT_EQ(log_name(*other), "Holz");
        EXPECT_EQ(texture(*other), "t");
        EXPECT_EQ(std::memcmp(other->GetMaterialPtr(), original.GetMaterialPtr(), sizeof(matTyp)), 0);
        EXPECT_NE(other->GetMaterialPtr(), original.GetMaterialPtr());
        EXPECT_EQ(other->Write(), 1);
    }
}

} // namespace
