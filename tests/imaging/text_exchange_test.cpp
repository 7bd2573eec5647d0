#include "bvutil/text_exchange.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <wincrypt.h>

namespace {

TEST(TextExchange, ConvertsToAndFromUtf8) {
    ASSERT_EQ(GetACP(), 1252u);
    const struct {
        int(BVUTIL_CALL* convert)(const char*, char*);
        const char* text;
        std::string expected; // empty: refused
    } cases[] = {
        {ConvertFromUTF8, "", ""},
        {ConvertFromUTF8, "abc", "abc"},
        {ConvertFromUTF8, "\xC3\xA4\xC3\xBF", "\xE4\xFF"},
        {ConvertFromUTF8, "\xE2\x82\xAC", "\xAC"},            // U+20AC
        {ConvertFromUTF8, "a\xC4\x80z", {"a\0z", 3}},         // U+0100 leaves a zero byte
        {ConvertFromUTF8, "\xF0\x9F\x98\x80", {"\x3D\0", 2}}, // U+D83D U+DE00
        {ConvertToUTF8, "", ""},
        {ConvertToUTF8, "abc", "abc"},
        {ConvertToUTF8, "\xE4\xFF\x80", "\xC3\xA4\xC3\xBF\xE2\x82\xAC"},
    };
    for (const auto& c : cases) {
        std::string out(40, '#'), written = c.expected.empty() ? "" : c.expected + '\0';
        EXPECT_EQ(c.convert(c.text, out.data()), !written.empty()) << c.text;
        EXPECT_EQ(out, written.append(40 - written.size(), '#')) << c.text;
        EXPECT_EQ(c.convert(nullptr, out.data()), 0);
        EXPECT_EQ(c.convert("a", nullptr), 0);
    }
    // In place and without a limit.
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "\xC3\xB6x";
    ASSERT_EQ(ConvertFromUTF8(text.c_str(), text.data()), 1);
    EXPECT_EQ(std::string(text.c_str()).size(), 200000u);
    ASSERT_EQ(ConvertToUTF8(text.c_str(), text.data()), 1);
    EXPECT_EQ(std::string(text.c_str()).size(), 300000u);
}

// Sizes around those of the pieces that a file is read in too; the platform decodes.
TEST(TextExchange, GivesAFileAsBase64WithoutItsLastCharacter) {
    TempDir dir;
    const std::string path = dir.file("picture.jpg");
    for (const DWORD size : {0u, 1u, 2u, 3u, 36u, 196607u, 196608u, 196609u, 393216u, 1000000u}) {
        SCOPED_TRACE(size);
        std::string bytes(size, '\0');
        for (DWORD i = 0; i + 1 < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 256 + i / 65536);
        write_file(path, bytes);
        int length = -1, untouched = -1;
        EXPECT_EQ(jpgToXML(path.c_str(), nullptr, &length, 1), 1);
        ASSERT_EQ(length, static_cast<int>((size + 2) / 3 * 4));
        std::string text(static_cast<std::size_t>(length) + 4, '#');
        EXPECT_EQ(jpgToXML(path.c_str(), text.data(), &untouched, 0), 1);
        EXPECT_EQ(untouched, -1);
        const std::size_t written = text.find('#');
        ASSERT_EQ(written, size == 0 ? 0 : (size + 2) / 3 * 4 - 1);
        if (size == 0) continue;
        text[written] = size % 3 ? '=' : 'A'; // the last byte is 0
        std::string decoded(size, '#');
        DWORD count = size;
        EXPECT_TRUE(CryptStringToBinaryA(text.data(), static_cast<DWORD>(written + 1), CRYPT_STRING_BASE64,
                                         reinterpret_cast<BYTE*>(decoded.data()), &count, nullptr, nullptr));
        EXPECT_TRUE(decoded == bytes);
    }
}

TEST(TextExchange, RefusesWhatItCannotRead) {
    TempDir dir;
    std::string out(6000, '#');
    int length = -1;
    // A file of the system that says it has 4096 bytes and gives fewer.
    const std::string early = "Z:\\sys\\devices\\system\\cpu\\online", there = dir.file("a");
    write_file(there, "abc");
    EXPECT_EQ(jpgToXML(early.c_str(), nullptr, &length, 1), 0);
    EXPECT_EQ(jpgToXML(early.c_str(), out.data(), nullptr, 0), 0);
    EXPECT_EQ(jpgToXML(dir.file("none.jpg").c_str(), out.data(), &length, 0), 0);
    EXPECT_EQ(jpgToXML(dir.path().c_str(), out.data(), &length, 1), 0);
    EXPECT_EQ(jpgToXML(nullptr, out.data(), &length, 0), 0);
    EXPECT_EQ(jpgToXML(there.c_str(), nullptr, &length, 0), 0);
    EXPECT_EQ(jpgToXML(there.c_str(), out.data(), nullptr, 1), 0);
    EXPECT_EQ(out, std::string(6000, '#'));
    EXPECT_EQ(length, -1);
}

} // namespace
