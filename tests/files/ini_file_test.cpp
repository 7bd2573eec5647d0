// Profile files through the exported class: what is on disk is compared, not what a second read says.
#include "bvutil/ini_file.h"
#include "bvutil/strings.h"
#include "tests/files/comma_locale.h"
#include "tests/support/rows.h"
#include "tests/support/temp_dir.h"

#include <climits>
#include <tuple>

namespace {

TEST(IniFile, ReadsEveryKindOfValue) {
    const TempDir dir;
    const std::string path = dir.file("values.ini");
    write_file(path, "[Values]\r\ntext=one two\r\nempty=\r\nmarker=_TheDefault_\r\nlong=-17x\r\n"
                     "quoted=\" a \"\r\ndouble=  2.5e1;\r\ncomma=1,5\r\nfortran=1d2\r\n[a]b]\r\nx=7\r\n");
    // What "section|key" is as text, whole number and number, for the object and without one.
    const auto read_from = [](const std::string& file) {
        return [=](const std::string& row) {
            const auto section = fields_of(row)[0], key = fields_of(row)[1];
            CBvIniFile ini(file, 1);
            const std::tuple values(ini.ReadString(section, key), ini.ReadInt(section, key),
                                    ini.ReadDouble(section, key));
            EXPECT_EQ(values, std::tuple(CBvIniFile::FileReadString(file, section, key),
                                         CBvIniFile::FileReadInt(file, section, key),
                                         CBvIniFile::FileReadDouble(file, section, key)));
            std::ostringstream text;
            text << std::get<0>(values) << "|" << std::get<1>(values) << "|" << std::get<2>(values);
            return text.str();
        };
    };
    const CommaLocale locale;
    expect_rows(read_from(path), "Values|text -> one two|0|0", "VALUES|TEXT -> one two|0|0",
                "Values|empty -> |0|inf", "Values|marker -> _TheDefault_|0|inf",
                "Values|none -> _TheDefault_|0|inf", "None|text -> _TheDefault_|0|inf",
                "Values|long -> -17x|-17|-17", "Values|quoted ->  a |0|0", "Values|double -> 2.5e1;|2|25",
                "Values|comma -> 1,5|1|1", "Values|fortran -> 1d2|1|100", "a]b|x -> 7|7|7");
    expect_rows(read_from(dir.file("none.ini")), "Values|text -> _TheDefault_|0|inf");
    expect_rows(read_from(dir.path()), "Values|text -> _TheDefault_|0|inf");
}

TEST(IniFile, CutsValuesAt1023Bytes) {
    const TempDir dir;
    const std::string path = dir.file("long.ini");
    for (const std::size_t length : {1022u, 1023u, 1024u, 5000u}) {
        const std::string value = std::string(length - 1, 'v') + "z";
        EXPECT_TRUE(CBvIniFile::FileWriteString(path, "s", "long", value));
        EXPECT_EQ(CBvIniFile::FileReadString(path, "s", "long"), value.substr(0, 1023)) << length;
        EXPECT_EQ(read_file(path), "[s]\r\nlong=" + value + "\r\n") << "written whole";
    }
}

TEST(IniFile, WritesNumbersAlikeInEveryLocale) {
    const TempDir dir;
    const std::string path = dir.file("numbers.ini");
    const CommaLocale locale;
    CBvIniFile file(path, 0);
    const auto number = [&](const std::string& text) {
        EXPECT_TRUE(file.WriteDouble("n", "k", BvUtil_StringToDouble(text.c_str())));
        return read_file(path);
    };
    const std::string line = " -> [n]\r\nk=";
    expect_rows(number, "0.1" + line + "0.1\r\n", "1e20" + line + "1e+20\r\n", "100000" + line + "100000\r\n",
                "1000000" + line + "1e+06\r\n", "0" + line + "0\r\n", "-1.5e-300" + line + "-1.5e-300\r\n",
                "0.66666666" + line + "0.666667\r\n", "1e999" + line + "inf\r\n");
    for (const int value : {INT_MAX, INT_MIN}) {
        EXPECT_TRUE(file.WriteInt("n", "k", value));
        EXPECT_EQ(read_file(path), "[n]\r\nk=" + std::to_string(value) + "\r\n");
    }
}

struct Derived : CBvIniFile {
    using CBvIniFile::CBvIniFile;
    ~Derived() override { ++destroyed; }
    static inline int destroyed = 0;
};

TEST(IniFile, TakesItsPathFromTheConstructorAndCopies) {
    const TempDir dir;
    const std::string path = dir.file("one.ini"), other = dir.file("two.ini");
    write_file(path, "[s]\r\nk=1\r\n");
    write_file(other, "[s]\r\nk=2\r\n");
    CBvIniFile assigned, file(path, 1);
    EXPECT_TRUE(assigned.Open(path, 1) && file.Open(other, 1));
    EXPECT_EQ(assigned.ReadString("s", "k"), "_TheDefault_");
    file.Close();
    CBvIniFile copy(file);
    assigned = file;
    CBvIniFile* base = new Derived(other, 0);
    EXPECT_EQ(std::tuple(copy.ReadInt("s", "k"), assigned.ReadInt("s", "k"), base->ReadInt("s", "k")),
              std::tuple(1, 1, 2));
    EXPECT_NE(dynamic_cast<Derived*>(base), nullptr);
    delete base;
    EXPECT_EQ(Derived::destroyed, 1);
}

} // namespace
