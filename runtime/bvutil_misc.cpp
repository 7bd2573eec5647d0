// Program locations, the configuration search and processes: the exported functions.
#include "bvutil/ini_file.h"
#include "bvutil/locations.h"
#include "bvutil/messages.h"
#include "module/guarded.h"
#include "module/module_instance.h"
#include "module/profile_value.h"
#include "module/resource.h"
#include "runtime/formatted.h"
#include "runtime/main_configuration.h"
#include "runtime/path_parts.h"
#include "runtime/system_services.h"
#include "runtime/text_search.h"

#include <cstdint>
#include <cstring>
#include <optional>
#include <shlobj.h>
#include <string>
#include <tuple>

namespace {

constexpr const char* source_name = "BvUtilMisc";
constexpr int line_no_main_ini = 75;
constexpr int line_no_ini_entry = 92;

// Copies a path to a buffer of BVUTIL_PATH_SIZE bytes; false, with nothing copied, when it does not fit.
bool store_path(char* out, const std::string& path) {
    if (path.size() >= BVUTIL_PATH_SIZE) return false;
    std::memcpy(out, path.c_str(), path.size() + 1);
    return true;
}

// The version, or after a box none.
bool find_version(int& major, int& minor) {
    if (BvUtil_GetOperatingSystem(&major, &minor)) return true;
    MessageBoxA(nullptr, "Konnte das Betriebssystem nicht feststellen.", "Fehler", MB_ICONEXCLAMATION);
    return false;
}

// Folders for all users are asked for on these systems only; on others the caller brings one (kept).
bool finds_common_folder(int major, int minor) {
    return (major == 5 && minor <= 2) || (major == 6 && minor == 0);
}

} // namespace

extern "C" int BVUTIL_CALL BvUtil_GetOperatingSystem(int* major, int* minor) {
    if (!major || !minor) return 0;
    std::tie(*major, *minor) = system_version();
    return 1;
}

extern "C" char* BVUTIL_CALL BvUtil_GetProgPathAppData(char* path) {
    static char unknown[] = "";
    if (!path) return nullptr;
    return guarded(static_cast<char*>(nullptr), [&]() -> char* {
        int major, minor;
        if (!find_version(major, minor)) return unknown;
        const bool find = finds_common_folder(major, minor);
        std::optional<std::string> folder = find ? shell_folder(CSIDL_COMMON_APPDATA) : path;
        if (!folder) return nullptr;
        // Kept: any backslash but the last character asks for one at the end, even behind another.
        const std::size_t backslash = find_character(*folder, '\\');
        if (backslash != std::string::npos && backslash + 1 != folder->size()) *folder += '\\';
        *folder += "Morvane Software GmbH\\Brenvik Morvane +2011\\Programm";
        return store_path(path, *folder) ? path : nullptr;
    });
}

extern "C" int BVUTIL_CALL BvUtil_GetProgPathRoamingAppData(char* path) {
    if (!path) return 0;
    return guarded(0, [&] {
        int major, minor;
        if (!find_version(major, minor)) return 0;
        const std::optional<std::string> folder = shell_folder(CSIDL_APPDATA);
        return folder && store_path(path, *folder) ? 1 : 0;
    });
}

extern "C" int BVUTIL_CALL GetLocalMachineRegistryEntry(const char* subKey, int size, void* buffer) {
    if (!subKey || !buffer) return 0;
    return guarded(0, [&] {
        const std::optional<std::string> value = install_location(subKey);
        if (!value || static_cast<int>(value->size()) > size) return 0;
        std::memcpy(buffer, value->data(), value->size());
        return 1;
    });
}

extern "C" int BVUTIL_CALL BvUtil_MB_SucheDatei(const char* section, const char* key, const char* file,
                                                char* out) {
    if (!out) return -1;
    return guarded(-1, [&] {
        const std::optional<std::string> path = search_file(section, key, file);
        return path && store_path(out, *path) ? 0 : -1;
    });
}

extern "C" int BVUTIL_CALL BvUtil_MB_SuchePfad(const char* section, const char* key, char* out) {
    if (!section || !key || !out) return -1;
    return guarded(-1, [&] {
        char configuration[BVUTIL_PATH_SIZE];
        if (BvUtil_MB_SucheDatei(nullptr, nullptr, nullptr, configuration) != 0) {
            BvUtil_Message(load_string(IDS_NO_MAIN_INI).c_str(), nullptr, nullptr, source_name,
                           line_no_main_ini);
            return -1;
        }
        const ProfileValue<1024> value(configuration, section, key, BVUTIL_INI_MISSING);
        if (value.empty()) {
            const std::string text =
                formatted(load_string(IDS_NO_INI_ENTRY).c_str(), section, key, configuration);
            BvUtil_Message(text.c_str(), nullptr, nullptr, source_name, line_no_ini_entry);
            return -1;
        }
        return store_path(out, make_path({}, {}, value.text())) ? 0 : -1;
    });
}

extern "C" int BVUTIL_CALL BvUtil_MB_IniReadString(const char* iniFile, const char* section, const char* key,
                                                   char* out, int* size) {
    constexpr int value_is_empty = 6;
    if (!iniFile || !section || !key || !out || !size) return value_is_empty;
    const ProfileValue<1024> value(iniFile, section, key, BVUTIL_INI_MISSING);
    if (value.empty()) return value_is_empty;
    const std::size_t length = std::strlen(value.text());
    if (std::int64_t{*size} - 1 > static_cast<std::int64_t>(length)) {
        std::memset(out, 0, static_cast<std::size_t>(*size) - 1);
        std::memcpy(out, value.text(), length);
    } else {
        // Kept: the value is copied whole, and the caller learns its length.
        std::memcpy(out, value.text(), length + 1);
        *size = static_cast<int>(length);
    }
    return 0;
}

extern "C" int BVUTIL_CALL BvUtil_ExecuteProgram(const char* program, const char* argument) {
    if (!program || !argument) return 0;
    // Kept: a program that could not be started counts as one that has ended.
    return guarded(0, [&] { return run_program(program, argument) == RunOutcome::wait_failed ? 0 : 1; });
}
