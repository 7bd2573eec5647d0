// Lines of real streams and listings of real directories.
#include "bvutil/strings.h"
#include "module/handles.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace {

// The lines that a file of these bytes is read as, until the end is told.
std::vector<std::string> lines_of(const std::string& bytes, const char* mode, int limit) {
    const TempDir dir;
    write_file(dir.file("t"), bytes);
    const unique_stream stream(std::fopen(dir.file("t").c_str(), mode));
    std::vector<std::string> lines;
    for (;;) {
        std::string buffer(static_cast<std::size_t>(limit) + 2, '#');
        const int result = BvUtil_GetString(stream.get(), limit, buffer.data());
        EXPECT_EQ(buffer.back(), '#') << "written beyond the stated size";
        if (result != 0) {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(buffer[0], '\0');
            return lines;
        }
        lines.emplace_back(buffer.c_str());
    }
}

TEST(GetString, EndsLinesAsStated) {
    const std::string zero(1, '\0');
    const struct {
        std::string bytes;
        const char* mode;
        int limit;
        std::vector<std::string> lines;
    } cases[] = {
        {"abc\r\nd", "rb", 80, {"abc\n", "d"}},
        {"abc\r\nd", "rt", 80, {"abc", "d"}},
        {"a\n\nb\n", "rb", 80, {"a", "", "b"}},
        {"a\rb\r\r", "rb", 80, {"a", "b", ""}},
        {"a" + zero + "b\r" + zero + "c", "rb", 80, {"a", "b", "c"}},
        {"abcdef", "rb", 3, {"abc", "def"}},
        {"abc\n", "rb", 3, {"abc", ""}},         // the line feed was not reached: a line of its own
        {"ab\r\nc", "rb", 3, {"ab\n", "", "c"}}, // stored, and still in the stream
        {"", "rb", 80, {}},
    };
    for (const auto& [bytes, mode, limit, lines] : cases)
        EXPECT_EQ(lines_of(bytes, mode, limit), lines) << bytes << ", limit " << limit;
}

TEST(PutString, FillsItsField) {
    const TempDir dir;
    unique_stream stream(std::fopen(dir.file("t").c_str(), "wb"));
    EXPECT_EQ(BvUtil_PutString(stream.get(), "ab", 5), 0);
    EXPECT_EQ(BvUtil_PutString(stream.get(), "abcdef", 3), 0);
    EXPECT_EQ(BvUtil_PutString(stream.get(), "whole", 0), 0);
    EXPECT_EQ(BvUtil_PutString(stream.get(), "none", -1), 0);
    EXPECT_EQ(BvUtil_PutString(stream.get(), "", 100), 0);
    stream.reset();
    EXPECT_EQ(read_file(dir.file("t")), "ab   abcwhole" + std::string(100, ' '));

    stream.reset(std::fopen(dir.file("t").c_str(), "rb"));
    EXPECT_EQ(BvUtil_PutString(stream.get(), "x", 0), -1) << "not open for writing";
    EXPECT_EQ(BvUtil_PutString(stream.get(), nullptr, 5), -1);
    EXPECT_EQ(BvUtil_PutString(nullptr, "x", 0), -1);
    char buffer[8];
    EXPECT_EQ(BvUtil_GetString(nullptr, 4, buffer), -1);
    EXPECT_EQ(BvUtil_GetString(stream.get(), 0, buffer), -1);
    EXPECT_EQ(BvUtil_GetString(stream.get(), 4, nullptr), -1);
}

std::map<std::string, BvUtilEntry> list(const std::string& dir, const char* pattern) {
    BvUtilEntry* entries = nullptr;
    int count = -1;
    EXPECT_EQ(BvUtil_Listdir(dir.c_str(), pattern, 0, &entries, &count), 0);
    std::map<std::string, BvUtilEntry> by_name;
    for (int i = 0; i < count; ++i)
        by_name[entries[i].name] = entries[i];
    EXPECT_EQ(static_cast<int>(by_name.size()), count);
    BvUtil_FreeEntries(&entries);
    EXPECT_EQ(entries, nullptr);
    return by_name;
}

TEST(Listdir, TellsNamesFlagsSizesAndTimes) {
    const TempDir dir;
    write_file(dir.file("a.txt"), "12345");
    write_file(dir.file("old.dat"), "");
    std::filesystem::create_directory(dir.file("sub"));
    SetFileAttributesA(dir.file("a.txt").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                                      FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
    {
        // 2001-09-09 01:46:40 UTC is the second 1,000,000,000; 1601 is none.
        const unique_file a(CreateFileA(dir.file("sub").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        const unique_file old(CreateFileA(dir.file("old.dat").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        const ULARGE_INTEGER second{.QuadPart = (1'000'000'000ull + 11'644'473'600ull) * 10'000'000ull};
        const FILETIME then{second.LowPart, second.HighPart}, before_1970{0, 20'000'000};
        EXPECT_TRUE(SetFileTime(a.get(), nullptr, nullptr, &then));
        EXPECT_TRUE(SetFileTime(old.get(), nullptr, nullptr, &before_1970));
    }
    auto all = list(dir.path(), nullptr);
    EXPECT_EQ(all.size(), 5u) << "with . and ..";
    DWORD attributes = GetFileAttributesA(dir.file("a.txt").c_str());
    EXPECT_EQ(all["a.txt"].attributes & 0x009u, 0x009u);
    EXPECT_EQ((all["a.txt"].attributes & 0x040u) != 0, (attributes & FILE_ATTRIBUTE_HIDDEN) != 0);
    EXPECT_EQ((all["a.txt"].attributes & 0x080u) != 0, (attributes & FILE_ATTRIBUTE_SYSTEM) != 0);
    EXPECT_EQ((all["a.txt"].attributes & 0x200u) != 0, (attributes & FILE_ATTRIBUTE_ARCHIVE) != 0);
    EXPECT_EQ(all["a.txt"].size, 5u);
    EXPECT_NEAR(all["a.txt"].modified, static_cast<double>(std::time(nullptr)), 60);
    EXPECT_EQ(all["sub"].attributes & 0x003u, 0x002u);
    EXPECT_EQ(all["sub"].modified, 1'000'000'000);
    EXPECT_EQ(all["."].attributes & 0x003u, 0x002u);
    EXPECT_EQ(all["old.dat"].attributes & 0x00Bu, 0x001u);
    EXPECT_EQ(all["old.dat"].modified, 315529200);
    EXPECT_EQ(list(dir.path() + "\\", "*.txt").size(), 1u);
    EXPECT_EQ(list(dir.path(), "").size(), 5u);
    SetFileAttributesA(dir.file("a.txt").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(Listdir, ListsMoreThanItsFirstRoom) {
    const TempDir dir;
    for (int i = 0; i < 35; ++i)
        write_file(dir.file(std::string(1, 'f') + std::to_string(i)), "");
    EXPECT_EQ(list(dir.path(), "f*").size(), 35u);
}

TEST(Listdir, FailsWithNothingListed) {
    const TempDir dir;
    BvUtilEntry stale{};
    for (const std::string& where : {dir.path(), dir.file("missing"), dir.file(std::string(300, 'x'))}) {
        BvUtilEntry* entries = &stale;
        int count = 7;
        EXPECT_EQ(BvUtil_Listdir(where.c_str(), "*.nothing", 0, &entries, &count), -1);
        EXPECT_EQ(entries, nullptr);
        EXPECT_EQ(count, 0);
    }
    BvUtilEntry* entries = &stale;
    int count = 7;
    EXPECT_EQ(BvUtil_Listdir(nullptr, "*", 0, &entries, &count), -1);
    EXPECT_EQ(entries, nullptr);
    EXPECT_EQ(BvUtil_Listdir(".", "*", 0, nullptr, &count), -1);
    EXPECT_EQ(BvUtil_Listdir(".", "*", 0, &entries, nullptr), -1);
    BvUtil_FreeEntries(&entries);
    BvUtil_FreeEntries(nullptr);
}

} // namespace
