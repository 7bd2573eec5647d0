// Every export, called through its address from every state that a caller may be in.
#include "tests/foreign/families.h"
#include "tests/support/calculator_registration.h"
#include "tests/support/run_program.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <clocale>
#include <mbctype.h>
#include <objbase.h>

namespace {

// The bits of the control words: x87 precision 0x000 24, 0x200 53, 0x300 64 bits, rounding 0x400 down,
// 0x800 up, 0xC00 towards zero; MXCSR rounding 0x2000 down, 0x4000 up, 0x6000 towards zero, 0x8040
// denormals are flushed and taken as zero. A mask bit clear: that exception is raised.
constexpr CallerState states[] = {
    {"53 bits, 4 modulo 16", 4, 0x027F, 0x1F80},
    {"24 bits, 8 modulo 16", 8, 0x007F, 0x1F80},
    {"64 bits, 12 modulo 16, upward", 12, 0x0B7F, 0x5F80},
    {"24 bits, downward", 4, 0x047F, 0x3F80},
    {"53 bits, towards zero", 0, 0x0E7F, 0x7F80},
    {"denormals as zero", 8, 0x037F, 0x9FC0},
    {"zero divide, overflow and invalid operation raised", 4, 0x1372, 0x1900},
    {"decimal comma, 1252", 12, 0x037F, 0x1F80, "German", 1252},
    {"decimal comma, 932", 4, 0x027F, 0x1F80, "German", 932},
    {"932, upward, denormals as zero", 8, 0x0A7F, 0xDFC0, nullptr, 932},
};

class Sweep : public testing::Test {
  protected:
    // With the calculator registered for real.
    Sweep() { EXPECT_EQ(call("DllRegisterServer"), S_OK); }
    ~Sweep() override {
        call("DllUnregisterServer");
        FreeLibrary(library);
    }
    HRESULT call(const char* name) const {
        return reinterpret_cast<HRESULT(WINAPI*)()>(
            reinterpret_cast<void*>(GetProcAddress(LoadLibraryA("BvCalc.dll"), name)))();
    }
    Caller use_all(const CallerState& state) {
        const std::string locale = std::setlocale(LC_ALL, nullptr);
        const int code_page = _getmbcp();
        EXPECT_NE(std::setlocale(LC_ALL, state.locale), nullptr);
        if (state.multibyte_code_page) _setmbcp(state.multibyte_code_page);
        Caller caller(library, state, dir.path());
        for (const Family& family : families)
            family.use(caller);
        std::setlocale(LC_ALL, locale.c_str());
        _setmbcp(code_page);
        return caller;
    }

    const TempDir dir;
    const HMODULE library = LoadLibraryA("BvUtil.dll");
    const HiddenCalculatorRegistration hidden;
};

std::set<std::string> exported_functions(HMODULE module) {
    const auto* base = reinterpret_cast<const char*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS32*>(base + dos->e_lfanew);
    const auto* table = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(
        base + nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    const auto* names = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
    std::set<std::string> functions;
    for (DWORD i = 0; i < table->NumberOfNames; ++i)
        functions.insert(base + names[i]);
    std::erase_if(functions, [](auto& name) { return name.starts_with("_ZT"); }); // a class's tables
    return functions;
}

TEST_F(Sweep, GivesEveryCallerTheSameResults) {
    const Caller plain = use_all({});
    EXPECT_EQ(plain.called, exported_functions(library));
    EXPECT_EQ(plain.violations, std::vector<std::string>{});
    for (const CallerState& state : states) {
        SCOPED_TRACE(state.name);
        const Caller foreign = use_all(state);
        EXPECT_EQ(foreign.violations, std::vector<std::string>{});
        ASSERT_EQ(foreign.transcript.size(), plain.transcript.size());
        for (std::size_t i = 0; i < plain.transcript.size(); ++i)
            EXPECT_EQ(foreign.transcript[i], plain.transcript[i]) << "line " << i;
    }
}

// A program of another compiler, without a runtime. Its result is the line of its first check that failed.
TEST_F(Sweep, ServesAProgramOfAnotherCompiler) {
    EXPECT_EQ(run_program("tests\\foreign_client.exe", {}, dir.path()).code, 0);
}

} // namespace
