// What the built files export and import, read from their headers.
#include "module/handles.h"

#include <gtest/gtest.h>

#include <fstream>
#include <regex>
#include <set>
#include <string>

namespace {

using Names = std::set<std::string>;

// A module, laid out but not started.
library laid_out(const char* name) {
    return library(LoadLibraryExA(name, nullptr, DONT_RESOLVE_DLL_REFERENCES));
}

template <class T>
const T* at(const library& module, DWORD offset) {
    return reinterpret_cast<const T*>(reinterpret_cast<const char*>(module.get()) + offset);
}
template <class T>
const T* directory(const library& module, int entry) {
    const auto headers = static_cast<DWORD>(at<IMAGE_DOS_HEADER>(module, 0)->e_lfanew);
    const auto& optional = at<IMAGE_NT_HEADERS32>(module, headers)->OptionalHeader;
    return at<T>(module, optional.DataDirectory[entry].VirtualAddress);
}

TEST(PeFile, ExportsExactlyTheNamesOfTheDefinitionFile) {
    Names expected, exported;
    std::ifstream in(BVUTIL_DEF_FILE);
    bool begun = false;
    std::smatch name;
    for (std::string line; std::getline(in, line); begun = begun || line.starts_with("EXPORTS"))
        if (begun && std::regex_search(line, name, std::regex("^\\s*\"?([^;\"= \t\r]+)")))
            expected.insert(name[1]);
    ASSERT_GT(expected.size(), 2u);

    const library dll = laid_out("BvUtil.dll");
    ASSERT_TRUE(dll);
    const auto* table = directory<IMAGE_EXPORT_DIRECTORY>(dll, IMAGE_DIRECTORY_ENTRY_EXPORT);
    for (DWORD i = 0; i < table->NumberOfNames; ++i)
        exported.insert(at<char>(dll, at<DWORD>(dll, table->AddressOfNames)[i]));
    EXPECT_EQ(table->NumberOfNames, table->NumberOfFunctions) << "an export without a name";
    EXPECT_EQ(exported, expected);
}

TEST(PeFile, NeedsOnlyDllsThatWindowsShips) {
    const Names shipped = {"advapi32.dll", "gdi32.dll",  "gdiplus.dll",  "kernel32.dll",
                           "msvcrt.dll",   "ole32.dll",  "oleaut32.dll", "shell32.dll",
                           "shlwapi.dll",  "user32.dll", "version.dll"};
    for (const std::string file : {"BvUtil.dll", "bvutil.exe", "BvCalc.dll"}) {
        const library module = laid_out(file.c_str());
        if (!module) continue; // not built
        const auto* row = directory<IMAGE_IMPORT_DESCRIPTOR>(module, IMAGE_DIRECTORY_ENTRY_IMPORT);
        for (; row->Name; ++row) {
            std::string name = at<char>(module, row->Name);
            _strlwr(name.data());
            const bool own = file == "bvutil.exe" && name == "bvutil.dll";
            EXPECT_TRUE(own || shipped.count(name)) << file << " needs " << name;
        }
    }
}

} // namespace
