// The application object: start and stop, and what the file tells of itself.
#include "module/version.h"
#include "tests/support/second_copy.h"

#include <gtest/gtest.h>

#include <objbase.h>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

namespace {

// Nothing here calls the library by name: without this the program would start without it.
[[maybe_unused]] const HMODULE the_library = LoadLibraryA("BvUtil.dll");

TEST(Resources, TellTheVersion) {
    std::vector<char> block(GetFileVersionInfoSizeA("BvUtil.dll", nullptr));
    VS_FIXEDFILEINFO* info = nullptr;
    UINT length = 0;
    ASSERT_TRUE(GetFileVersionInfoA("BvUtil.dll", 0, static_cast<DWORD>(block.size()), block.data()));
    ASSERT_TRUE(VerQueryValueA(block.data(), "\\", reinterpret_cast<void**>(&info), &length));
    const WORD numbers[] = {BVUTIL_VERSION_NUMBERS};
    EXPECT_EQ(info->dwFileVersionMS, static_cast<DWORD>(MAKELONG(numbers[1], numbers[0])));
    EXPECT_EQ(info->dwFileVersionLS, static_cast<DWORD>(MAKELONG(numbers[3], numbers[2])));
    EXPECT_EQ(info->dwFileType, static_cast<DWORD>(VFT_DLL));
}

TEST(Application, InitialisesComForTheLoadingThreadAndTakesItBack) {
    HRESULT inside = E_FAIL, after = E_FAIL;
    std::thread([&] {
        SecondCopy copy;
        inside = CoInitialize(nullptr);
        CoUninitialize();
        copy.unload();
        after = CoInitialize(nullptr);
        CoUninitialize();
    }).join();
    EXPECT_EQ(inside, S_FALSE) << "it was initialised already";
    EXPECT_EQ(after, S_OK);
}

TEST(Application, LeavesAThreadTheComModelThatItChose) {
    HRESULT after = E_FAIL;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        SecondCopy().unload();
        after = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        CoUninitialize();
    }).join();
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
