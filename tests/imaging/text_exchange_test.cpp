#include "bvutil/text_exchange.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <string>
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
        {ConvertToUTF8, "\xE4\xFF", "\xC3\xA4\xC3\xBF"},
        {ConvertToUTF8, "\x80", "\xE2\x82\xAC"},
    };
    for (const auto& c : cases) {
        std::string out(40, '#');
        const bool done = !c.expected.empty();
        EXPECT_EQ(c.convert(c.text, out.data()), done) << c.text;
        const std::string written = done ? c.expected + '\0' : "";
        EXPECT_EQ(out, written + std::string(40 - written.size(), '#')) << c.text;
        EXPECT_EQ(c.convert(nullptr, out.data()), 0);
        EXPECT_EQ(c.convert("a", nullptr), 0);
    }
}

TEST(TextExchange, ConvertsInPlaceAndWithoutALimit) {
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "\xC3\xB6x";
    ASSERT_EQ(ConvertFromUTF8(text.c_str(), text.data()), 1);
    EXPECT_EQ(std::string(text.c_str()).size(), 200000u);
    text = text.c_str();
    text.reserve(300001);
    ASSERT_EQ(ConvertToUTF8(text.c_str(), text.data()), 1);
    EXPECT_EQ(std::string(text.c_str()).size(), 300000u);
}

TEST(TextExchange, GivesAFileAsBase64WithoutItsLastCharacter) {
    TempDir dir;
    const std::string path = dir.file("picture.jpg");
    const struct {
        std::string bytes, text;
    } cases[] = {
        {"", ""},
        {std::string(1, '\0'), "AA=="},
        {"\xFF\xFE", "//4="},
        {"\r\n\x1A", "DQoa"},
        {"foobarfoobarfoobarfoobarfoobarfoobar", "Zm9vYmFyZm9vYmFyZm9vYmFyZm9vYmFyZm9vYmFyZm9vYmFy"}};
    for (const auto& c : cases) {
        write_file(path, c.bytes);
        int length = -1;
        EXPECT_EQ(jpgToXML(path.c_str(), nullptr, &length, 1), 1);
        EXPECT_EQ(length, static_cast<int>(c.text.size()));
        std::string out(c.text.size() + 4, '#');
        length = -1;
        EXPECT_EQ(jpgToXML(path.c_str(), out.data(), &length, 0), 1);
        const std::size_t copied = c.text.empty() ? 0 : c.text.size() - 1;
        EXPECT_EQ(out, c.text.substr(0, copied) + std::string(out.size() - copied, '#'));
        EXPECT_EQ(length, -1);
    }
}

// Sizes around those of the pieces that a file is read in; the platform decodes.
TEST(TextExchange, GivesLargeFilesWhole) {
    TempDir dir;
    const std::string path = dir.file("large.bin");
    for (const DWORD size : {196607u, 196608u, 196609u, 393216u, 1000000u}) {
        std::string bytes(size, '\0');
        for (DWORD i = 0; i + 1 < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 256 + i / 65536);
        write_file(path, bytes);
        int length = 0;
        ASSERT_EQ(jpgToXML(path.c_str(), nullptr, &length, 1), 1);
        ASSERT_EQ(length, static_cast<int>((size + 2) / 3 * 4));
        std::string text(static_cast<std::size_t>(length), '#');
        ASSERT_EQ(jpgToXML(path.c_str(), text.data(), nullptr, 0), 1);
        ASSERT_EQ(text.back(), '#');
        text.back() = size % 3 ? '=' : 'A'; // the last byte is 0
        std::string decoded(size, '#');
        DWORD count = size;
        EXPECT_TRUE(CryptStringToBinaryA(text.data(), static_cast<DWORD>(text.size()), CRYPT_STRING_BASE64,
                                         reinterpret_cast<BYTE*>(decoded.data()), &count, nullptr, nullptr));
        EXPECT_TRUE(decoded == bytes) << size;
    }
}

// A file of the system that says it has 4096 bytes and gives fewer.
TEST(TextExchange, WritesNothingOfAFileThatEndsEarly) {
    const char* path = "Z:\\sys\\devices\\system\\cpu\\online";
    if (GetFileAttributesA(path) == INVALID_FILE_ATTRIBUTES) GTEST_SKIP() << "no such file here";
    std::string out(6000, '#');
    int length = -1;
    EXPECT_EQ(jpgToXML(path, nullptr, &length, 1), 0);
    EXPECT_EQ(length, -1);
    EXPECT_EQ(jpgToXML(path, out.data(), nullptr, 0), 0);
    EXPECT_EQ(out, std::string(6000, '#'));
}

TEST(TextExchange, RefusesWhatItCannotRead) {
    TempDir dir;
    char out[8];
    int length = -1;
    EXPECT_EQ(jpgToXML(dir.file("none.jpg").c_str(), out, &length, 0), 0);
    EXPECT_EQ(jpgToXML(dir.path().c_str(), out, &length, 1), 0);
    EXPECT_EQ(jpgToXML(nullptr, out, &length, 0), 0);
    write_file(dir.file("a"), "abc");
    EXPECT_EQ(jpgToXML(dir.file("a").c_str(), nullptr, &length, 0), 0);
    EXPECT_EQ(jpgToXML(dir.file("a").c_str(), out, nullptr, 1), 0);
    EXPECT_EQ(length, -1);
}

} // namespace
