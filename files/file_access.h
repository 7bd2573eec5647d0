// Whether a path names a file that may be read or written, before anything is done with it.
#pragma once

#include <io.h>
#include <windows.h>

namespace file_access {

inline bool is_directory(const char* path) noexcept {
    const DWORD attributes = GetFileAttributesA(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

inline bool readable(const char* path) noexcept {
    return _access(path, 4) == 0 && !is_directory(path);
}

inline bool writable(const char* path) noexcept {
    return _access(path, 2) == 0 && !is_directory(path);
}

} // namespace file_access
