// Data files, profiles and material files without memory.
#include "bvutil/fio.h"
#include "bvutil/ini_file.h"
#include "bvutil/mat_file.h"
#include "bvutil/mini.h"
#include "tests/faults/memory_faults.h"
#include "tests/support/temp_dir.h"

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

TEST(FilesMemory, DataFilesOpenOrDoNot) {
    const TempDir dir;
    const std::string path = dir.file("data.dat");
    fail_each_allocation([&](Fault& fault) {
        write_file(path, "old");
        FioFile* h = fault([&] { return fio_open(dir.path().c_str(), "data.dat", FIO_WRITE | FIO_HEADER); });
        if (h) {
            EXPECT_TRUE(std::string(h->path) != "????" || fault.struck());
            fault.succeeds(0, -1, [&] { return fio_putstring(h, "abc", 5); });
            EXPECT_EQ(fio_close(h), 0);
            EXPECT_EQ(read_file(path), "1.1  @mbINTEL   abc  ");
        } else {
            EXPECT_TRUE(fault.struck());
        }
        EXPECT_TRUE(DeleteFileA(path.c_str())) << "the file is still open";
    });
}

// A handle that is given out is a whole one; a value is read as it stands or not at all.
TEST(FilesMemory, ProfileValuesAreRightOrMissing) {
    const TempDir dir;
    const std::string file = dir.file("a name that is longer than any text kept in its object.ini");
    const std::string key(40, 'k');
    fail_each_allocation([&](Fault& fault) {
        write_file(file, "[s]\r\n" + key + "=1,2,3,4,5,6,7,8,9,10\r\n" + key +
                             "GUID={00000000-0000-0000-C000-000000000046}\r\nn=42\r\n");
        MiniHandle h = fault([&] { return mini_open(nullptr, file.c_str(), 0); });
        if (!h) {
            EXPECT_TRUE(fault.struck());
            return;
        }
        long number = 0;
        EXPECT_EQ(mini_read_long(h, "s", "n", &number), 0) << "a handle without a path";
        number = 0;
        if (fault.succeeds(0, -1, [&] { return mini_read_long(h, "s", "n", &number); })) {
            EXPECT_EQ(number, 42);
        }
        double real = 0, reals[4] = {};
        int count = 4, length = 30;
        char text[31] = "";
        MiniFillStyleEx fill{};
        if (fault.succeeds(0, -1, [&] { return mini_read_double(h, "s", "n", &real); })) {
            EXPECT_EQ(real, 42);
        }
        if (fault.succeeds(0, -1, [&] { return mini_read_doubles(h, "s", key.c_str(), reals, &count); })) {
            EXPECT_EQ(reals[3], 4);
        }
        if (fault.succeeds(0, -1, [&] { return mini_read_string(h, "s", key.c_str(), text, &length); })) {
            EXPECT_STREQ(text, "1,2,3,4,5,6,7,8,9,10");
        }
        if (fault.succeeds(0, -1, [&] { return mini_read_fillstyle_ex(h, "s", key.c_str(), &fill); })) {
            EXPECT_EQ(fill.fill.value3, 10);
        }
        const std::string before = read_file(file);
        for (const auto write :
             {+[](MiniHandle to, const char*k) { return mini_write_long(to, "s", k, 7); },
              +[](MiniHandle to, const char*k) { return mini_write_double(to, "s", k, 0.5); },
              +[](MiniHandle to, const char*k) {
                  return mini_write_string(to, "s", k, "a long text to be written");
              },
              +[](MiniHandle to, const char*k) {
                  const double values[] = {0.1, 2, 1e6, 3.25};
                  return mini_write_doubles(to, "s", k, values, 4);
              },
              +[](MiniHandle to, const char*k) {
                  const MiniFillStyleEx style{};
                  return mini_write_fillstyle_ex(to, "s", k, &style);
              }})
            fault.succeeds(0, -1, [&] { return write(h, "written with a key of some length"); });
        EXPECT_EQ(mini_read_long(h, "s", "n", &number), 0) << "what was not written is lost";
        EXPECT_EQ(mini_close(&h), 1);
    });
}

// Texts stay below the length that the caller's own string frees.
TEST(FilesMemory, ObjectsOfProfilesAndMaterials) {
    const TempDir dir;
    const std::string file = dir.file("a material of some length.mat");
    const std::string content =
        "[Material]\r\nName=the name of the material\r\n[the name of the material]\r\n"
        "kdiffus=0.5\r\nTesttextur=a texture in some folder.bmp\r\n";
    const std::string section = "the name of the material", key = "kdiffus", value = "0.25";
    fail_each_allocation([&](Fault& fault) {
        write_file(file, content);
        fault([&] {
            CBvIniFile ini(file, 0);
            const CBvIniFile copy(ini);
            ini = copy;
            return 0;
        });
        const std::string read = fault([&] { return CBvIniFile::FileReadString(file, section, key); });
        EXPECT_TRUE(read == "0.5" || (fault.struck() && read == BVUTIL_INI_MISSING)) << read;
        {
            CBvMatFile material;
            fault.succeeds(1, 0, [&] { return material.Read(file); });
            CBvMatFile copy = fault([&] { return CBvMatFile(material); });
            fault([&] {
                copy = material;
                return 0;
            });
            CBvMatFile whole(file);
            if (fault.succeeds(1, 0, [&] { return whole.Write(file); })) {
                EXPECT_EQ(CBvMatFile(file).GetMaterialPtr()->diffuse, 0.5f);
            }
        }
        EXPECT_EQ(CBvMatFile(file).IsLoaded(), 1) << "the file is no material any more";
    });
}

} // namespace
