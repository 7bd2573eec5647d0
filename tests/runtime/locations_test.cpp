// The configuration search, folders and registry, with real files and keys.
#include "bvutil/locations.h"
#include "module/handles.h"
#include "tests/support/message_log.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <cstring>
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
        root_file("mb.ini", "[s]\nk=root\n");
    }
    ~Locations() override {
        SetEnvironmentVariableA("MB", nullptr);
        SetCurrentDirectoryA(m_former.c_str());
        for (const std::string& file : m_root_files)
            DeleteFileA(file.c_str());
    }
    void root_file(const std::string& name, const std::string& text) {
        const std::string path = "C:\\" + name;
        ASSERT_FALSE(std::filesystem::exists(path)) << "somebody's own";
        write_file(path, text);
        m_root_files.push_back(path);
    }
    // The path found, or "-1".
    static std::string search(const char* section, const char* key, const char* file) {
        char out[BVUTIL_PATH_SIZE] = "untouched";
        const int result = BvUtil_MB_SucheDatei(section, key, file, out);
        EXPECT_TRUE(result == 0 || (result == -1 && std::string(out) == "untouched"));
        return result == 0 ? out : "-1";
    }

    TempDir here, mb;

  private:
    std::string m_former;
    std::vector<std::string> m_root_files;
};

TEST_F(Locations, PrefersHighNumbersThenPlaces) {
    EXPECT_EQ(search(nullptr, nullptr, nullptr), "C:\\mb.ini");
    write_file(mb.file("mb.ini"), "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), lower(mb.file("mb.ini")));
    write_file(here.file("mb.ini"), "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), here.path() + "\\mb.ini");
    root_file("mb3.ini", "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), "C:\\mb3.ini");
    write_file(mb.file("mb3.ini"), "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), lower(mb.file("mb3.ini")));
    write_file(here.file("mb8.ini"), "");
    write_file(here.file("mb10.ini"), "");
    EXPECT_EQ(search(nullptr, nullptr, nullptr), here.path() + "\\mb8.ini");
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
    for (const std::string& path : {b.file("X.txt"), mb.file("Y.txt"), here.file("Z.txt"), mb.file("Z.txt"),
                                    b.file("Y.txt"), a.file("W.txt"), b.file("W.txt")})
        write_file(path, "");
    const std::string list = a.path() + ";;" + b.path() + "\\;C:\\nowhere";
    write_file(here.file("mb.ini"), "[s]\nlist=" + list + "\nempty=\n");

    EXPECT_EQ(search("s", "list", "W.txt"), lower(a.file("w.txt")));
    EXPECT_EQ(search("s", "list", "X.txt"), lower(b.file("x.txt")));
    EXPECT_EQ(search("s", "list", "Y.txt"), lower(mb.file("y.txt")));
    EXPECT_EQ(search("s", "list", "Z.txt"), lower(here.file("z.txt")));
    EXPECT_EQ(search("s", "list", b.file("X.txt").c_str()), lower(b.file("x.txt")));
    EXPECT_EQ(search("s", "list", "V.txt"), "-1");
    EXPECT_EQ(search("s", "empty", "X.txt"), "-1");
    EXPECT_EQ(search("s", "missing", "X.txt"), "-1");
    // A missing entry is a folder of the marker's name.
    std::filesystem::create_directory(here.file("_TheDefault_"));
    write_file(here.file("_TheDefault_\\X.txt"), "");
    EXPECT_EQ(search("s", "missing", "X.txt"), "_thedefault_\\x.txt");
    EXPECT_EQ(BvUtil_MB_SucheDatei("s", "list", "W.txt", nullptr), -1);
}

TEST_F(Locations, RefusesPathsThatDoNotFit) {
    MessageLog log;
    // The longest path that the platform takes in narrow characters: one byte more than the buffer holds.
    std::string deep = "\\\\?\\" + mb.path() + "\\";
    deep.append(120 - deep.size() % 60, 'd');
    CreateDirectoryA(deep.c_str(), nullptr);
    const std::string name = "\\mb9.ini";
    deep += "\\" + std::string(BVUTIL_PATH_SIZE - deep.size() - 1 - name.size(), 'e');
    const std::wstring wide(deep.begin(), deep.end());
    ASSERT_TRUE(CreateDirectoryW(wide.c_str(), nullptr));
    SetEnvironmentVariableA("MB", deep.c_str());
    const unique_file file(
        CreateFileA((deep + name).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(file) << GetLastError();
    EXPECT_EQ(search(nullptr, nullptr, nullptr), "-1");
    EXPECT_EQ(search("s", "k", "mb9.ini"), "-1");
    char out[BVUTIL_PATH_SIZE] = "untouched";
    EXPECT_EQ(BvUtil_MB_SuchePfad("s", "k", out), -1);
    EXPECT_STREQ(out, "untouched");
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, "Es konnte keine mb.ini (mb[1-9].ini) gefunden werden!");
    EXPECT_EQ(lines[0].source, "BvUtilMisc");
    EXPECT_EQ(lines[0].line, 75);
}

TEST_F(Locations, ReadsPathsOfTheConfigurationFile) {
    MessageLog log;
    write_file(here.file("mb.ini"), "[S]\nPath=C:\\Data\\Walls\nempty=\nlong=" + std::string(260, 'x') +
                                        "\nfits=" + std::string(259, 'X') + "\n");
    char out[BVUTIL_PATH_SIZE] = "";
    EXPECT_EQ(BvUtil_MB_SuchePfad("S", "Path", out), 0);
    EXPECT_STREQ(out, "c:\\data\\walls");
    EXPECT_EQ(BvUtil_MB_SuchePfad("S", "missing", out), 0);
    EXPECT_STREQ(out, "_thedefault_");
    EXPECT_EQ(BvUtil_MB_SuchePfad("S", "fits", out), 0);
    EXPECT_EQ(out, std::string(259, 'x'));
    EXPECT_EQ(BvUtil_MB_SuchePfad("S", "long", out), -1);
    EXPECT_EQ(out, std::string(259, 'x'));
    EXPECT_EQ(BvUtil_MB_SuchePfad(nullptr, "Path", out), -1);
    EXPECT_TRUE(log.take().empty());

    EXPECT_EQ(BvUtil_MB_SuchePfad("S", "empty", out), -1);
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].text, "Sektion S oder Eintrag empty in " + here.path() + "\\mb.ini nicht gefunden!");
    EXPECT_EQ(lines[0].source, "BvUtilMisc");
    EXPECT_EQ(lines[0].line, 92);
}

TEST_F(Locations, ReadsValuesIntoBuffersOfAnySize) {
    const std::string ini = here.file("x.ini");
    write_file(ini, "[s]\nk=value\nempty=\n");
    const struct {
        const char* key;
        int size, result, size_after;
        std::string out; // from a buffer full of '#'
    } cases[] = {
        {"k", 10, 0, 10, std::string("value\0\0\0\0##", 11)},
        {"k", 7, 0, 7, std::string("value\0####", 10)},
        {"k", 6, 0, 5, std::string("value\0####", 10)},
        {"k", 2, 0, 5, std::string("value\0####", 10)},
        {"k", INT_MIN, 0, 5, std::string("value\0####", 10)},
        {"missing", 100, 0, 100, std::string("_TheDefault_\0\0", 14)},
        {"empty", 100, 6, 100, "####"},
    };
    for (const auto& [key, size, result, size_after, expected] : cases) {
        std::string out(120, '#');
        int actual_size = size;
        EXPECT_EQ(BvUtil_MB_IniReadString(ini.c_str(), "s", key, out.data(), &actual_size), result) << size;
        EXPECT_EQ(actual_size, size_after);
        EXPECT_EQ(out.substr(0, expected.size()), expected) << size;
    }
    char out[2];
    EXPECT_EQ(BvUtil_MB_IniReadString(ini.c_str(), "s", "k", out, nullptr), 6);
}

class RegistryKey {
  public:
    RegistryKey() {
        RegCreateKeyExA(HKEY_LOCAL_MACHINE, name, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, m_key.put(),
                        nullptr);
    }
    ~RegistryKey() { RegDeleteKeyA(HKEY_LOCAL_MACHINE, name); }
    void set(const std::string& bytes) {
        RegSetValueExA(m_key.get(), "InstallLocation", 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
    }
    static constexpr const char* name = "Software\\BvUtilLocationsTest";

  private:
    registry_key m_key;
};

TEST(Registry, GivesTheInstallLocation) {
    RegistryKey key;
    char out[3000] = "untouched";
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, sizeof out, out), 0) << "no value";
    key.set(std::string(1, '\0'));
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, sizeof out, out), 0) << "an empty value";
    key.set(std::string(2049, 'x'));
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, sizeof out, out), 0) << "too long for the area";
    key.set(std::string("C:\\Suite\0", 9));
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, 8, out), 0);
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, -1, out), 0);
    EXPECT_EQ(GetLocalMachineRegistryEntry("Software\\BvUtilMissing", 100, out), 0);
    EXPECT_EQ(GetLocalMachineRegistryEntry(nullptr, 100, out), 0);
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, 100, nullptr), 0);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(GetLocalMachineRegistryEntry(key.name, 9, out), 1);
    EXPECT_EQ(std::memcmp(out, "C:\\Suite", 9), 0);
}

TEST(Folders, AppendTheSuitesOwn) {
    int major = 0, minor = 0;
    ASSERT_EQ(BvUtil_GetOperatingSystem(&major, &minor), 1);
    EXPECT_EQ(BvUtil_GetOperatingSystem(nullptr, &minor), 0);
    EXPECT_EQ(BvUtil_GetOperatingSystem(&major, nullptr), 0);
    ASSERT_GT(major * 10 + minor, 60) << "a system whose folder the caller brings";

    const std::string own = "Morvane Software GmbH\\Brenvik Morvane +2011\\Programm";
    const std::pair<std::string, std::string> cases[] = {
        {"C:\\Data", "C:\\Data\\" + own},     {"C:\\", "C:\\" + own}, {"Data", "Data" + own}, {"", own},
        {"C:\\Data\\", "C:\\Data\\\\" + own},
    };
    for (const auto& [folder, expected] : cases) {
        char path[BVUTIL_PATH_SIZE] = "";
        std::strcpy(path, folder.c_str());
        EXPECT_EQ(BvUtil_GetProgPathAppData(path), path);
        EXPECT_EQ(path, expected);
    }
    char path[BVUTIL_PATH_SIZE] = "";
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
