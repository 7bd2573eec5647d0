// Programs started for real: copies of this test program, of which only the child's test runs.
#include "bvutil/locations.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>
#include <string>
#include <thread>

namespace {

constexpr const char* out_variable = "BVUTIL_TEST_CHILD_OUT";
constexpr const char* wait_variable = "BVUTIL_TEST_CHILD_WAITS_FOR"; // a file

TEST(Child, TellsWhatItSees) {
    char out[MAX_PATH] = "", awaited[MAX_PATH] = ".";
    if (!GetEnvironmentVariableA(out_variable, out, sizeof out)) return; // no child
    GetEnvironmentVariableA(wait_variable, awaited, sizeof awaited);
    write_file(out, ""); // it has begun
    do
        Sleep(100);
    while (!std::filesystem::exists(awaited));
    int major = 0, minor = 0;
    BvUtil_GetOperatingSystem(&major, &minor);
    char path[BVUTIL_PATH_SIZE] = "brought";
    EXPECT_EQ(BvUtil_GetProgPathAppData(path), path);
    std::ostringstream text;
    text << GetCommandLineA() << "|" << major << "." << minor << "|" << path;
    write_file(out, text.str());
}

class Processes : public testing::Test {
  protected:
    Processes() { SetEnvironmentVariableA(out_variable, dir.file("out").c_str()); }
    ~Processes() override {
        SetEnvironmentVariableA(out_variable, nullptr);
        SetEnvironmentVariableA(wait_variable, nullptr);
    }
    // A copy of this program under this name.
    std::string copy(const std::string& name) {
        char self[MAX_PATH];
        GetModuleFileNameA(nullptr, self, MAX_PATH);
        CopyFileA(self, dir.file(name).c_str(), TRUE);
        return dir.file(name);
    }
    // What the child saw: its command line, the system's version, the folder.
    std::string told() { return read_file(dir.file("out")); }
    static constexpr const char* argument = "--gtest_filter=Child.*:with blanks 'and' quotes";

    TempDir dir;
};

TEST_F(Processes, RunWithBlanksAndQuotes) {
    const std::string program = copy("a child's program.exe");
    EXPECT_EQ(BvUtil_ExecuteProgram(program.c_str(), argument), 1);
    EXPECT_TRUE(told().starts_with("\"" + program + "\" \"" + argument + "\"|"))
        << "it has ended: " << told();
}

TEST_F(Processes, ThatDoNotExistCountAsEnded) {
    EXPECT_EQ(BvUtil_ExecuteProgram(dir.file("missing.exe").c_str(), "x"), 1);
    EXPECT_EQ(BvUtil_ExecuteProgram("", ""), 1);
    EXPECT_EQ(BvUtil_ExecuteProgram(nullptr, "x"), 0);
    EXPECT_EQ(BvUtil_ExecuteProgram("x", nullptr), 0);
}

TEST_F(Processes, TakeTheMessagesOfTheWaitingThread) {
    const std::string program = copy("child.exe");
    SetEnvironmentVariableA(wait_variable, dir.file("go").c_str());
    const DWORD waiting = GetCurrentThreadId();
    const HWND window = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr); // the thread has a queue now
    DWORD_PTR answered = 0;
    std::thread poster([&] {
        while (!std::filesystem::exists(dir.file("out")))
            Sleep(10);
        Sleep(300); // the wait for it, too
        for (int i = 0; i < 3; ++i) {
            PostThreadMessageA(waiting, i == 1 ? WM_QUIT : WM_USER, 0, 0);
            Sleep(50);
        }
        // A sent message wakes the wait and is in no queue: to wait for a posted one then would hang.
        SendMessageTimeoutA(window, WM_GETTEXTLENGTH, 0, 0, SMTO_NORMAL, 2000, &answered);
        answered = 1;
        write_file(dir.file("go"), "");
    });
    EXPECT_EQ(BvUtil_ExecuteProgram(program.c_str(), argument), 1);
    poster.join();
    EXPECT_EQ(answered, 1u);
    EXPECT_NE(told(), "");
    MSG message;
    EXPECT_FALSE(PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) << "left: " << message.message;
    DestroyWindow(window);
}

TEST_F(Processes, FindTheCommonFolderOnOldSystems) {
    const char* settings = "Software\\Wine\\AppDefaults\\bvutil_old_system.exe";
    const std::pair<std::string, std::string> cases[] = {{"winxp", "\\|5\\.1\\|C:\\\\.+\\\\"},
                                                         {"vista", "\\|6\\.0\\|C:\\\\.+\\\\"},
                                                         {"win7", "\\|6\\.1\\|brought"}};
    for (const auto& [system, pattern] : cases) {
        RegSetKeyValueA(HKEY_CURRENT_USER, settings, "Version", REG_SZ, system.c_str(),
                        static_cast<DWORD>(system.size() + 1));
        BvUtil_ExecuteProgram(copy("bvutil_old_system.exe").c_str(), argument);
        const std::regex expected(".*" + pattern +
                                  "Morvane Software GmbH\\\\Brenvik Morvane \\+2011\\\\Programm");
        EXPECT_TRUE(std::regex_match(told(), expected)) << told();
    }
    RegDeleteKeyA(HKEY_CURRENT_USER, settings);
}

} // namespace
