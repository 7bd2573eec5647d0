// Loading and unloading, again and again and with everything still open.
#include "bvutil/calculator.h"
#include "bvutil/env.h"
#include "bvutil/filter_host.h"
#include "bvutil/fio.h"
#include "bvutil/gdi_bitmaps.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/messages.h"
#include "bvutil/mini.h"
#include "bvutil/numeric.h"
#include "bvutil/strings.h"
#include "bvutil/text_exchange.h"
#include "bvutil/triangulation.h"
#include "tests/calcgeom/calculator_server.h"
#include "tests/foreign/families.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/canvas.h"
#include "tests/support/resources.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <objbase.h>
#include <tlhelp32.h>

namespace {

// What is opened in a family, for the time that the library is loaded.
struct Opened {
    EnvHandle env = nullptr, sub = nullptr;
    FioFile* stream = nullptr;
    MiniHandle profile = nullptr;
    PSFilter_* filter = nullptr;
    void* filtered = nullptr;
    BvUtilImage image = nullptr;
    float* triangles = nullptr;
    BvUtilEntry* entries = nullptr;
};

Opened use_each_family(Caller& caller, HBITMAP bitmap) {
    Opened opened;
    AT(BvUtil_SetWriteToLogfile)(1, caller.file("log.txt").c_str(), 0);
    AT(BvUtil_Message)("last ", "words", nullptr, "here", 7);

    opened.env = AT(env_open)(1, nullptr);
    AT(env_put_double)(opened.env, "S", "a@b", 0.1);
    AT(env_put_format)(opened.env, "S", "a@c", "%g", 0.1);
    opened.sub = AT(env_open_subenv)(opened.env, "S", "a", 1);
    opened.stream = AT(fio_open)(caller.folder.c_str(), "data", FIO_WRITE | FIO_HEADER);
    opened.profile = AT(mini_open)(caller.folder.c_str(), "values.ini", 0);
    double value = 0.5;
    AT(mini_write_double)(opened.profile, "S", "k", value);
    AT(mini_read_double)(opened.profile, "S", "k", &value);
    int count = 0;
    AT(BvUtil_Listdir)(caller.folder.c_str(), "*.*", 0, &opened.entries, &count);
    AT(sin_deg)(AT(BvUtil_StringToDouble)("12.5"));
    const float points[] = {0, 0, 1, 0, 0, 1, 1, 1};
    unsigned triangles = 0;
    AT(Triangulieren)(4u, points, &opened.triangles, &triangles);

    const std::uint32_t pixels[4] = {1, 2, 3, 4};
    int error = 0;
    AT(AVGetPSFilterAndInfo)
    (program_path("filters\\auto_levels.8bf").c_str(), nullptr, nullptr, &opened.filter, &error);
    AT(AVApplyPSFilter)(opened.filter, 0, nullptr, nullptr, pixels, 2, 2, 8, &opened.filtered, &error);
    DeleteObject(AT(BvUtil_CreateRegionFromBitmap)(bitmap, 0u));
    AT(gdiPlusInit)();
    AT(gdiPlusGetBitmapFromHBitmap)(bitmap, &opened.image);
    char text[16] = "";
    AT(ConvertToUTF8)("\xFC", text);
    AT(calc_init)(0);
    return opened;
}

void close(Caller& caller, Opened& opened) {
    AT(env_close)(opened.sub, 0);
    AT(env_close)(opened.env, 0);
    AT(fio_close)(opened.stream);
    AT(mini_close)(&opened.profile);
    AT(BvUtil_FreeEntries)(&opened.entries);
    AT(FreeTriangs)(&opened.triangles);
    AT(AVFreeGotPSFilterImage)(&opened.filtered);
    AT(AVFreeGotPSFilter)(&opened.filter);
    AT(gdiPlusFreeImage)(opened.image);
    AT(gdiPlusExit)();
}

class Unloading : public testing::Test {
  protected:
    Unloading() {
        write_file(dir.file("values.ini"), "");
        // What the library rests on is there already, as in any program with windows: loading that again each
        // time would take longer than all the rest.
        for (const char* name : {"gdiplus.dll", "oleaut32.dll", "shell32.dll", "windowscodecs.dll"})
            EXPECT_NE(LoadLibraryA(name), nullptr);
    }
    ~Unloading() override { CoUninitialize(); }

    static HMODULE load() {
        const HMODULE library = LoadLibraryA("BvUtil.dll");
        EXPECT_NE(library, nullptr);
        return library;
    }
    static void unload(HMODULE library) {
        FreeLibrary(library);
        EXPECT_EQ(GetModuleHandleA("BvUtil.dll"), nullptr);
    }
    void expect_closed_log() {
        EXPECT_NE(read_file(dir.file("log.txt")).find(":: last words in \"here\" line 7\r\n"),
                  std::string::npos);
        EXPECT_TRUE(DeleteFileA(dir.file("log.txt").c_str())) << "it is open still";
    }

    const HRESULT com = CoInitialize(nullptr);
    const TempDir dir;
    Canvas picture{2, 2};
    const HBITMAP bitmap = picture.bitmap();
    const HiddenCalculatorRegistration hidden;
    CalculatorServer calculator;
    const CalculatorServer::Registration registration{calculator};
};

TEST_F(Unloading, LeavesNothingAfterAThousandTimes) {
    const auto load_and_unload = [&](int times) {
        for (int i = 0; i < times; ++i) {
            const HMODULE library = load();
            Caller caller(library, {}, dir.path());
            Opened opened = use_each_family(caller, bitmap);
            close(caller, opened);
            ASSERT_EQ(caller.violations, std::vector<std::string>{});
            unload(library);
            calculator.take_calls();
            expect_closed_log();
        }
    };
    expect_nothing_kept(load_and_unload, 1000);
    EXPECT_EQ(calculator.object_references, 1050) << "dropped each time, not released";
}

TEST_F(Unloading, SurvivesWhatIsLeftOpen) {
    const HMODULE library = load();
    Caller caller(library, {}, dir.path());
    const Opened opened = use_each_family(caller, bitmap);
    EXPECT_NE(opened.sub, nullptr);
    EXPECT_NE(opened.filtered, nullptr);
    EXPECT_NE(opened.image, nullptr);
    std::FILE* const stream = opened.stream->stream;
    unload(library);
    expect_closed_log();
    EXPECT_EQ(std::fclose(stream), 0) << "the runtime's, not the library's";
}

// Modules and threads of this process.
std::pair<int, int> modules_and_threads() {
    const unique_file snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE | TH32CS_SNAPTHREAD, 0));
    std::pair<int, int> count;
    MODULEENTRY32 module{};
    module.dwSize = sizeof module;
    for (BOOL found = Module32First(snapshot.get(), &module); found;
         found = Module32Next(snapshot.get(), &module))
        ++count.first;
    THREADENTRY32 thread{};
    thread.dwSize = sizeof thread;
    for (BOOL found = Thread32First(snapshot.get(), &thread); found;
         found = Thread32Next(snapshot.get(), &thread))
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
