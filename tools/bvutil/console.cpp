#include "tools/bvutil/console.h"

#include <cstdio>
#include <io.h>
#include <windows.h>

std::string to_utf8(std::string_view ansi) {
    const int length = static_cast<int>(ansi.size());
    std::wstring wide(ansi.size(), L'\0');
    const int wide_length = MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), length);
    std::string utf8(static_cast<std::size_t>(wide_length) * 3, '\0');
    utf8.resize(static_cast<std::size_t>(WideCharToMultiByte(
        CP_UTF8, 0, wide.data(), wide_length, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

void print_utf8(std::string_view utf8) {
    std::fwrite(utf8.data(), 1, utf8.size(), stdout);
}

void print(std::string_view ansi) {
    print_utf8(to_utf8(ansi));
}

void print_error(std::string_view message) {
    std::fflush(stdout);
    const std::string line = "bvutil: " + to_utf8(message) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

bool output_is_console() {
    return _isatty(_fileno(stdout)) != 0;
}
