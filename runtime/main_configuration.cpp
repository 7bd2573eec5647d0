#include "runtime/main_configuration.h"

#include "bvutil/ini_file.h"
#include "module/profile_value.h"
#include "runtime/path_parts.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <windows.h>

namespace {

bool exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Reads with one of the platform's functions that tell the size they need when it is not enough.
template <class Read>
std::string read_growing(Read&& read) {
    std::string text(MAX_PATH, '\0');
    for (;;) {
        const DWORD length = read(text.data(), static_cast<DWORD>(text.size()));
        const bool fits = length < text.size();
        text.resize(length);
        if (fits) return text;
    }
}

std::string current_directory() {
    return read_growing([](char* buffer, DWORD size) { return GetCurrentDirectoryA(size, buffer); });
}

// The directory that the environment variable MB names; empty when it is not set.
std::string mb_directory() {
    return read_growing([](char* buffer, DWORD size) { return GetEnvironmentVariableA("MB", buffer, size); });
}

std::string path_in(std::string_view directory, std::string_view file) {
    return make_path(std::nullopt, directory, file);
}

std::optional<std::string> search_in_list(std::string_view directories, const char* file) {
    // No trail byte is a semicolon: plain bytes will do.
    for (std::size_t at = 0; at <= directories.size();) {
        const std::size_t end = std::min(directories.find(';', at), directories.size());
        std::string path = path_in(directories.substr(at, end - at), file);
        if (exists(path)) return path;
        at = end + 1;
    }
    return std::nullopt;
}

} // namespace

std::string find_main_configuration() {
    constexpr std::uint16_t first_number = 9;
    // Kept: the number wraps from 0 to 65535, so that the search ends only when a file exists. What
    // directories there are may change meanwhile, too.
    for (std::uint16_t number = first_number;; --number) {
        const std::string name = "mb" + (number ? std::to_string(number) : "") + ".ini";
        if (std::string path = current_directory() + '\\' + name; exists(path)) return path;
        const std::string mb = mb_directory();
        if (std::string path = path_in(mb, name); !mb.empty() && exists(path)) return path;
        if (std::string path = "C:\\" + name; exists(path)) return path;
    }
}

std::optional<std::string> search_file(const char* section, const char* key, const char* file) {
    if (!file) return find_main_configuration();
    if (exists(file)) return path_in(current_directory(), file);
    const std::string mb = mb_directory();
    if (std::string path = path_in(mb, file); !mb.empty() && exists(path)) return path;

    const std::string configuration = find_main_configuration();
    if (!section || !*section || !key || !*key) return path_in({}, configuration);
    const ProfileValue<1024> directories(configuration.c_str(), section, key, BVUTIL_INI_MISSING);
    if (directories.empty()) return std::nullopt;
    return search_in_list(directories.text(), file);
}
