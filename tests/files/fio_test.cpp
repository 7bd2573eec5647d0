// Byte-order file streams.
#include "bvutil/fio.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Results = std::vector<long>; // of calls, in their order

class Fio : public testing::Test {
  protected:
    FioFile* open(const std::string& bytes, int mode) {
        write_file(path, bytes);
        return fio_open(dir.path().c_str(), "f", mode);
    }

    TempDir dir;
    const std::string path = dir.file("f");
    const std::string header = "1.1  @mbINTEL   ";
};

TEST_F(Fio, OpensWithOneKindOfAccessOnly) {
    for (const int mode : {0, 0x03, 0x05, 0x06, 0x07, 0x08, 0x20, 0x38})
        EXPECT_EQ(open("abc", mode), nullptr) << mode;
    EXPECT_EQ(read_file(path), "abc");
    EXPECT_EQ(fio_open(dir.path().c_str(), "none", 0x29), nullptr);
    EXPECT_FALSE(std::filesystem::exists(dir.file("none")));
    EXPECT_EQ(fio_open(dir.path().c_str(), nullptr, 0x01), nullptr);
    EXPECT_EQ(fio_open("", dir.path().c_str(), 0x01), nullptr) << "a directory";
    EXPECT_EQ(fio_open(nullptr, std::string(5000, 'x').c_str(), 0x02), nullptr);

    std::string lower = path;
    FioFile* h = fio_open("Z:\\ignored", path.c_str(), 0x41);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->path, std::string(_strlwr(lower.data())));
    EXPECT_EQ((Results{h->mode, h->byteOrder, fio_close(h)}), (Results{0x41, 0, 0}));
}

// What each mode makes of an old "ab\r\n": what is read first, and what the file holds when "X\n" was written
// at the position after that.
TEST_F(Fio, EachModeReadsAndWritesAsItSays) {
    const struct {
        int mode, first;
        std::string after;
    } cases[] = {{0x01, 'a', "ab\r\n"}, {0x02, -1, "X\n"},         {0x04, -1, "ab\r\nX\n"},
                 {0x09, 'a', "aX\n\n"}, {0x0A, -1, "X\n"},         {0x0C, 'a', "ab\r\nX\n"},
                 {0x11, 'a', "ab\r\n"}, {0x12, -1, "X\r\n"},       {0x22, -1, header + "X\n"},
                 {0x32, -1, "X\r\n"},   {0x24, -1, "ab\r\nX\n"},   {0x34, -1, "ab\r\nX\r\n"},
                 {0x31, 'a', "ab\r\n"}, {0x14, -1, "ab\r\nX\r\n"}, {0x2A, -1, header + "X\n"}};
    for (const auto& [mode, first, after] : cases) {
        FioFile* h = open("ab\r\n", mode);
        ASSERT_NE(h, nullptr);
        EXPECT_TRUE(mode & 0x04 || fio_tell(h) == (after.starts_with(header) ? 16 : 0)) << mode;
        const long write = mode & 0x0E ? 0 : -1;
        EXPECT_EQ((Results{h->byteOrder, fio_getchar(h, nullptr), fio_seek(h, 0, 1), fio_putchar(h, 'X'),
                           fio_putchar(h, '\n'), fio_close(h)}),
                  (Results{0, first, 0, write, write, 0}))
            << mode;
        EXPECT_EQ(read_file(path), after) << mode;
    }
}

TEST_F(Fio, RecognisesHeadersAndWhatLooksLikeOne) {
    const struct {
        std::string bytes;
        int order, position;
    } cases[] = {{header + "data", 0, 16},
                 {"1.1  @mbMOTOROLAdata", 1, 16},
                 {"1.1  @mbmotoroladata", 0, 16},
                 {"1.1  @mbMOTOROL", 0, 15}, // cut within the name
                 {"1.1", 0, 3},
                 {"1.1xxxxxMOTOROLA", 1, 16},
                 {"xxxxx@mbMOTOROLA", 1, 16},
                 {"xxxxxx@mbMOTOROLA", -1, 0},                      // not within the first eight
                 {std::string("\0\0\0@mb\0\0MOTOROLA", 16), -1, 0}, // behind a zero byte
                 {"1.2  @mMOTOROLA", -1, 0},
                 {"", -1, 0}};
    for (const auto& [bytes, order, position] : cases)
        for (const int mode : {0x21, 0x29}) {
            FioFile* h = open(bytes, mode);
            ASSERT_NE(h, nullptr);
            const auto at = static_cast<std::size_t>(position);
            const int next = at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : -1;
            EXPECT_EQ((Results{h->byteOrder, fio_tell(h), fio_getchar(h, nullptr), fio_close(h)}),
                      (Results{order, position, next, 0}))
                << bytes;
        }
    FioFile* h = open(header + "data", 0x29);
    EXPECT_EQ((Results{fio_putchar(h, 'D'), fio_close(h)}), (Results{0, 0}))
        << "behind the header, without a seek";
    EXPECT_EQ(read_file(path), header + "Data");
}

TEST_F(Fio, MovesReadsAndWritesCharactersAndStrings) {
    FioFile* h = open("", 0x2A);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ((Results{fio_putchar(h, '\xFF'), fio_putstring(h, "abcdef", 3), fio_putstring(h, "z", 3),
                       fio_putstring(h, nullptr, 3), fio_tell(h), fio_flush(h)}),
              (Results{0, 0, 0, -1, 23, 0}));
    EXPECT_EQ(read_file(path), header + "\xFF" + "abcz  ");

    const struct {
        long offset;
        int origin, result;
        long position;
    } seeks[] = {{16, 0, 0, 16}, {2, 1, 0, 18},  {-1, 1, 0, 17},  {0, 2, 0, 23},
                 {-7, 7, 0, 16}, {0, -1, 0, 23}, {-1, 0, -1, 23}, {16, 0, 0, 16}};
    for (const auto& [offset, origin, result, position] : seeks)
        EXPECT_EQ((Results{fio_seek(h, offset, origin), fio_tell(h)}), (Results{result, position}))
            << offset << " from " << origin;

    char c = 'x', bcz[4], blanks[4], end[4];
    EXPECT_EQ((Results{fio_getchar(h, nullptr), fio_getchar(h, &c), fio_getstring(h, 3, bcz),
                       fio_getstring(h, 3, blanks), fio_getstring(h, 3, end), fio_getchar(h, nullptr),
                       fio_getchar(h, &c), fio_close(h)}),
              (Results{255, 0, 0, 0, -1, -1, -1, 0}));
    EXPECT_EQ(std::string{c} + bcz + blanks, "abcz  ");
}

TEST_F(Fio, NullHandlesFail) {
    char c;
    EXPECT_EQ(
        (Results{fio_close(nullptr), fio_flush(nullptr), fio_getchar(nullptr, &c),
                 fio_getchar(nullptr, nullptr), fio_putchar(nullptr, 'a'), fio_getstring(nullptr, 1, &c),
                 fio_putstring(nullptr, "a", 1), fio_seek(nullptr, 0, 0), fio_tell(nullptr)}),
        (Results{0, -1, -1, -1, -1, -1, -1, -1, -1}));
}

} // namespace
