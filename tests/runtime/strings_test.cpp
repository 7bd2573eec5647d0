// Texts and paths, in the DLL and natively.
#include "bvutil/strings.h"
#include "tests/support/double_byte.h"
#include "tests/support/rows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

// "drive|dir|name", split into buffers of exactly the stated sizes: the sanitizers see a byte too many.
std::string divide(const std::string& path) {
    const auto drive = std::make_unique<char[]>(3);
    const auto dir = std::make_unique<char[]>(256), name = std::make_unique<char[]>(256);
    const std::unique_ptr<char[]> exact(strcpy(new char[path.size() + 1], path.c_str()));
    EXPECT_EQ(BvUtil_Divide(exact.get(), drive.get(), dir.get(), name.get()), 0);
    return std::string(drive.get()) + "|" + dir.get() + "|" + name.get();
}

TEST(Divide, SplitsEveryShapeOfPath) {
    const auto compared = [](const std::string& path) {
#ifdef _WIN32
        char drive[_MAX_DRIVE], dir[_MAX_DIR], name[_MAX_FNAME], extension[_MAX_EXT];
        _splitpath(path.c_str(), drive, dir, name, extension);
        EXPECT_EQ(divide(path), std::string(drive) + "|" + dir + "|" + name + extension) << "the platform";
#endif
        return divide(path);
    };
    expect_rows(compared, R"(c:\a\b.c -> c:|\a\|b.c)", "C:x -> C:||x", "C: -> C:||", "a/b -> |a/|b",
                R"(\\server\share\f -> |\\server\share\|f)", R"(C:/x\y/z -> C:|/x\y/|z)", R"(..\x -> |..\|x)",
                ".. -> ||..", R"(a\b\ -> |a\b\|)", R"(a.b\c -> |a.b\|c)", ".ini -> ||.ini", ":x -> ||:x",
                "ab:c -> ||ab:c", " -> ||");
    const DoubleByteCodePage code_page;
    EXPECT_EQ(divide("C:\\\x95\x5C\\\x83\x5C.x"), "C:|\\\x95\x5C\\|\x83\x5C.x");
    EXPECT_EQ(divide("a\\b\x81"), "|a\\|b\x81");
}

TEST(Divide, EmptiesAllWhenAPartDoesNotFit) {
    const std::string longest(255, 'x'), dir = std::string(254, 'd') + "\\";
    EXPECT_EQ(divide("C:" + dir + longest), "C:|" + dir + "|" + longest);
    EXPECT_EQ(divide("C:" + dir + longest + "y"), "||");
    EXPECT_EQ(divide("C:d" + dir + longest), "||");
    EXPECT_EQ(BvUtil_Divide("C:\\x", nullptr, nullptr, nullptr), 0);
    char name[256] = "old";
    EXPECT_EQ(BvUtil_Divide(nullptr, nullptr, nullptr, name), 0);
    EXPECT_STREQ(name, "");
}

// Of "base|directory|file", where "-" stands for none.
std::string make_path(const std::string& row) {
    const auto fields = fields_of(row);
    const auto argument = [&](std::size_t i) { return fields[i] == "-" ? nullptr : fields[i].c_str(); };
    char out[1100];
    EXPECT_EQ(BvUtil_Makepath(out, argument(0), argument(1), argument(2)), out);
    return out;
}

TEST(Makepath, ResolvesAFileAgainstDirectoryAndBase) {
    expect_rows(make_path, R"(|C:\Data|Mb.INI -> c:\data\mb.ini)", R"(D:\Base|C:\Data|E:\X -> e:\x)",
                R"(D:\Base|C:\Data|X -> c:\data\x)", R"(D:\Base|Data|X -> d:\base\data\x)",
                R"(Base|Data|X -> base\data\x)", R"(D:\Base\|\Data\|\X -> d:\base\data\x)", "D:||X -> d:x",
                R"(D:|-|\X -> d:\x)", R"(-|C:\Data\|X -> c:\data\x)", R"(-|C:\Data|/X -> c:\data\/x)",
                R"(-|C:/Data/|\X -> c:/data/\x)", R"(-|C:\a|\\srv\s\f -> c:\a\\srv\s\f)",
                R"(-|C:\a.b|..\X -> c:\a.b\..\x)", R"(D:\b|C:|X -> c:x)",
                // No separator before nothing, but before the directory.
                R"(D:\Base|Data| -> d:\base\data)", R"(D:\Base|-|- -> d:\base)", R"(||C:\A\V -> c:\a\v)",
                "-|-|- -> ");
    EXPECT_EQ(BvUtil_Makepath(nullptr, "", "", "x"), nullptr);

    const std::string deep(500, 'D');
    EXPECT_EQ(make_path("-|" + deep + "|" + deep).size(), 1001u);
    char shared[20] = "FILE";
    EXPECT_STREQ(BvUtil_Makepath(shared, "C:", "\\Dir", shared), "c:\\dir\\file");
}

TEST(Makepath, KnowsTheCodePage) {
#ifdef _WIN32
    expect_rows(make_path, "-|-|\xC4pfel -> \xE4pfel");
#endif
    const DoubleByteCodePage code_page;
    // A trail byte is neither a separator nor a letter; the full-width A is.
    expect_rows(make_path, "-|\x95\\|\\\x83\x41\x82\x60 -> \x95\\\\\x83\x41\x82\x81",
                "-|D\x81|X\x81 -> d\x81\\x\x81");
}

TEST(GetExtensionPos, FindsTheLastDotButTheFirstByte) {
    const auto position = [](const std::string& name) {
        return std::to_string(BvUtil_GetExtensionPos(name.c_str()));
    };
    expect_rows(position, "a.b.c -> 3", "abc -> -1", ".ini -> -1", " -> -1", "a. -> 1", ".. -> 1",
                ".a.b -> 2", "a.b\\cde -> 1");
    EXPECT_EQ(BvUtil_GetExtensionPos(nullptr), -1);
    const DoubleByteCodePage code_page;
    expect_rows(position, "\x83\x5C.x\x81 -> 2");
}

TEST(Search, FindsCharactersAndTexts) {
    const auto character = [](const std::string& row) {
        return std::to_string(BvUtil_StrIChr(row.c_str() + 1, row[0])); // the character, and where to look
    };
    const auto text = [](const std::string& row) {
        const auto fields = fields_of(row);
        return std::to_string(BvUtil_StrIPos(fields[0].c_str(), fields[1].c_str()));
    };
    expect_rows(character, "babcb -> 1", "Babc -> -1");
    expect_rows(text, "aabaabaaac|aabaaa -> 3", "abc|ab -> 0", "abc|C -> -1", "abc|abcd -> -1", "| -> 0");
    for (const int missing : {BvUtil_StrIChr("abc", '\0'), BvUtil_StrIChr(nullptr, 'a'),
                              BvUtil_StrIPos(nullptr, "a"), BvUtil_StrIPos("a", nullptr)})
        EXPECT_EQ(missing, -1);
    // Naively, this would be 2.5e11 comparisons.
    EXPECT_EQ(text(std::string(1'000'000, 'a') + "|" + std::string(500'000, 'a') + "b"), "-1");

    const DoubleByteCodePage code_page; // whole characters only, but half a one at the end
    expect_rows(character, "\\\x83\\\\ -> 2", "\x81\x81@ -> -1", "\x81@\x81 -> 1");
    expect_rows(text, "\x83\\a\\a|\\a -> 3", "\x81\x81@\x81@|\x81@ -> 3", "a\x81@a\x81|a\x81 -> 3",
                "a\x81@|a\x81 -> -1");
}

TEST(Trim, RemovesWhiteSpaceAndFillsWithZeros) {
    const auto trimmed = [](char*(BVUTIL_CALL * trim)(char*), std::string text) {
        EXPECT_EQ(trim(text.data()), text.data());
        EXPECT_EQ(trim(nullptr), nullptr);
        return text.substr(0, text.find('\0')) + "|" +
               std::string(std::count(text.begin(), text.end(), '\0'), '0');
    };
    const auto all = [&](const std::string& text) {
        EXPECT_EQ(trimmed(BvUtil_StrRTrim, text), trimmed(BvUtil_StrLTrim, text));
        return trimmed(BvUtil_StrLTrim, text) + "|" + trimmed(BvUtil_StrTrim, text);
    };
    expect_rows(all, "  a   -> a  |00|a|0000", " \t\r\n\v\fa b\n -> a b\n|000000|a b|0000000",
                "    -> |000||000", " -> |||", "\xA0x -> \xA0x||\xA0x|");
    const DoubleByteCodePage code_page;
    expect_rows(all, " \x81 \x81 -> \x81 \x81|0|\x81 \x81|0");
}

TEST(StringToDouble, ConvertsTheLeadingNumber) {
    for (const auto& [text, number] :
         {std::pair{"12abc", 12.0}, {"abc", 0}, {" \t-1.5d+3,x", -1500}, {nullptr, -HUGE_VAL}})
        EXPECT_EQ(BvUtil_StringToDouble(text), number);
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
