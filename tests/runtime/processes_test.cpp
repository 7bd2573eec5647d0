// Programs started for real: copies of this test program, of which only the child's test runs.
#include "bvutil/locations.h"
#include "module/handles.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>

namespace {

constexpr const char* out_variable = "BVUTIL_TEST_CHILD_OUT";
constexpr const char* sleep_variable = "BVUTIL_TEST_CHILD_SLEEP";

TEST(Child, TellsWhatItSees) {
    char out[MAX_PATH] = "", sleep[16] = "0";
    if (!GetEnvironmentVariableA(out_variable, out, sizeof out)) return; // no child
    GetEnvironmentVariableA(sleep_variable, sleep, sizeof sleep);
    Sleep(static_cast<DWORD>(std::atoi(sleep)));
    int major = 0, minor = 0;
    BvUtil_GetOperatingSystem(&major, &minor);
    char path[BVUTIL_PATH_SIZE] = "brought";
    EXPECT_EQ(BvUtil_GetProgPathAppData(path), path);
    std::ostringstream text;
    text << GetCommandLineA() << "\n" << major << "." << minor << "\n" << path << "\n";
    write_file(out, text.str());
}

class Processes : public testing::Test {
  protected:
    Processes() { SetEnvironmentVariableA(out_variable, dir.file("out").c_str()); }
    ~Processes() override {
        SetEnvironmentVariableA(out_variable, nullptr);
        SetEnvironmentVariableA(sleep_variable, nullptr);
    }
    // A copy of this program under this name.
    std::string copy(const std::string& name) {
        char self[MAX_PATH];
        GetModuleFileNameA(nullptr, self, MAX_PATH);
        CopyFileA(self, dir.file(name).c_str(), TRUE);
        return dir.file(name);
    }
    // The lines that the child wrote.
    std::vector<std::string> told() {
        std::istringstream text(read_file(dir.file("out")));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        return lines;
    }
    static constexpr const char* argument = "--gtest_filter=Child.*:with blanks 'and' quotes";

    TempDir dir;
};

TEST_F(Processes, RunWithBlanksAndQuotes) {
    const std::string program = copy("a child's program.exe");
    SetEnvironmentVariableA(sleep_variable, "200");
    EXPECT_EQ(BvUtil_ExecuteProgram(program.c_str(), argument), 1);
    const auto lines = told();
    ASSERT_EQ(lines.size(), 3u) << "it has ended and written its file";
    EXPECT_EQ(lines[0], "\"" + program + "\" \"" + argument + "\"");
    EXPECT_TRUE(lines[2].starts_with("broughtMorvane"));
}

TEST_F(Processes, ThatDoNotExistCountAsEnded) {
    EXPECT_EQ(BvUtil_ExecuteProgram(dir.file("missing.exe").c_str(), "x"), 1);
    EXPECT_EQ(BvUtil_ExecuteProgram("", ""), 1);
    EXPECT_EQ(BvUtil_ExecuteProgram(nullptr, "x"), 0);
    EXPECT_EQ(BvUtil_ExecuteProgram("x", nullptr), 0);
}

TEST_F(Processes, TakeTheMessagesOfTheWaitingThread) {
    const std::string program = copy("child.exe");
    SetEnvironmentVariableA(sleep_variable, "1000");
    const DWORD waiting = GetCurrentThreadId();
    const HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr); // the thread has a queue now
    DWORD_PTR answered = 0;
    std::thread poster([&] {
        Sleep(300);
        for (int i = 0; i < 3; ++i) {
            PostThreadMessageA(waiting, i == 1 ? WM_QUIT : WM_USER, 0, 0);
            Sleep(50);
        }
        // A sent message wakes the wait and is in no queue: to wait for a posted one then would hang.
        SendMessageTimeoutA(window, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, 2000, &answered);
        answered = 1;
    });
    EXPECT_EQ(BvUtil_ExecuteProgram(program.c_str(), argument), 1);
    poster.join();
    EXPECT_EQ(answered, 1u);
    EXPECT_EQ(told().size(), 3u);
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) << "left: " << message.message;
    DestroyWindow(window);
}

TEST_F(Processes, FindTheCommonFolderOnOldSystems) {
    const char* settings = "Software\\Wine\\AppDefaults\\bvutil_old_system.exe";
    for (const auto& [system, version, found] :
         {std::tuple{"winxp", "5.1", true}, {"vista", "6.0", true}, {"win7", "6.1", false}}) {
        registry_key key;
        RegCreateKeyExA(HKEY_CURRENT_USER, settings, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.put(),
                        nullptr);
        RegSetValueExA(key.get(), "Version", 0, REG_SZ, reinterpret_cast<const BYTE*>(system),
                       static_cast<DWORD>(strlen(system) + 1));
        BvUtil_ExecuteProgram(copy("bvutil_old_system.exe").c_str(), argument);
        const auto lines = told();
        ASSERT_EQ(lines.size(), 3u);
        ASSERT_EQ(lines[1], version);
        EXPECT_EQ(lines[2].starts_with("brought"), !found) << lines[2];
        EXPECT_TRUE(lines[2].ends_with("\\Brenvik Morvane +2011\\Programm"));
        if (found) {
            EXPECT_TRUE(lines[2].starts_with("C:\\")) << lines[2];
        }
    }
    RegDeleteKeyA(HKEY_CURRENT_USER, settings);
}

} // namespace
