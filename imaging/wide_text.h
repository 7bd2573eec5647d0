// Narrow text as UTF-16.
#pragma once

#include <string>
#include <windows.h>

// Empty for an empty text and for one that cannot be converted.
inline std::wstring widen(const char* text, UINT code_page) {
    const int length = MultiByteToWideChar(code_page, 0, text, -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L'\0');
    const int written = MultiByteToWideChar(code_page, 0, text, -1, wide.data(), length);
    wide.resize(written > 0 ? static_cast<std::size_t>(written - 1) : 0);
    return wide;
}
