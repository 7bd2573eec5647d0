// Texts and paths, in the DLL and natively.
#include "bvutil/strings.h"
#include "tests/support/double_byte.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#ifdef _WIN32
#include <cstdlib>
#endif

namespace {

struct Divided {
    std::string drive, dir, name;
    bool operator==(const Divided&) const = default;
};
std::ostream& operator<<(std::ostream& out, const Divided& parts) {
    return out << "[" << parts.drive << "][" << parts.dir << "][" << parts.name << "]";
}

// Splits into buffers of exactly the stated sizes: the sanitizers see a byte too many.
Divided divide(const std::string& path) {
    const auto drive = std::make_unique<char[]>(3);
    const auto dir = std::make_unique<char[]>(256), name = std::make_unique<char[]>(256);
    const std::unique_ptr<char[]> exact(strcpy(new char[path.size() + 1], path.c_str()));
    EXPECT_EQ(BvUtil_Divide(exact.get(), drive.get(), dir.get(), name.get()), 0);
    return {drive.get(), dir.get(), name.get()};
}

TEST(Divide, SplitsEveryShapeOfPath) {
    const std::pair<const char*, Divided> cases[] = {
        {"c:\\a\\b.c", {"c:", "\\a\\", "b.c"}},
        {"C:x", {"C:", "", "x"}},
        {"C:", {"C:", "", ""}},
        {"\\\\server\\share\\f", {"", "\\\\server\\share\\", "f"}},
        {"a/b", {"", "a/", "b"}},
        {"C:/x\\y/z", {"C:", "/x\\y/", "z"}},
        {"..\\x", {"", "..\\", "x"}},
        {"..", {"", "", ".."}},
        {"a\\b\\", {"", "a\\b\\", ""}},
        {"x.y.z", {"", "", "x.y.z"}},
        {"a.b\\c", {"", "a.b\\", "c"}},
        {".ini", {"", "", ".ini"}},
        {":x", {"", "", ":x"}},
        {"ab:c", {"", "", "ab:c"}},
        {"", {}},
    };
    for (const auto& [path, parts] : cases) {
        EXPECT_EQ(divide(path), parts) << path;
#ifdef _WIN32
        char drive[_MAX_DRIVE], dir[_MAX_DIR], name[_MAX_FNAME], extension[_MAX_EXT];
        _splitpath(path, drive, dir, name, extension);
        EXPECT_EQ(divide(path), (Divided{drive, dir, std::string(name) + extension})) << "the platform";
#endif
    }
}

TEST(Divide, EmptiesAllWhenAPartDoesNotFit) {
    const std::string longest(255, 'x'), dir = std::string(254, 'd') + "\\";
    EXPECT_EQ(divide("C:" + dir + longest), (Divided{"C:", dir, longest}));
    EXPECT_EQ(divide("C:" + dir + longest + "y"), Divided());
    EXPECT_EQ(divide("C:d" + dir + longest), Divided());
    EXPECT_EQ(divide("C:" + std::string(200, 'x') + "." + std::string(200, 'y')), Divided());
    EXPECT_EQ(BvUtil_Divide("C:\\x", nullptr, nullptr, nullptr), 0);
    char name[256] = "old";
    EXPECT_EQ(BvUtil_Divide(nullptr, nullptr, nullptr, name), 0);
    EXPECT_STREQ(name, "");
}

TEST(Divide, LeavesDoubleByteCharactersWhole) {
    const DoubleByteCodePage code_page;
    EXPECT_EQ(divide("C:\\\x95\x5C\\\x83\x5C.x"), (Divided{"C:", "\\\x95\x5C\\", "\x83\x5C.x"}));
    EXPECT_EQ(divide("\x95\x5C"), (Divided{"", "", "\x95\x5C"}));
    EXPECT_EQ(divide("a\\b\x81"), (Divided{"", "a\\", "b\x81"}));
}

std::string make_path(const char* base, const char* dir, const char* file) {
    char out[1100];
    EXPECT_EQ(BvUtil_Makepath(out, base, dir, file), out);
    return out;
}

TEST(Makepath, ResolvesAFileAgainstDirectoryAndBase) {
    const struct {
        const char *base, *dir, *file, *path;
    } cases[] = {
        {"", "C:\\Data", "Mb.INI", "c:\\data\\mb.ini"},
        {"D:\\Base", "C:\\Data", "E:\\X", "e:\\x"},
        {"D:\\Base", "C:\\Data", "X", "c:\\data\\x"},
        {"D:\\Base", "Data", "X", "d:\\base\\data\\x"},
        {"Base", "Data", "X", "base\\data\\x"},
        {"D:\\Base\\", "\\Data\\", "\\X", "d:\\base\\data\\x"},
        {"D:", "", "X", "d:x"},
        {"D:", nullptr, "\\X", "d:\\x"},
        {nullptr, "C:\\Data\\", "X", "c:\\data\\x"},
        {nullptr, "C:\\Data", "/X", "c:\\data\\/x"},
        {nullptr, "C:/Data/", "\\X", "c:/data/\\x"},
        {nullptr, "C:\\a", "\\\\srv\\s\\f", "c:\\a\\\\srv\\s\\f"},
        {nullptr, "C:\\a.b", "..\\X", "c:\\a.b\\..\\x"},
        {"D:\\b", "C:", "X", "c:x"},
        {"D:\\Base", "Data", "", "d:\\base\\data"}, // no separator before nothing, but before the directory
        {"D:\\Base", nullptr, nullptr, "d:\\base"},
        {"", "", "C:\\A\\Value", "c:\\a\\value"},
        {nullptr, nullptr, nullptr, ""},
    };
    for (const auto& [base, dir, file, path] : cases)
        EXPECT_EQ(make_path(base, dir, file), path);
    EXPECT_EQ(BvUtil_Makepath(nullptr, "", "", "x"), nullptr);

    const std::string deep(500, 'D');
    EXPECT_EQ(make_path(nullptr, deep.c_str(), deep.c_str()).size(), 1001u);
    char shared[20] = "FILE";
    EXPECT_STREQ(BvUtil_Makepath(shared, "C:", "\\Dir", shared), "c:\\dir\\file");
}

TEST(Makepath, KnowsTheCodePage) {
#ifdef _WIN32
    EXPECT_EQ(make_path(nullptr, nullptr, "\xC4pfel"), "\xE4pfel");
#endif
    const DoubleByteCodePage code_page;
    // A trail byte is neither a separator nor a letter; the full-width A is.
    EXPECT_EQ(make_path(nullptr, "\x95\x5C", "\\\x83\x41\x82\x60"), "\x95\x5C\\\x83\x41\x82\x81");
    EXPECT_EQ(make_path(nullptr, "D\x81", "X\x81"), "d\x81\\x\x81");
}

TEST(GetExtensionPos, FindsTheLastDotButTheFirstByte) {
    const std::pair<const char*, int> cases[] = {
        {"a.b.c", 3}, {"abc", -1}, {".x", -1}, {".ini", -1}, {"", -1},        {"a", -1},
        {"a.", 1},    {"..", 1},   {"...", 2}, {".a.b", 2},  {"a.b\\cde", 1},
    };
    for (const auto& [name, position] : cases)
        EXPECT_EQ(BvUtil_GetExtensionPos(name), position) << name;
    EXPECT_EQ(BvUtil_GetExtensionPos(nullptr), -1);
    const DoubleByteCodePage code_page;
    EXPECT_EQ(BvUtil_GetExtensionPos("\x83\x5C.x\x81"), 2);
}

TEST(Search, FindsCharactersAndTexts) {
    EXPECT_EQ(BvUtil_StrIChr("abcb", 'b'), 1);
    EXPECT_EQ(BvUtil_StrIChr("abc", 'B'), -1);
    EXPECT_EQ(BvUtil_StrIChr("abc", '\0'), -1);
    EXPECT_EQ(BvUtil_StrIChr(nullptr, 'a'), -1);
    EXPECT_EQ(BvUtil_StrIPos("aabaabaaac", "aabaaa"), 3);
    EXPECT_EQ(BvUtil_StrIPos("abc", "C"), -1);
    EXPECT_EQ(BvUtil_StrIPos("abc", "abcd"), -1);
    EXPECT_EQ(BvUtil_StrIPos("", ""), 0);
    EXPECT_EQ(BvUtil_StrIPos(nullptr, "a"), -1);
    EXPECT_EQ(BvUtil_StrIPos("a", nullptr), -1);
    // Naively, this would be 2.5e11 comparisons.
    const std::string many(1'000'000, 'a'), half = std::string(500'000, 'a') + "b";
    EXPECT_EQ(BvUtil_StrIPos(many.c_str(), half.c_str()), -1);
}

TEST(Search, FindsWholeCharactersOnly) {
    const DoubleByteCodePage code_page;
    EXPECT_EQ(BvUtil_StrIChr("\x83\x5C\\", '\\'), 2);
    EXPECT_EQ(BvUtil_StrIChr("\x81@", '\x81'), -1);
    EXPECT_EQ(BvUtil_StrIChr("@\x81", '\x81'), 1); // alone at the end it is a character
    EXPECT_EQ(BvUtil_StrIPos("\x83\x5C"
                             "a\\a",
                             "\\a"),
              3);
    EXPECT_EQ(BvUtil_StrIPos("\x81\x81\x40\x81\x40", "\x81\x40"), 3); // not the trail byte and '@' at 1
    EXPECT_EQ(BvUtil_StrIPos("a\x81\x40"
                             "a\x81",
                             "a\x81"),
              3);
    EXPECT_EQ(BvUtil_StrIPos("a\x81\x40", "a\x81"), -1);
}

TEST(Trim, RemovesWhiteSpaceAndFillsWithZeros) {
    const struct {
        const char *text, *left, *both;
    } cases[] = {
        {"  a  ", "a  ", "a"}, {" \t\r\n\v\fa b\n", "a b\n", "a b"}, {"   ", "", ""},
        {"", "", ""},          {"\xA0x", "\xA0x", "\xA0x"},
    };
    for (const auto& [text, left, both] : cases) {
        const std::pair<char*(BVUTIL_CALL*)(char*), std::string> functions[] = {
            {BvUtil_StrLTrim, left}, {BvUtil_StrRTrim, left}, {BvUtil_StrTrim, both}};
        for (auto [trim, expected] : functions) {
            char buffer[16] = "";
            std::strcpy(buffer, text);
            EXPECT_EQ(trim(buffer), buffer);
            expected.resize(std::strlen(text), '\0');
            EXPECT_EQ(std::string(buffer, expected.size()), expected);
        }
    }
    EXPECT_EQ(BvUtil_StrLTrim(nullptr), nullptr);
    EXPECT_EQ(BvUtil_StrRTrim(nullptr), nullptr);
    EXPECT_EQ(BvUtil_StrTrim(nullptr), nullptr);
    const DoubleByteCodePage code_page;
    char lead[] = " \x81 \x81";
    EXPECT_STREQ(BvUtil_StrTrim(lead), "\x81 \x81");
}

TEST(StringToDouble, ConvertsTheLeadingNumber) {
    EXPECT_EQ(BvUtil_StringToDouble("12abc"), 12);
    EXPECT_EQ(BvUtil_StringToDouble("abc"), 0);
    EXPECT_EQ(BvUtil_StringToDouble(" \t-1.5d+3,x"), -1500);
    EXPECT_EQ(BvUtil_StringToDouble(nullptr), -HUGE_VAL);
    // Looked at to its end for each number, this would be 1e12 bytes.
    std::string list;
    for (int i = 0; i < 1'000'000; ++i)
        list += " 7";
    double sum = 0;
    for (const char* s = list.c_str(); *s; s += 2)
        sum += BvUtil_StringToDouble(s);
    EXPECT_EQ(sum, 7e6);
}

} // namespace
