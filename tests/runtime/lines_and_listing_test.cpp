// Lines of real streams and listings of real directories.
#include "bvutil/strings.h"
#include "module/handles.h"
#include "tests/support/rows.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <map>
#include <string>

namespace {

TEST(GetString, EndsLinesAsStated) {
    const TempDir dir;
    // The lines that a file is read as, until the end is told: of "mode|size|bytes", where '0' stands for a
    // zero.
    const auto lines_of = [&](const std::string& row) {
        auto fields = fields_of(row);
        std::replace(fields[2].begin(), fields[2].end(), '0', '\0');
        write_file(dir.file("t"), fields[2]);
        const unique_stream stream(std::fopen(dir.file("t").c_str(), fields[0].c_str()));
        const auto limit = std::stoul(fields[1]);
        std::string lines;
        for (;;) {
            std::string buffer(limit + 2, '#');
            const int result = BvUtil_GetString(stream.get(), static_cast<int>(limit), buffer.data());
            EXPECT_EQ(buffer.back(), '#') << "written beyond the stated size";
            if (result == 0) {
                lines.append(buffer.c_str()).append("|");
                continue;
            }
            EXPECT_TRUE(result == -1 && buffer[0] == '\0');
            return lines;
        }
    };
    expect_rows(lines_of, "rb|80|abc\r\nd -> abc\n|d|", "rt|80|abc\r\nd -> abc|d|", "rb|80|a\n\nb\n -> a||b|",
                "rb|80|a\rb\r\r -> a|b||", "rb|80|a0b\r0c -> a|b|c|", "rb|80| -> ",
                "rb|3|abc\n -> abc||",       // the line feed was not reached: a line of its own
                "rb|3|ab\r\nc -> ab\n||c|"); // stored, and still in the stream
}

TEST(PutString, FillsItsField) {
    const TempDir dir;
    unique_stream stream(std::fopen(dir.file("t").c_str(), "wb"));
    for (const auto& [text, width] :
         {std::pair{"ab", 5}, {"abcdef", 3}, {"whole", 0}, {"none", -1}, {"", 100}})
        EXPECT_EQ(BvUtil_PutString(stream.get(), text, width), 0);
    stream.reset();
    EXPECT_EQ(read_file(dir.file("t")), "ab   abcwhole" + std::string(100, ' '));

    stream.reset(std::fopen(dir.file("t").c_str(), "rb"));
    char buffer[8];
    for (const int result :
         {BvUtil_PutString(stream.get(), "x", 0), BvUtil_PutString(stream.get(), nullptr, 5),
          BvUtil_PutString(nullptr, "x", 0), BvUtil_GetString(nullptr, 4, buffer),
          BvUtil_GetString(stream.get(), 0, buffer), BvUtil_GetString(stream.get(), 4, nullptr)})
        EXPECT_EQ(result, -1);
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
    const auto set_time = [&](const char* name, ULONGLONG ticks) {
        const unique_file file(CreateFileA(dir.file(name).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        const ULARGE_INTEGER time{.QuadPart = ticks};
        const FILETIME then{time.LowPart, time.HighPart};
        EXPECT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &then));
    };
    // 2001-09-09 01:46:40 UTC is the second 1,000,000,000; 1601 is none.
    set_time("sub", (1'000'000'000ull + 11'644'473'600ull) * 10'000'000ull);
    set_time("old.dat", 20'000'000);
    SetFileAttributesA(dir.file("a.txt").c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                                      FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE);
    auto all = list(dir.path(), nullptr);
    EXPECT_EQ(all.size(), 5u) << "with . and ..";
    unsigned flags = 0x009; // what Wine keeps of the others depends on the file system
    for (const auto& [attribute, flag] : {std::pair{FILE_ATTRIBUTE_HIDDEN, 0x040u},
                                          {FILE_ATTRIBUTE_SYSTEM, 0x080u},
                                          {FILE_ATTRIBUTE_ARCHIVE, 0x200u}})
        if (GetFileAttributesA(dir.file("a.txt").c_str()) & static_cast<DWORD>(attribute)) flags |= flag;
    EXPECT_EQ(all["a.txt"].attributes, flags);
    EXPECT_EQ(all["a.txt"].size, 5u);
    EXPECT_NEAR(all["a.txt"].modified, static_cast<double>(std::time(nullptr)), 60);
    EXPECT_EQ(all["sub"].attributes & 0x003u, 0x002u);
    EXPECT_EQ(all["sub"].modified, 1'000'000'000);
    EXPECT_EQ(all["old.dat"].attributes & 0x00Bu, 0x001u);
    EXPECT_EQ(all["old.dat"].modified, 315529200);
    EXPECT_EQ(list(dir.path() + "\\", "*.txt").size(), 1u);
    EXPECT_EQ(list(dir.path(), "").size(), 5u);
    SetFileAttributesA(dir.file("a.txt").c_str(), FILE_ATTRIBUTE_NORMAL);

    for (int i = 0; i < 35; ++i) // more than its first room
        write_file(dir.file(std::string(1, 'f') + std::to_string(i)), "");
    EXPECT_EQ(list(dir.path(), "f*").size(), 35u);
}

TEST(Listdir, FailsWithNothingListed) {
    const TempDir dir;
    const std::string missing = dir.file("missing"), too_long = dir.file(std::string(300, 'x'));
    BvUtilEntry stale{};
    for (const char* where : {dir.path().c_str(), missing.c_str(), too_long.c_str(), (const char*)nullptr}) {
        BvUtilEntry* entries = &stale;
        int count = 7;
        EXPECT_EQ(BvUtil_Listdir(where, "*.nothing", 0, &entries, &count), -1);
        EXPECT_EQ(entries, nullptr);
        EXPECT_EQ(count, 0);
    }
    BvUtilEntry* entries = nullptr;
    int count = 7;
    EXPECT_EQ(BvUtil_Listdir(".", "*", 0, nullptr, &count), -1);
    EXPECT_EQ(BvUtil_Listdir(".", "*", 0, &entries, nullptr), -1);
    BvUtil_FreeEntries(&entries);
    BvUtil_FreeEntries(nullptr);
}

} // namespace
