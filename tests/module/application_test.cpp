// The application object: start, stop and resources.
#include "module/handles.h"
#include "module/resource.h"
#include "module/version.h"
#include "tests/support/second_copy.h"

#include <gtest/gtest.h>

#include <objbase.h>
#include <string>
#include <vector>
#include <windows.h>

namespace {

// Nothing here calls the library by name: without this the program would start without it.
const HMODULE the_library = LoadLibraryA("BvUtil.dll");

TEST(Resources, HoldTheFiveTextsInTheAnsiCodePage) {
    ASSERT_NE(the_library, nullptr);
    const std::pair<UINT, const char*> expected[] = {
        {IDS_NO_CALCULATOR, "Keine Verbindung zum Calculator(COM-Objekt)"},
        {IDS_LOG_RENAMED, "Die Datei %s konnte nicht als aktuelle Logdatei ge\xF6"
                          "ffnet werden. \n\nMeldungen werden in der Datei %s protokolliert!"},
        {IDS_LOG_IMPOSSIBLE, "Es konnte keine Logdatei im Ausf\xFChrungsverzeichnis angelegt oder ge\xF6"
                             "ffnet werden!"},
        {IDS_NO_MAIN_INI, "Es konnte keine mb.ini (mb[1-9].ini) gefunden werden!"},
        {IDS_NO_INI_ENTRY, "Sektion %s oder Eintrag %s in %s nicht gefunden!"},
    };
    ASSERT_EQ(GetACP(), 1252u);
    for (const auto& [id, text] : expected) {
        char loaded[512] = "";
        LoadStringA(the_library, id, loaded, sizeof loaded);
        EXPECT_STREQ(loaded, text);
    }
}

TEST(Resources, TellTheVersion) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeA("BvUtil.dll", &ignored);
    ASSERT_GT(size, 0u);
    std::vector<char> block(size);
    ASSERT_TRUE(GetFileVersionInfoA("BvUtil.dll", 0, size, block.data()));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&info), &length));
    const WORD numbers[] = {BVUTIL_VERSION_NUMBERS};
    EXPECT_EQ(info->dwFileVersionMS, static_cast<DWORD>(MAKELONG(numbers[1], numbers[0])));
    EXPECT_EQ(info->dwFileVersionLS, static_cast<DWORD>(MAKELONG(numbers[3], numbers[2])));
    EXPECT_EQ(info->dwFileType, static_cast<DWORD>(VFT_DLL));
}

void run_in_thread(LPTHREAD_START_ROUTINE run, void* parameter) {
    const unique_kernel_handle thread(CreateThread(nullptr, 0, run, parameter, 0, nullptr));
    WaitForSingleObject(thread.get(), INFINITE);
}

struct ComStates {
    HRESULT inside = E_FAIL;
    HRESULT after = E_FAIL;
};

DWORD WINAPI probe_com(void* parameter) {
    auto& states = *static_cast<ComStates*>(parameter);
    SecondCopy copy;
    states.inside = CoInitialize(nullptr);
    CoUninitialize();
    copy.unload();
    states.after = CoInitialize(nullptr);
    CoUninitialize();
    return 0;
}

TEST(Application, InitialisesComForTheLoadingThreadAndTakesItBack) {
    ComStates states;
    run_in_thread(probe_com, &states);
    EXPECT_EQ(states.inside, S_FALSE) << "it was initialised already";
    EXPECT_EQ(states.after, S_OK);
}

DWORD WINAPI probe_other_com(void* parameter) {
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    SecondCopy().unload();
    *static_cast<HRESULT*>(parameter) = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoUninitialize();
    return 0;
}

TEST(Application, LeavesAThreadTheComModelThatItChose) {
    HRESULT after = E_FAIL;
    run_in_thread(probe_other_com, &after);
    EXPECT_EQ(after, RPC_E_CHANGED_MODE);
}

TEST(Application, ClosesAnOpenLogWhenUnloaded) {
    SecondCopy copy;
    const std::string log = copy.dir().file("log.txt");
    copy.function<void(int, const char*, int)>("BvUtil_SetWriteToLogfile")(1, log.c_str(), 0);
    copy.function<void(const char*, const char*, const char*, const char*, int)>("BvUtil_Message")(
        "last ", "words", nullptr, "here", 7);
    EXPECT_FALSE(DeleteFileA(log.c_str())) << "the log is open";
    copy.unload();
    EXPECT_NE(read_file(log).find(":: last words in \"here\" line 7"), std::string::npos);
    EXPECT_TRUE(DeleteFileA(log.c_str()));
}

} // namespace
