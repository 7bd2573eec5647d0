// Profile files through the exported class: what is on disk is compared, not what a second read says.
#include "bvutil/ini_file.h"
#include "module/handles.h"
#include "tests/files/comma_locale.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>

namespace {

constexpr double missing_number = std::numeric_limits<double>::infinity();

TEST(IniFile, ReadsEveryKindOfValue) {
    const TempDir dir;
    const std::string path = dir.file("values.ini");
    write_file(path, "[Empty]\r\n[Values]\r\ntext=one two\r\nempty=\r\nmarker=_TheDefault_\r\nlong=-17x\r\n"
                     "quoted=\" a \"\r\ndouble=  2.5e1;\r\nword=abc\r\ncomma=1,5\r\nfortran=1d2\r\n"
                     "[a]b]\r\nx=7\r\n");
    const struct {
        const char *section, *key, *text;
        int integer;
        double number;
    } cases[] = {
        {"Values", "text", "one two", 0, 0},
        {"VALUES", "TEXT", "one two", 0, 0},
        {"Values", "empty", "", 0, missing_number},
        {"Values", "marker", "_TheDefault_", 0, missing_number},
        {"Values", "none", "_TheDefault_", 0, missing_number},
        {"None", "text", "_TheDefault_", 0, missing_number},
        {"Empty", "text", "_TheDefault_", 0, missing_number},
        {"Values", "long", "-17x", -17, -17},
        {"Values", "quoted", " a ", 0, 0},
        {"Values", "double", "2.5e1;", 2, 25},
        {"Values", "word", "abc", 0, 0},
        {"Values", "comma", "1,5", 1, 1},
        {"Values", "fortran", "1d2", 1, 100},
        {"a]b", "x", "7", 7, 7},
    };
    const CommaLocale locale;
    CBvIniFile file(path, 1);
    for (const auto& [section, key, text, integer, number] : cases) {
        SCOPED_TRACE(std::string(section) + "/" + key);
        EXPECT_EQ(file.ReadString(section, key), text);
        EXPECT_EQ(file.ReadInt(section, key), integer);
        EXPECT_EQ(file.ReadDouble(section, key), number);
        EXPECT_EQ(CBvIniFile::FileReadString(path, section, key), text);
        EXPECT_EQ(CBvIniFile::FileReadInt(path, section, key), integer);
        EXPECT_EQ(CBvIniFile::FileReadDouble(path, section, key), number);
    }
    for (const std::string& unreadable : {dir.file("none.ini"), dir.path()}) {
        EXPECT_EQ(CBvIniFile::FileReadString(unreadable, "Values", "text"), "_TheDefault_");
        EXPECT_EQ(CBvIniFile::FileReadInt(unreadable, "Values", "text"), 0);
        EXPECT_EQ(CBvIniFile::FileReadDouble(unreadable, "Values", "text"), missing_number);
    }
}

TEST(IniFile, CutsValuesAt1023Bytes) {
    const TempDir dir;
    for (const std::size_t length : {1022u, 1023u, 1024u, 5000u}) {
        const std::string value = std::string(length - 1, 'v') + "z";
        const std::string path = dir.file(std::to_string(length) + ".ini");
        EXPECT_TRUE(CBvIniFile::FileWriteString(path, "s", "long", value));
        EXPECT_TRUE(CBvIniFile::FileWriteString(path, "s", "next", "kept"));
        EXPECT_EQ(CBvIniFile::FileReadString(path, "s", "long"), value.substr(0, 1023)) << length;
        EXPECT_EQ(CBvIniFile::FileReadString(path, "s", "next"), "kept") << length;
        EXPECT_NE(read_file(path).find(value), std::string::npos) << "written whole";
    }
}

TEST(IniFile, WritesNumbersAlikeInEveryLocale) {
    const TempDir dir;
    const std::string path = dir.file("numbers.ini");
    const CommaLocale locale;
    CBvIniFile file(path, 0);
    const std::pair<double, const char*> doubles[] = {
        {0.1, "0.1"},          {1e20, "1e+20"},          {100000, "100000"},
        {1000000, "1e+06"},    {-1.5e-300, "-1.5e-300"}, {0, "0"},
        {2.0 / 3, "0.666667"}, {missing_number, "inf"},
    };
    for (const auto& [value, text] : doubles) {
        EXPECT_TRUE(file.WriteDouble("n", "double", value));
        EXPECT_EQ(read_file(path), "[n]\r\ndouble=" + std::string(text) + "\r\n");
    }
    const std::pair<int, const char*> integers[] = {
        {0, "0"}, {2147483647, "2147483647"}, {INT_MIN, "-2147483648"}};
    for (const auto& [value, text] : integers) {
        EXPECT_TRUE(CBvIniFile::FileWriteInt(path, "i", "int", value));
        EXPECT_EQ(file.ReadString("i", "int"), text);
    }
}

TEST(IniFile, AWriteKeepsEverythingElse) {
    const TempDir dir;
    const std::string path = dir.file("kept.ini");
    write_file(path, "; head\r\n[One]\r\na=1\r\n\r\n[Two]\r\n; inner\r\nb=2\r\nc=3\r\n[Three]\r\n");
    CBvIniFile file(path, 1);
    EXPECT_TRUE(file.WriteString("two", "B", "new"));
    EXPECT_TRUE(file.WriteInt("Four", "d", 4));
    EXPECT_TRUE(file.WriteString("Two", "c", ""));
    const std::string text = read_file(path);
    for (const char* part : {"; head\r\n", "[One]\r\na=1\r\n", "; inner\r\n", "b=new\r\n", "c=\r\n",
                             "[Three]\r\n", "[Four]\r\nd=4\r\n"})
        EXPECT_NE(text.find(part), std::string::npos) << part << "in\n" << text;
    EXPECT_EQ(text.find("b=2"), std::string::npos);
}

TEST(IniFile, RefusesWhatCannotBeWritten) {
    const TempDir dir;
    const std::string locked = dir.file("locked.ini");
    write_file(locked, "[s]\r\nk=1\r\n");
    // Not the read-only attribute: a superuser under Wine writes such files all the same.
    unique_file holder(CreateFileA(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(holder);
    for (const std::string& path : {locked, dir.path(), dir.file("no\\such.ini")}) {
        CBvIniFile file(path, 1);
        EXPECT_FALSE(file.WriteString("s", "k", "2")) << path;
        EXPECT_FALSE(file.WriteInt("s", "k", 2)) << path;
        EXPECT_FALSE(file.WriteDouble("s", "k", 2)) << path;
    }
    holder.reset();
    EXPECT_EQ(read_file(locked), "[s]\r\nk=1\r\n");
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
    CBvIniFile opened;
    EXPECT_TRUE(opened.Open(path, 1));
    EXPECT_EQ(opened.ReadString("s", "k"), "_TheDefault_");

    CBvIniFile file(path, 1);
    EXPECT_TRUE(file.Open(other, 1));
    file.Close();
    CBvIniFile copy(file);
    opened = file;
    EXPECT_EQ(copy.ReadInt("s", "k"), 1);
    EXPECT_EQ(opened.ReadInt("s", "k"), 1);

    CBvIniFile* base = new Derived(other, 0);
    EXPECT_EQ(base->ReadInt("s", "k"), 2);
    EXPECT_NE(dynamic_cast<Derived*>(base), nullptr);
    delete base;
    EXPECT_EQ(Derived::destroyed, 1);
}

} // namespace
