#include "calcgeom/bstr_text.h"

#include "module/memory_reserve.h"

unique_bstr to_bstr(const char* text) {
    const int units = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (units <= 0) memory_reserve::run_out();
    unique_bstr wide(SysAllocStringLen(nullptr, static_cast<UINT>(units) - 1));
    if (!wide) memory_reserve::run_out();
    MultiByteToWideChar(CP_ACP, 0, text, -1, wide.get(), units);
    return wide;
}

void copy_to_buffer(const unique_bstr& text, char* buffer) {
    const wchar_t* wide = text ? text.get() : L"";
    const int bytes = WideCharToMultiByte(CP_THREAD_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    buffer[0] = '\0';
    WideCharToMultiByte(CP_THREAD_ACP, 0, wide, -1, buffer, bytes, nullptr, nullptr);
}
