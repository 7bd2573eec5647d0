// Byte-order file streams.
#include "bvutil/fio.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

class Fio : public testing::Test {
  protected:
    FioFile* open(const std::string& name, int mode) {
        return fio_open(dir.path().c_str(), name.c_str(), mode);
    }
    std::string content(const std::string& name) { return read_file(dir.file(name)); }
    void put(const std::string& name, const std::string& bytes) { write_file(dir.file(name), bytes); }

    TempDir dir;
};

const std::string header = "1.1  @mbINTEL   ";

TEST_F(Fio, OpensWithOneKindOfAccessOnly) {
    put("old", "abc");
    for (const int mode : {0, 0x03, 0x05, 0x06, 0x07, 0x08, 0x15, 0x20, 0x23, 0x38})
        EXPECT_EQ(open("old", mode), nullptr) << mode;
    for (const int mode : {0x01, 0x09, 0x11, 0x21, 0x29})
        EXPECT_EQ(open("none", mode), nullptr) << mode;
    EXPECT_FALSE(std::filesystem::exists(dir.file("none")));
    EXPECT_EQ(content("old"), "abc");
    EXPECT_EQ(fio_open(dir.path().c_str(), nullptr, 0x01), nullptr);
    EXPECT_EQ(fio_open(nullptr, "", 0x01), nullptr);
    EXPECT_EQ(fio_open("", dir.path().c_str(), 0x01), nullptr) << "a directory";
    EXPECT_EQ(fio_open("", std::string(5000, 'x').c_str(), 0x02), nullptr);

    FioFile* h = fio_open("Z:\\ignored", dir.file("OLD").c_str(), 0x41);
    ASSERT_NE(h, nullptr);
    std::string lower = dir.file("old");
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return static_cast<char>(tolower(c)); });
    EXPECT_EQ(h->path, lower);
    EXPECT_EQ(h->mode, 0x41);
    EXPECT_EQ(h->byteOrder, 0);
    EXPECT_EQ(fio_close(h), 0);
}

// What each mode makes of an old "ab\r\n": what is read first, and what the file holds when "X\n" was written
// at the position after that.
TEST_F(Fio, EachModeReadsAndWritesAsItSays) {
    const struct {
        int mode, first;
        const char* after;
    } cases[] = {
        {0x01, 'a', "ab\r\n"}, {0x02, -1, "X\n"},       {0x04, -1, "ab\r\nX\n"},
        {0x09, 'a', "aX\n\n"}, {0x0A, -1, "X\n"},       {0x0C, 'a', "ab\r\nX\n"},
        {0x11, 'a', "ab\r\n"}, {0x12, -1, "X\r\n"},     {0x14, -1, "ab\r\nX\r\n"},
        {0x22, -1, nullptr},   {0x24, -1, "ab\r\nX\n"}, {0x34, -1, "ab\r\nX\r\n"},
        {0x31, 'a', "ab\r\n"}, {0x32, -1, "X\r\n"},     {0x2A, -1, nullptr},
    };
    for (const auto& [mode, first, after] : cases) {
        SCOPED_TRACE(mode);
        put("f", "ab\r\n");
        FioFile* h = open("f", mode);
        ASSERT_NE(h, nullptr);
        if (!(mode & 0x04)) {
            EXPECT_EQ(fio_tell(h), after ? 0 : 16);
        }
        EXPECT_EQ(h->byteOrder, 0);
        EXPECT_EQ(fio_getchar(h, nullptr), first);
        EXPECT_EQ(fio_seek(h, 0, 1), 0);
        const bool writes = (mode & 0x0E) != 0;
        EXPECT_EQ(fio_putchar(h, 'X'), writes ? 0 : -1);
        EXPECT_EQ(fio_putchar(h, '\n'), writes ? 0 : -1);
        EXPECT_EQ(fio_close(h), 0);
        EXPECT_EQ(content("f"), after ? after : header + "X\n");
    }
}

TEST_F(Fio, RecognisesHeadersAndWhatLooksLikeOne) {
    const struct {
        std::string bytes;
        int order;
        long position;
    } cases[] = {
        {header + "data", 0, 16},
        {"1.1  @mbMOTOROLAdata", 1, 16},
        {"1.1  @mbmotoroladata", 0, 16},
        {"1.1  @mbMOTOROL data", 0, 16},
        {"1.1  @mbMOTOROL", 0, 15}, // cut within the name
        {"1.1  @mb", 0, 8},
        {"1.1 is a version number", 0, 16},
        {"xx1.1xxxMOTOROLA", 1, 16},
        {"1.1", 0, 3},
        {"xxxxx@mbMOTOROLA", 1, 16},
        {"xxxxxx@mbMOTOROLA", -1, 0}, // not within the first eight
        {"1.2  @mMOTOROLA", -1, 0},
        {std::string("\0\0\0@mb\0\0MOTOROLA", 16), -1, 0}, // behind a zero byte
        {"data", -1, 0},
        {"", -1, 0},
    };
    for (const auto& [bytes, order, position] : cases)
        for (const int mode : {0x21, 0x29}) {
            SCOPED_TRACE(bytes);
            put("f", bytes);
            FioFile* h = open("f", mode);
            ASSERT_NE(h, nullptr);
            EXPECT_EQ(h->byteOrder, order);
            EXPECT_EQ(fio_tell(h), position);
            const auto at = static_cast<std::size_t>(position);
            EXPECT_EQ(fio_getchar(h, nullptr),
                      at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : -1);
            EXPECT_EQ(fio_close(h), 0);
            EXPECT_EQ(content("f"), bytes);
        }
    put("f", header + "data");
    FioFile* h = open("f", 0x29);
    EXPECT_EQ(fio_putchar(h, 'D'), 0); // right behind the header, without a seek
    EXPECT_EQ(fio_close(h), 0);
    EXPECT_EQ(content("f"), header + "Data");
}

TEST_F(Fio, MovesReadsAndWritesCharactersAndStrings) {
    FioFile* h = open("f", 0x2A);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(fio_putchar(h, '\xFF'), 0);
    EXPECT_EQ(fio_putstring(h, "abcdef", 3), 0);
    EXPECT_EQ(fio_putstring(h, "z", 3), 0);
    EXPECT_EQ(fio_putstring(h, nullptr, 3), -1);
    EXPECT_EQ(fio_tell(h), 23);
    EXPECT_EQ(fio_flush(h), 0);
    EXPECT_EQ(content("f"), header + "\xFF"
                                     "abcz  ");

    const struct {
        long offset;
        int origin, result;
        long position;
    } seeks[] = {{16, 0, 0, 16}, {2, 1, 0, 18},  {-1, 1, 0, 17}, {0, 2, 0, 23},
                 {-7, 7, 0, 16}, {0, -1, 0, 23}, {-1, 0, -1, 23}};
    for (const auto& [offset, origin, result, position] : seeks) {
        EXPECT_EQ(fio_seek(h, offset, origin), result) << offset << " from " << origin;
        EXPECT_EQ(fio_tell(h), position) << offset << " from " << origin;
    }
    fio_seek(h, 16, 0);
    char c = 'x';
    EXPECT_EQ(fio_getchar(h, nullptr), 255);
    EXPECT_EQ(fio_getchar(h, &c), 0);
    EXPECT_EQ(c, 'a');
    char text[4];
    EXPECT_EQ(fio_getstring(h, 3, text), 0);
    EXPECT_STREQ(text, "bcz");
    EXPECT_EQ(fio_getstring(h, 3, text), 0);
    EXPECT_STREQ(text, "  ");
    EXPECT_EQ(fio_getstring(h, 3, text), -1);
    EXPECT_EQ(fio_getchar(h, nullptr), -1);
    EXPECT_EQ(fio_getchar(h, &c), -1);
    EXPECT_EQ(c, 'a');
    EXPECT_EQ(fio_close(h), 0);
}

TEST_F(Fio, NullHandlesFail) {
    char c;
    EXPECT_EQ(fio_close(nullptr), 0);
    EXPECT_EQ(fio_flush(nullptr), -1);
    EXPECT_EQ(fio_getchar(nullptr, &c), -1);
    EXPECT_EQ(fio_getchar(nullptr, nullptr), -1);
    EXPECT_EQ(fio_putchar(nullptr, 'a'), -1);
    EXPECT_EQ(fio_getstring(nullptr, 1, &c), -1);
    EXPECT_EQ(fio_putstring(nullptr, "a", 1), -1);
    EXPECT_EQ(fio_seek(nullptr, 0, 0), -1);
    EXPECT_EQ(fio_tell(nullptr), -1);
}

} // namespace
