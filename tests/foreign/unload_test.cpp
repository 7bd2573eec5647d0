// Loading and unloading, again and again and with everything still open.
#include "bvutil/messages.h"
#include "module/handles.h"
#include "tests/calcgeom/calculator_server.h"
#include "tests/foreign/families.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/resources.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <tlhelp32.h>

namespace {

class Unloading : public testing::Test {
  protected:
    Unloading() {
        // What the library rests on is there already, as in any program with windows: loading that again each
        // time would take longer than all the rest.
        for (const char* name : {"gdiplus.dll", "oleaut32.dll", "shell32.dll", "windowscodecs.dll"})
            EXPECT_NE(LoadLibraryA(name), nullptr);
    }
    ~Unloading() override { CoUninitialize(); }

    // Calls use(caller) with the library loaded for that alone.
    template <class Use>
    void load(Use&& use) {
        const HMODULE library = LoadLibraryA("BvUtil.dll");
        Caller caller(library, {}, dir.path());
        use(caller);
        EXPECT_EQ(caller.violations, std::vector<std::string>{});
        FreeLibrary(library);
        EXPECT_EQ(GetModuleHandleA("BvUtil.dll"), nullptr);
        calculator.take_calls();
    }

    const HRESULT com = CoInitialize(nullptr);
    const TempDir dir;
    const HiddenCalculatorRegistration hidden;
    CalculatorServer calculator;
    const CalculatorServer::Registration registration{calculator};
};

// The sample filters keep their settings, as most do, and each start of the system's GDI+ that does much
// keeps some memory of its own: others stand for them.
TEST_F(Unloading, LeavesNothingAfterAThousandTimes) {
    expect_nothing_kept(
        [&](std::size_t times) {
            for (std::size_t i = 0; i < times; ++i) {
                const auto use = families[i % std::size(families)].use;
                load(use == use_filters ? use_own_filter : use == use_gdiplus ? use_gdiplus_briefly : use);
            }
        },
        1000);
    EXPECT_EQ(calculator.object_references, 5 + 91) << "dropped each time, not released";
}

TEST_F(Unloading, SurvivesWhatIsLeftOpen) {
    const std::string log = dir.file("last.txt");
    load([&](Caller& caller) {
        caller.closes = false;
        for (const Family& family : families)
            family.use(caller);
        AT(BvUtil_SetWriteToLogfile)(1, log.c_str(), 0);
        AT(BvUtil_Message)("last ", "words", nullptr, "here", 7);
    });
    EXPECT_NE(read_file(log).find(":: last words in \"here\" line 7\r\n"), std::string::npos);
    EXPECT_TRUE(DeleteFileA(log.c_str())) << "it is open still";
}

// Modules and threads of this process.
std::pair<int, int> modules_and_threads() {
    const unique_file snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE | TH32CS_SNAPTHREAD, 0));
    std::pair<int, int> count;
    MODULEENTRY32 module{};
    module.dwSize = sizeof module;
    for (BOOL more = Module32First(snapshot.get(), &module); more;
         more = Module32Next(snapshot.get(), &module))
        ++count.first;
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL more = Thread32First(snapshot.get(), &thread); more;
         more = Thread32Next(snapshot.get(), &thread))
        count.second += thread.th32OwnerProcessID == GetCurrentProcessId();
    return count;
}

// While it is loaded or unloaded, a library must not load others, start or await threads, or touch what the
// thread has set for itself.
TEST_F(Unloading, BringsNothingElseIn) {
    const auto [modules, threads] = modules_and_threads();
    Caller caller(GetModuleHandleA("kernel32.dll"), {"single precision, division raised", 4, 0x107B, 0x5D80},
                  "");
    const auto library = caller.member<HMODULE>("LoadLibraryA", nullptr, "BvUtil.dll");
    EXPECT_EQ(modules_and_threads(), std::pair(modules + 1, threads));
    caller.member<BOOL>("FreeLibrary", nullptr, library);
    EXPECT_EQ(modules_and_threads(), std::pair(modules, threads));
    EXPECT_EQ(caller.violations, std::vector<std::string>{});
}

} // namespace
