// Material files through the exported class.
#include "bvutil/mat_file.h"
#include "module/handles.h"
#include "tests/files/comma_locale.h"
#include "tests/support/rows.h"
#include "tests/support/temp_dir.h"

#include <cmath>
#include <cstring>
#include <tuple>

namespace {

class MatFile : public testing::Test {
  protected:
    // A file whose material "Holz" has these lines.
    const std::string& with(const std::string& lines) {
        write_file(path, "[Material]\r\nName=Holz\r\n[Holz]\r\n" + lines);
        return path;
    }
    // What the object tells: loaded, name, texture, and three fields of the material.
    static auto told(CBvMatFile& file) {
        std::string name = "old", texture = "old";
        file.GetLogName(name);
        file.GetTestTexturePath(texture);
        const matTyp& material = *file.GetMaterialPtr();
        return std::tuple(file.IsLoaded(), name, texture, material.diffuse, material.ambient, material.bits);
    }

    const CommaLocale locale;
    TempDir dir;
    const std::string path = dir.file("One.Two.mat");
};

TEST_F(MatFile, EveryKeyFillsItsField) {
    const float shade1 = -1.0f / (30.0f * std::sqrt(30.0f)), shade3 = -1.0f / shade1;
    const matTyp defaults = {{0.4f, 0.4f, 0.4f},
                             {0.5f, 0.5f, 0.5f},
                             0.4f,
                             0.4f,
                             0.4f,
                             0.4f,
                             30.0f,
                             shade1,
                             shade3 - 1.0f / (1.0f - shade1),
                             shade3,
                             0,
                             0};
    // The fields, numbered, that are not as in a section without any key.
    const auto changed = [&](const std::string& lines) {
        const matTyp material = *CBvMatFile(with(lines)).GetMaterialPtr();
        float is[14], was[14];
        std::memcpy(is, &material, sizeof is);
        std::memcpy(was, &defaults, sizeof was);
        std::ostringstream text;
        for (int i = 0; i < 14; ++i)
            if (is[i] != was[i]) text << i << ":" << is[i] << " ";
        text << material.bits + material.reserved;
        return text.str();
    };
    expect_rows(changed, " -> 0", "kdiffus=0.25 -> 8:0.25 0", "kambient=abc -> 7:0 0",
                "kspiegel=0.75x -> 9:0.75 0", "kspiegel= -> 9:0 0", "alpha=1e-1 -> 6:0.1 0",
                "alpha= -> 6:0 0", "Oe= -> 10:0 11:0 12:0 13:0 0", "Oe=0.1 -> 10:0.1 11:0 12:0 13:0 0",
                "Oe=-4 -> 10:-4 11:0 12:0 13:0 0", "Oe=4 -> 10:4 11:-0.125 12:7.11111 13:8 0",
                "RGBDiffus=0.1,0.2,0.3 -> 0:0.1 1:0.2 2:0.3 0", "RGBDiffus=1,2;3,4 -> 0:1 1:2 2:4 0",
                "RGBDiffus=x,,1,9 -> 0:0 1:0 2:1 0",
                "RGBDiffus=0.1,0.2\r\nRGBDiffus255=255,0,51 -> 0:0 1:0 2:0 0", "RGBDiffus255=255,0,51 -> 0",
                "RGBDiffus=\r\nRGBDiffus255=510,1.9,x -> 0:2 1:0.00392157 2:0 0",
                "RGBDiffus=\r\nRGBDiffus255=255 0 51 -> 0:0 1:0 2:0 0", "RGBDiffus= -> 0",
                "RGBSpiegel=0.1,0.2,0.3 -> 3:0.1 4:0.2 5:0.3 0",
                "RGBSpiegel=\r\nRGBSpiegel255=255,0,51 -> 3:0 4:0 5:0 0", "Bits=7 -> 7",
                "Bits=99999999999 -> 4294967295", "Bits=0x10 -> 0", "Bits=12a -> 12");
}

TEST_F(MatFile, StopsAtTheFirstThingThatIsMissing) {
    CBvMatFile file;
    const auto load = [&] {
        return file.Read(with("kdiffus=0.25\r\nkambient=0.5\r\nBits=6\r\nTesttextur=t.bmp"));
    };
    EXPECT_EQ(told(file), std::tuple(0, "", "", 0.0f, 0.0f, 0u));
    for (const std::string& gone : {dir.file("none.mat"), dir.path(), std::string()}) {
        EXPECT_EQ(load(), 1);
        EXPECT_EQ(file.Read(gone), 0);
        EXPECT_EQ(told(file), std::tuple(0, "Holz", "t.bmp", 0.25f, 0.5f, 6u));
        EXPECT_EQ(file.Write(), 0) << "the stored path is empty";
    }
    // A file that turns out to be no material: the flag is that of the material before.
    const std::tuple<std::string, std::string, float, float, unsigned> cases[] = {
        {"Nam=Neu\r\n[Neu]\r\nkdiffus=1\r\n", "Holz", 0.25f, 0.5f, 6},
        {"Name=Neu\r\n[Neu]\r\nkdiffus=\r\n", "Neu", 0.25f, 0.5f, 6},
        {"Name=Neu\r\n[Neu]\r\nkdiffus=1\r\nkambient=\r\n", "Neu", 1.0f, 0.0f, 0},
    };
    for (const auto& [text, name, diffuse, ambient, bits] : cases) {
        EXPECT_EQ(load(), 1);
        write_file(path, "[Material]\r\n" + text);
        EXPECT_EQ(CBvMatFile(path).IsLoaded() + file.Read(path), 0) << text;
        EXPECT_EQ(told(file), std::tuple(1, name, "t.bmp", diffuse, ambient, bits)) << text;
    }
}

TEST_F(MatFile, ReadsValuesOf255Bytes) {
    const std::string name(300, 'n'), texture(254, 't');
    write_file(path, "[Material]\r\nName=" + name + "\r\n[" + name.substr(0, 255) +
                         "]\r\nkdiffus=0.5\r\nTesttextur=" + texture + "xy\r\n");
    CBvMatFile file(path);
    EXPECT_EQ(told(file), std::tuple(1, name.substr(0, 255), texture + "x", 0.5f, 0.4f, 0u));
}

TEST_F(MatFile, WritesEveryKeyAndRemovesTheFormerMaterial) {
    CBvMatFile file(
        with("kdiffus=0.25\r\nkspiegel=0.66666666\r\nalpha=1e-7\r\nBits=7\r\nRGBDiffus=0.1,0.2,0.3\r\n"));
    file.SetTestTexturePath("c:\\t.bmp");
    const std::string target = dir.file("target.mat");
    const std::string values =
        "]\r\nkdiffus=0.25\r\nkambient=0.4\r\nkspiegel=0.666667\r\nalpha=1e-07\r\nOe=30\r\nBits=6\r\n"
        "RGBDiffus=0.1,0.2,0.3\r\nRGBSpiegel=0.5,0.5,0.5\r\nTesttextur=c:\\t.bmp\r\n";
    const std::string head = "[Material]\r\nName=";
    const struct {
        std::string name, before, after; // without empty lines
    } cases[] = {
        {"a]b", "", head + "a]b\r\n[a]b" + values},
        {"Holz", "[Other]\r\nx=1\r\n[Material]\r\nmore=2\r\nName=Alt\r\n[Alt]\r\nkdiffus=1\r\ny=3\r\n",
         "[Other]\r\nx=1\r\n[Material]\r\nmore=2\r\nName=Holz\r\n[Holz" + values},
        {"Holz", head + "Alt\r\n[Alt]\r\ny=3\r\n",
         head + "Holz\r\n[Alt]\r\ny=3\r\n[Holz" + values}, // no material
        {"Holz", head + "Holz\r\n[Holz]\r\nkdiffus=1\r\ny=3\r\n",
         head + "Holz\r\n[Holz]\r\nkdiffus=0.25\r\ny=3" + values.substr(values.find("\r\nkambient"))},
    };
    for (const auto& [name, before, after] : cases) {
        write_file(target, before);
        file.SetLogName(name);
        EXPECT_EQ(file.Write(target), 1);
        std::string text = read_file(target);
        for (std::size_t at; (at = text.find("\n\r\n")) != std::string::npos;)
            text.erase(at + 1, 2);
        EXPECT_EQ(text, after);
        CBvMatFile again(target);
        EXPECT_EQ(told(again), std::tuple(1, name, "c:\\t.bmp", 0.25f, 0.4f, 6u));
    }
    EXPECT_EQ(file.Write(), 1);
    EXPECT_NE(read_file(path).find("Testtextur=c:\\t.bmp"), std::string::npos);
}

TEST_F(MatFile, RefusesWhatCannotBeWritten) {
    CBvMatFile file(with("kdiffus=1\r\n"));
    const std::string before = read_file(path);
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
    for (const std::string& target : {std::string(), dir.file("none.mat"), dir.path(), path})
        EXPECT_EQ(file.Write(target), 0) << target;
    SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    unique_file holder(CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(file.Write(), 0);
    holder.reset();
    EXPECT_EQ(read_file(path), before);
    EXPECT_FALSE(std::filesystem::exists(dir.file("none.mat")));
}

TEST_F(MatFile, NamesAnUnnamedMaterialAfterItsFileAndCopies) {
    write_file(path, "[Other]\r\n");
    CBvMatFile file(path);
    const std::tuple unnamed(0, std::string("One.Two"), std::string(), 0.0f, 0.0f, 0u);
    EXPECT_EQ(told(file), unnamed);
    file.Read("");
    EXPECT_EQ(told(file), unnamed) << "a name that is set stays";
    CBvMatFile original(with("kdiffus=0.25\r\nTesttextur=t\r\n")), copy(original);
    file = original;
    for (CBvMatFile* other : {&copy, &file}) {
        EXPECT_EQ(told(*other), told(original));
        EXPECT_EQ(std::memcmp(other->GetMaterialPtr(), original.GetMaterialPtr(), sizeof(matTyp)), 0);
        EXPECT_NE(other->GetMaterialPtr(), original.GetMaterialPtr());
        EXPECT_EQ(other->Write(), 1);
    }
}

} // namespace
