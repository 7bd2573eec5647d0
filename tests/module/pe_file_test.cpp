// What the built files export and import, read from the files themselves.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <set>
#include <string>
#include <windows.h>

namespace {

// A loaded module's headers and tables.
class Image {
  public:
    explicit Image(const char* name) : m_module(LoadLibraryExA(name, nullptr, DONT_RESOLVE_DLL_REFERENCES)) {}
    ~Image() {
        if (m_module) FreeLibrary(m_module);
    }
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;

    explicit operator bool() const { return m_module != nullptr; }

    std::set<std::string> exports() const {
        std::set<std::string> names;
        const auto* table = directory<IMAGE_EXPORT_DIRECTORY>(IMAGE_DIRECTORY_ENTRY_EXPORT);
        const auto* rows = at<DWORD>(table->AddressOfNames);
        for (DWORD i = 0; i < table->NumberOfNames; ++i)
            names.insert(at<char>(rows[i]));
        EXPECT_EQ(table->NumberOfNames, table->NumberOfFunctions) << "an export without a name";
        return names;
    }

    std::set<std::string> imported_modules() const {
        std::set<std::string> names;
        for (const auto* row = directory<IMAGE_IMPORT_DESCRIPTOR>(IMAGE_DIRECTORY_ENTRY_IMPORT); row->Name;
             ++row)
            names.insert(_strlwr(std::string(at<char>(row->Name)).data()));
        return names;
    }

  private:
    template <class T>
    const T* at(DWORD offset) const {
        return reinterpret_cast<const T*>(reinterpret_cast<const char*>(m_module) + offset);
    }
    template <class T>
    const T* directory(int entry) const {
        const auto* dos = at<IMAGE_DOS_HEADER>(0);
        const auto* nt = at<IMAGE_NT_HEADERS32>(static_cast<DWORD>(dos->e_lfanew));
        return at<T>(nt->OptionalHeader.DataDirectory[entry].VirtualAddress);
    }

    HMODULE m_module;
};

std::set<std::string> names_of_definition_file() {
    std::set<std::string> names;
    std::ifstream in(BVUTIL_DEF_FILE);
    bool exports = false;
    for (std::string word, line; std::getline(in, line);) {
        line.erase(line.find_last_not_of(" \t\r") + 1);
        line.erase(0, line.find_first_not_of(" \t"));
        if (line.empty() || line[0] == ';') continue;
        if (!exports) {
            exports = line == "EXPORTS";
            continue;
        }
        if (line[0] == '"')
            names.insert(line.substr(1, line.find('"', 1) - 1));
        else
            names.insert(line.substr(0, line.find_first_of(" \t=")));
    }
    return names;
}

TEST(PeFile, ExportsExactlyTheNamesOfTheDefinitionFile) {
    const Image dll("BvUtil.dll");
    ASSERT_TRUE(dll);
    const auto expected = names_of_definition_file();
    ASSERT_GT(expected.size(), 2u);
    EXPECT_EQ(dll.exports(), expected);
}

TEST(PeFile, NeedsOnlyDllsThatWindowsShips) {
    const std::set<std::string> shipped = {"advapi32.dll", "gdi32.dll",  "gdiplus.dll",  "kernel32.dll",
                                           "msvcrt.dll",   "ole32.dll",  "oleaut32.dll", "shell32.dll",
                                           "shlwapi.dll",  "user32.dll", "version.dll"};
    for (const char* file : {"BvUtil.dll", "bvutil.exe", "BvCalc.dll"}) {
        const Image image(file);
        if (!image) continue; // not built
        for (const std::string& name : image.imported_modules()) {
            const bool own = std::strcmp(file, "bvutil.exe") == 0 && name == "bvutil.dll";
            EXPECT_TRUE(own || shipped.count(name)) << file << " needs " << name;
        }
    }
}

} // namespace
