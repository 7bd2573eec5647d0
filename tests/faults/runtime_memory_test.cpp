// Messages, the search for files, listings, texts and processes without memory.
#include "bvutil/locations.h"
#include "bvutil/messages.h"
#include "bvutil/strings.h"
#include "tests/faults/import_faults.h"
#include "tests/faults/memory_faults.h"
#include "tests/support/message_boxes.h"
#include "tests/support/second_copy.h"
#include "tests/support/temp_dir.h"

#include <cmath>
#include <cstring>
#include <thread>

namespace {

using memory_faults::fail_each_allocation;
using memory_faults::Fault;

// A copy of the library whose imports fail too.
class WatchedCopy : public SecondCopy {
  public:
    WatchedCopy() { import_faults::watch(GetModuleHandleA(dir().file("copy.dll").c_str())); }

    // A call that runs out of memory must fail.
    void fail(bool lasting) const {
        char path[100];
        Fault fault(1, lasting);
        EXPECT_EQ(fault([&] {
                      return m_makepath(path, "", "", "a name that is too long to be kept in its object");
                  }),
                  nullptr);
        EXPECT_TRUE(fault.struck());
    }

  private:
    decltype(BvUtil_Makepath)* const m_makepath = function<decltype(BvUtil_Makepath)>("BvUtil_Makepath");
};

// What an exception needs is made with the first of a process and of a thread: then there must be room for
// it.
TEST(RuntimeMemory, TheFirstFailureIsOneLikeAnyOther) {
    const WatchedCopy library;
    library.fail(true);
    std::thread([&] { library.fail(true); }).join();
}

TEST(RuntimeMemory, ALogIsOpenOrOff) {
    const WatchedCopy library; // the other tests' log stays open
    library.fail(false);       // what that makes is kept
    const auto set_log = library.function<decltype(BvUtil_SetWriteToLogfile)>("BvUtil_SetWriteToLogfile");
    const auto message = library.function<decltype(BvUtil_Message)>("BvUtil_Message");
    const auto is_on = library.function<decltype(BvUtil_GetWriteToLogfile)>("BvUtil_GetWriteToLogfile");
    const TempDir dir;
    const MessageBoxWatcher boxes;
    const std::string log = dir.file("log"), taken = dir.file("taken"), text(200, 'x');
    std::filesystem::create_directory(taken); // so that an alternative name is used
    fail_each_allocation([&](Fault& fault) {
        for (const std::string& path : {log, taken}) {
            fault([&] { set_log(1, path.c_str(), 0); });
            std::string opened; // the first name that could be, in a folder with nothing else
            for (const char* suffix : {"", "_1", "_2"})
                if (opened.empty() && std::filesystem::is_regular_file(path + suffix)) opened = path + suffix;
            EXPECT_EQ(is_on() != 0, !opened.empty());
            fault([&] { message(text.c_str(), text.c_str(), nullptr, "unit", 7); });
            set_log(0, nullptr, 0);
            const std::string written = read_file(opened);
            DeleteFileA(opened.c_str());
            EXPECT_TRUE(written.empty() ? fault.struck() : written.ends_with(" in \"unit\" line 7\r\n"))
                << written;
        }
    });
}

TEST(RuntimeMemory, ListingsAreWholeOrNone) {
    const TempDir dir;
    for (int i = 0; i < 25; ++i)
        write_file(dir.file(std::to_string(i)), "");
    fail_each_allocation([&](Fault& fault) {
        BvUtilEntry* entries = nullptr;
        int count = 7;
        const int result =
            fault([&] { return BvUtil_Listdir(dir.path().c_str(), "*", 0, &entries, &count); });
        EXPECT_TRUE(fault.struck() || (result == 0 && count == 27));
        EXPECT_TRUE(result == 0 || result == -1);
        EXPECT_TRUE(count == 27 ? entries != nullptr : entries == nullptr && count == 0) << count;
        BvUtil_FreeEntries(&entries);
    });
}

TEST(RuntimeMemory, TextsAndPathsAreRightOrRefused) {
    const std::string dir = "C:\\" + std::string(60, 'D'), file(60, 'F');
    fail_each_allocation([&](Fault& fault) {
        char out[300] = "before";
        fault.succeeds(out, nullptr, [&] { return BvUtil_Makepath(out, "", dir.c_str(), file.c_str()); });
        EXPECT_TRUE(std::strlen(out) == 124 || std::string(out) == "before") << out;
        const double number = fault([] { return BvUtil_StringToDouble("12345678901234567890d5"); });
        EXPECT_TRUE(number == 12345678901234567890e5 || (fault.struck() && number < 0 && std::isinf(number)));
        fault.succeeds(50, -1, [&] { return BvUtil_StrIPos((std::string(50, 'a') + "b").c_str(), "b"); });
    });
}

TEST(RuntimeMemory, SearchesFindOrFail) {
    const WatchedCopy library;
    library.fail(false);
    const auto search_path = library.function<decltype(BvUtil_MB_SuchePfad)>("BvUtil_MB_SuchePfad");
    const TempDir here, mb, elsewhere;
    MessageBoxWatcher boxes;
    char former[MAX_PATH];
    GetCurrentDirectoryA(MAX_PATH, former);
    SetCurrentDirectoryA(here.path().c_str());
    SetEnvironmentVariableA("MB", mb.path().c_str());
    write_file(mb.file("mb9.ini"), "[s]\r\npath=" + elsewhere.path() + "\r\nempty=\r\n");
    write_file(elsewhere.file("wanted.bmp"), "");
    const std::string found = elsewhere.file("wanted.bmp"), configuration = mb.file("mb9.ini");
    fail_each_allocation([&](Fault& fault) {
        char out[BVUTIL_PATH_SIZE] = "before";
        if (fault.succeeds(0, -1, [&] { return BvUtil_MB_SucheDatei("s", "path", "wanted.bmp", out); })) {
            EXPECT_EQ(_stricmp(out, found.c_str()), 0) << out;
        }
        if (fault.succeeds(0, -1, [&] { return search_path("s", "path", out); })) {
            EXPECT_EQ(_stricmp(out, elsewhere.path().c_str()), 0) << out;
        }
        EXPECT_EQ(fault([&] { return search_path("s", "empty", out); }), -1);
        char value[1024] = "before";
        int size = sizeof value;
        if (fault.succeeds(0, 6, [&] {
                return BvUtil_MB_IniReadString(configuration.c_str(), "s", "path", value, &size);
            })) {
            EXPECT_EQ(value, elsewhere.path());
        }
        char folder[BVUTIL_PATH_SIZE] = "C:\\data";
        fault.succeeds(folder, nullptr, [&] { return BvUtil_GetProgPathAppData(folder); });
        fault.succeeds(1, 0, [&] { return BvUtil_GetProgPathRoamingAppData(folder); });
        fault([&] { return GetLocalMachineRegistryEntry("Software", sizeof value, value); });
        fault.succeeds(1, 0, [&] { return BvUtil_ExecuteProgram("no program of a name that is long", "x"); });
    });
    boxes.take();
    char out[BVUTIL_PATH_SIZE];
    Fault fault(1, false);
    EXPECT_EQ(fault([&] { return search_path("s", "path", out); }), -1);
    const auto told = boxes.take();
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].caption + told[0].text, "MESSAGE in \"BvUtilMisc\" line 75:"
                                              "Es konnte keine mb.ini (mb[1-9].ini) gefunden werden!");
    SetEnvironmentVariableA("MB", nullptr);
    SetCurrentDirectoryA(former);
}

} // namespace
