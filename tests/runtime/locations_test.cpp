// The configuration search, folders and registry, with real files and keys.
#include "bvutil/locations.h"
#include "module/handles.h"
#include "tests/support/message_log.h"
#include "tests/support/rows.h"
#include "tests/support/temp_dir.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

std::string lower(std::string text) {
    return _strlwr(text.data());
}

// Two folders, one of them current and the other named by MB, and a configuration file in the root of drive C
// that is looked at last: no search goes on for ever.
class Locations : public testing::Test {
  protected:
    Locations() {
        char former[MAX_PATH];
        GetCurrentDirectoryA(MAX_PATH, former);
        m_former = former;
        SetCurrentDirectoryA(here.path().c_str());
        SetEnvironmentVariableA("MB", mb.path().c_str());
        root_file("mb.ini");
    }
    ~Locations() override {
        SetEnvironmentVariableA("MB", nullptr);
        SetCurrentDirectoryA(m_former.c_str());
        for (const std::string& file : m_root_files)
            DeleteFileA(file.c_str());
    }
    void root_file(const std::string& name) {
        m_root_files.push_back("C:\\" + name);
        ASSERT_FALSE(std::filesystem::exists(m_root_files.back())) << "somebody's own";
        write_file(m_root_files.back(), "");
    }
    // The path found, or "-1".
    static std::string search(const char* section, const char* key, const char* file) {
        char out[BVUTIL_PATH_SIZE] = "-1";
        const int result = BvUtil_MB_SucheDatei(section, key, file, out);
        EXPECT_EQ(result, out == std::string("-1") ? -1 : 0);
        return out;
    }
    static std::string search_path(const char* section, const char* key) {
        char out[BVUTIL_PATH_SIZE] = "-1";
        const int result = BvUtil_MB_SuchePfad(section, key, out);
        EXPECT_EQ(result, out == std::string("-1") ? -1 : 0);
        return out;
    }

    TempDir here, mb;

  private:
    std::string m_former;
    std::vector<std::string> m_root_files;
};

TEST_F(Locations, PrefersHighNumbersThenPlaces) {
    const auto found = [] { return search(nullptr, nullptr, nullptr); };
    EXPECT_EQ(found(), "C:\\mb.ini");
    write_file(mb.file("mb.ini"), "");
    EXPECT_EQ(found(), lower(mb.file("mb.ini")));
    write_file(here.file("mb.ini"), "");
    EXPECT_EQ(found(), here.path() + "\\mb.ini");
    root_file("mb3.ini");
    EXPECT_EQ(found(), "C:\\mb3.ini");
    write_file(here.file("mb8.ini"), "");
    write_file(here.file("mb10.ini"), "");
    EXPECT_EQ(found(), here.path() + "\\mb8.ini");
    // Without an entry the same file, lower-cased.
    EXPECT_EQ(search(nullptr, "k", "missing"), lower(here.path() + "\\mb8.ini"));
    EXPECT_EQ(search("s", "", "missing"), lower(here.path() + "\\mb8.ini"));
}

TEST_F(Locations, WrapsRoundBelowZero) {
    DeleteFileA("C:\\mb.ini");
    SetEnvironmentVariableA("MB", nullptr);
    write_file(here.file("mb65534.ini"), "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), here.path() + "\\mb65534.ini");
}

TEST_F(Locations, LooksForFilesHereThenInMbThenInTheList) {
    const TempDir a, b;
    // A missing entry is a folder of the marker's name.
    std::filesystem::create_directory(here.file("_TheDefault_"));
    for (const std::string& path :
         {b.file("X.txt"), mb.file("Y.txt"), here.file("Z.txt"), mb.file("Z.txt"), b.file("Y.txt"),
          a.file("W.txt"), b.file("W.txt"), here.file("_TheDefault_\\X.txt")})
        write_file(path, "");
    write_file(here.file("mb.ini"), "[s]\nlist=" + a.path() + ";;" + b.path() + "\\;C:\\nowhere\nempty=\n");
    const auto found = [](const std::string& row) {
        const auto fields = fields_of(row); // key and file
        return search("s", fields[0].c_str(), fields[1].c_str());
    };
    expect_rows(found, "list|W.txt -> " + lower(a.file("w.txt")), "list|X.txt -> " + lower(b.file("x.txt")),
                "list|Y.txt -> " + lower(mb.file("y.txt")), "list|Z.txt -> " + lower(here.file("z.txt")),
                "list|" + b.file("X.txt") + " -> " + lower(b.file("x.txt")), "list|V.txt -> -1",
                "empty|X.txt -> -1", "missing|V.txt -> -1", "missing|X.txt -> _thedefault_\\x.txt");
    EXPECT_EQ(BvUtil_MB_SucheDatei("s", "list", "W.txt", nullptr), -1);
}

void expect_reported(MessageLog& log, const std::string& text, int line) {
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, text);
    EXPECT_EQ(lines[0].source, "BvUtilMisc");
    EXPECT_EQ(lines[0].line, line);
}

TEST_F(Locations, RefusesPathsThatDoNotFit) {
    MessageLog log;
    // The longest path that the platform takes in narrow characters: one byte more than the buffer holds.
    std::string deep = "\\\\?\\" + mb.path() + "\\";
    deep.append(120 - deep.size() % 60, 'd');
    CreateDirectoryA(deep.c_str(), nullptr);
    const std::string name = "\\mb9.ini";
    deep += "\\" + std::string(BVUTIL_PATH_SIZE - deep.size() - 1 - name.size(), 'e');
    ASSERT_TRUE(CreateDirectoryW(std::wstring(deep.begin(), deep.end()).c_str(), nullptr));
    SetEnvironmentVariableA("MB", deep.c_str());
    const unique_file file(
        CreateFileA((deep + name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(file) << GetLastError();
    EXPECT_EQ(search(nullptr, nullptr, nullptr), "-1");
    EXPECT_EQ(search("s", "k", "mb9.ini"), "-1");
    EXPECT_EQ(search_path("s", "k"), "-1");
    expect_reported(log, "Es konnte keine mb.ini (mb[1-9].ini) gefunden werden!", 75);
}

TEST_F(Locations, ReadsPathsOfTheConfigurationFile) {
    MessageLog log;
    write_file(here.file("mb.ini"), "[S]\nPath=C:\\Data\\Walls\nempty=\nlong=" + std::string(260, 'x') +
                                        "\nfits=" + std::string(259, 'X') + "\n");
    EXPECT_EQ(search_path("S", "Path"), "c:\\data\\walls");
    EXPECT_EQ(search_path("S", "missing"), "_thedefault_");
    EXPECT_EQ(search_path("S", "fits"), std::string(259, 'x'));
    EXPECT_EQ(search_path("S", "long"), "-1");
    EXPECT_EQ(search_path(nullptr, "Path"), "-1");
    EXPECT_TRUE(log.take().empty());
    EXPECT_EQ(search_path("S", "empty"), "-1");
    expect_reported(log, "Sektion S oder Eintrag empty in " + here.path() + "\\mb.ini nicht gefunden!", 92);
}

TEST_F(Locations, ReadsValuesIntoBuffersOfAnySize) {
    const std::string ini = here.file("x.ini");
    write_file(ini, "[s]\nk=value\nempty=\n");
    // Of "key|size": the result, the size afterwards, and what became of a buffer full of '#'.
    const auto read = [&](const std::string& row) {
        const auto fields = fields_of(row);
        std::string out(14, '#');
        int size = std::atoi(fields[1].c_str());
        const int result = BvUtil_MB_IniReadString(ini.c_str(), "s", fields[0].c_str(), out.data(), &size);
        std::replace(out.begin(), out.end(), '\0', '0');
        return std::to_string(result) + "|" + std::to_string(size) + "|" + out;
    };
    expect_rows(read, "k|10 -> 0|10|value0000#####", "k|7 -> 0|7|value0########", "k|6 -> 0|5|value0########",
                "k|-2147483648 -> 0|5|value0########", "missing|15 -> 0|15|_TheDefault_00",
                "empty|14 -> 6|14|##############");
    int size = 10;
    char out[10];
    for (const int result : {BvUtil_MB_IniReadString(ini.c_str(), "s", "k", out, nullptr),
                             BvUtil_MB_IniReadString(ini.c_str(), "s", nullptr, out, &size)})
        EXPECT_EQ(result, 6);
}

TEST(Registry, GivesTheInstallLocation) {
    constexpr const char* name = "Software\\BvUtilLocationsTest";
    const std::string suite("C:\\Suite\0", 9);
    // What is read of a value of these bytes, into room of this size; "-" for nothing.
    const auto read = [&](const std::optional<std::string>& bytes, int size) -> std::string {
        if (bytes)
            RegSetKeyValueA(HKEY_LOCAL_MACHINE, name, "InstallLocation", REG_SZ, bytes->data(),
                            static_cast<DWORD>(bytes->size()));
        char out[3000] = "-";
        const int result = GetLocalMachineRegistryEntry(name, size, out);
        EXPECT_EQ(result, out == std::string("-") ? 0 : 1);
        return out;
    };
    EXPECT_EQ(read({}, 3000), "-") << "no key";
    EXPECT_EQ(read(std::string(1, '\0'), 3000), "-") << "an empty value";
    EXPECT_EQ(read(std::string(2049, 'x'), 3000), "-") << "too long for the area";
    EXPECT_EQ(read(suite, 8), "-");
    EXPECT_EQ(read(suite, -1), "-");
    EXPECT_EQ(read(suite, 9), "C:\\Suite");
    char out[100];
    EXPECT_EQ(GetLocalMachineRegistryEntry(nullptr, 100, out), 0);
    EXPECT_EQ(GetLocalMachineRegistryEntry(name, 100, nullptr), 0);
    RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, name, "InstallLocation");
    EXPECT_EQ(read({}, 3000), "-") << "no value";
    RegDeleteKeyA(HKEY_LOCAL_MACHINE, name);
}

TEST(Folders, AppendTheSuitesOwn) {
    int major = 0, minor = 0;
    ASSERT_EQ(BvUtil_GetOperatingSystem(&major, &minor), 1);
    EXPECT_EQ(BvUtil_GetOperatingSystem(nullptr, &minor), 0);
    EXPECT_EQ(BvUtil_GetOperatingSystem(&major, nullptr), 0);
    ASSERT_GT(major * 10 + minor, 60) << "a system whose folder the caller brings";

    char path[BVUTIL_PATH_SIZE];
    const auto completed = [&](const std::string& folder) {
        std::strcpy(path, folder.c_str());
        EXPECT_EQ(BvUtil_GetProgPathAppData(path), path);
        return std::string(path);
    };
    const std::string own = "Morvane Software GmbH\\Brenvik Morvane +2011\\Programm";
    expect_rows(completed, R"(C:\Data -> C:\Data\)" + own, R"(C:\ -> C:\)" + own, "Data -> Data" + own,
                " -> " + own, R"(C:\Data\ -> C:\Data\\)" + own);
    std::strcpy(path, std::string(230, 'x').c_str());
    EXPECT_EQ(BvUtil_GetProgPathAppData(path), nullptr);
    EXPECT_EQ(path, std::string(230, 'x'));
    EXPECT_EQ(BvUtil_GetProgPathAppData(nullptr), nullptr);

    EXPECT_EQ(BvUtil_GetProgPathRoamingAppData(path), 1);
    char expected[MAX_PATH] = "";
    GetEnvironmentVariableA("APPDATA", expected, MAX_PATH);
    EXPECT_STRCASEEQ(path, expected);
    EXPECT_EQ(BvUtil_GetProgPathRoamingAppData(nullptr), 0);
}

} // namespace
