// A folder of the test's own, removed with all it holds; and whole files in one call.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <windows.h>

class TempDir {
  public:
    TempDir() {
        static std::atomic<unsigned> counter = 0;
        char base[MAX_PATH];
        GetTempPathA(MAX_PATH, base);
        m_path = std::string(base) + "bvutil_" + std::to_string(GetCurrentProcessId()) + "_" +
                 std::to_string(counter++);
        std::filesystem::create_directories(m_path);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& path() const { return m_path; }
    // The full path of a file of this name in the folder.
    std::string file(const std::string& name) const { return m_path + "\\" + name; }

  private:
    std::string m_path;
};

inline std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}
