#include "module/module_instance.h"

#include <array>

std::string load_string(UINT id) {
    std::array<char, 512> text{};
    const int length = LoadStringA(module_instance(), id, text.data(), static_cast<int>(text.size()));
    return {text.data(), static_cast<std::size_t>(length)};
}

int message_box(UINT text_id) {
    return MessageBoxA(thread_main_window(), load_string(text_id).c_str(), "BvUtil",
                       MB_OK | MB_ICONEXCLAMATION);
}

namespace {

struct MainWindowSearch {
    HWND visible = nullptr;
    HWND any = nullptr;
};

BOOL CALLBACK visit_window(HWND window, LPARAM parameter) noexcept {
    auto& found = *reinterpret_cast<MainWindowSearch*>(parameter);
    if (GetWindow(window, GW_OWNER) != nullptr) return TRUE;
    if (!found.any) found.any = window;
    if (!IsWindowVisible(window)) return TRUE;
    found.visible = window;
    return FALSE;
}

} // namespace

HWND thread_main_window() {
    MainWindowSearch search;
    EnumThreadWindows(GetCurrentThreadId(), visit_window, reinterpret_cast<LPARAM>(&search));
    return search.visible ? search.visible : search.any;
}
