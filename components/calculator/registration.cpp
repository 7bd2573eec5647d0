#include "components/calculator/registration.h"

#include <array>
#include <string>
#include <string_view>

namespace {

constexpr wchar_t description[] = L"BvUtil calculator";

// Class keys of the machine and of the user, not their merged view: the place is chosen here.
std::wstring class_key() {
    return std::wstring(L"Software\\Classes\\CLSID\\") + class_id_text;
}

std::wstring path_of(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

// A null name is the key's default value.
LSTATUS set_text(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    HKEY opened = nullptr;
    LSTATUS status =
        RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, &opened, nullptr);
    if (status != ERROR_SUCCESS) return status;
    status = RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                            static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
    return status;
}

LSTATUS register_at(HKEY root, const std::wstring& path) {
    const std::wstring key = class_key();
    const std::wstring server = key + L"\\InprocServer32";
    LSTATUS status = set_text(root, key, nullptr, description);
    if (status == ERROR_SUCCESS) status = set_text(root, server, nullptr, path);
    if (status == ERROR_SUCCESS) status = set_text(root, server, L"ThreadingModel", L"Apartment");
    return status;
}

bool is_ours(HKEY root) {
    std::array<wchar_t, std::size(description)> text{};
    DWORD size = sizeof text;
    return RegGetValueW(root, class_key().c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text.data(), &size) ==
               ERROR_SUCCESS &&
           std::wstring_view(text.data()) == description;
}

// Another calculator of the same class keeps its registration.
LSTATUS remove_at(HKEY root) {
    return is_ours(root) ? RegDeleteTreeW(root, class_key().c_str()) : ERROR_SUCCESS;
}

} // namespace

HRESULT register_component(HMODULE module) {
    const std::wstring path = path_of(module);
    if (path.empty()) return HRESULT_FROM_WIN32(GetLastError());
    if (register_at(HKEY_LOCAL_MACHINE, path) == ERROR_SUCCESS) return S_OK;
    return HRESULT_FROM_WIN32(static_cast<DWORD>(register_at(HKEY_CURRENT_USER, path)));
}

HRESULT unregister_component() {
    const LSTATUS user = remove_at(HKEY_CURRENT_USER);
    LSTATUS machine = remove_at(HKEY_LOCAL_MACHINE);
    // A user without rights there can have registered nothing there.
    if (machine == ERROR_ACCESS_DENIED) machine = ERROR_SUCCESS;
    return HRESULT_FROM_WIN32(static_cast<DWORD>(user != ERROR_SUCCESS ? user : machine));
}
