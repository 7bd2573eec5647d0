#include "runtime/system_services.h"

#include "module/handles.h"
#include "runtime/formatted.h"

#include <shlobj.h>
#include <windows.h>

std::pair<int, int> system_version() {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    GetVersionExA(&info);
    return {static_cast<int>(info.dwMajorVersion), static_cast<int>(info.dwMinorVersion)};
}

std::optional<std::string> shell_folder(int id) {
    char path[MAX_PATH] = "";
    if (FAILED(SHGetFolderPathA(nullptr, id, nullptr, SHGFP_TYPE_CURRENT, path))) return std::nullopt;
    return path;
}

std::optional<std::string> install_location(const char* sub_key) {
    registry_key key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, sub_key, 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return std::nullopt;
    std::string value(2048, '\0');
    DWORD size = static_cast<DWORD>(value.size());
    if (RegQueryValueExA(key.get(), "InstallLocation", nullptr, nullptr,
                         reinterpret_cast<BYTE*>(value.data()), &size) != ERROR_SUCCESS)
        return std::nullopt;
    value.resize(size);
    if (value.empty() || value == std::string(1, '\0')) return std::nullopt;
    return value;
}

namespace {

// Waits for the process. A message is taken without waiting for it: what woke us may have been one that is
// sent and never queued.
bool wait_and_discard_messages(HANDLE process) {
    for (;;) {
        const DWORD woken = MsgWaitForMultipleObjects(1, &process, FALSE, INFINITE, QS_ALLINPUT);
        if (woken == WAIT_OBJECT_0) return true;
        if (woken != WAIT_OBJECT_0 + 1) return false;
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);
    }
}

} // namespace

RunOutcome run_program(const char* program, const char* argument) {
    std::string command_line = formatted("\"%s\" \"%s\"", program, argument);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(program, command_line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS, nullptr,
                        nullptr, &startup, &started))
        return RunOutcome::not_started;
    const unique_kernel_handle thread(started.hThread), process(started.hProcess);
    return wait_and_discard_messages(process.get()) ? RunOutcome::ended : RunOutcome::wait_failed;
}
