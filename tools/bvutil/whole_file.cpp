#include "tools/bvutil/whole_file.h"

#include "tools/bvutil/commands.h"

#include <algorithm>
#include <windows.h>

namespace {

[[noreturn]] void fail_on(const char* doing, const std::string& path, const std::string& why) {
    throw CommandFailed(exit_io_error, std::string("cannot ") + doing + " \"" + path + "\": " + why);
}

// Devices and folders are told by name: opening one may wait for ever, or fail with a text that misleads.
void refuse_odd_names(const char* doing, const std::string& path) {
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    if (length == 0) fail_on(doing, path, system_message(GetLastError()));
    if (length >= sizeof full) fail_on(doing, path, "The name is too long.");
    if (std::string_view(full).starts_with("\\\\.\\")) fail_on(doing, path, "It is a device.");
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        fail_on(doing, path, "It is a folder.");
}

class FileHandle {
  public:
    explicit FileHandle(HANDLE file) : m_file(file) {}
    ~FileHandle() {
        if (m_file != INVALID_HANDLE_VALUE) CloseHandle(m_file);
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    HANDLE get() const { return m_file; }

  private:
    HANDLE m_file;
};

} // namespace

std::string system_message(unsigned long error) {
    char text[512];
    DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error,
                                  0, text, sizeof text, nullptr);
    while (length > 0 && (text[length - 1] == '\n' || text[length - 1] == '\r'))
        --length;
    return length > 0 ? std::string(text, length) : "error " + std::to_string(error);
}

std::string read_whole_file(const std::string& path) {
    refuse_odd_names("read", path);
    const FileHandle file(CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
    LARGE_INTEGER size;
    if (file.get() == INVALID_HANDLE_VALUE || !GetFileSizeEx(file.get(), &size))
        fail_on("read", path, system_message(GetLastError()));
    constexpr LONGLONG largest = 0x40000000;
    if (size.QuadPart > largest) fail_on("read", path, "The file is too large.");
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD length = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &length, nullptr))
        fail_on("read", path, system_message(GetLastError()));
    bytes.resize(length);
    return bytes;
}

bool file_exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

void back_up(const std::string& path) {
    if (!CopyFileA(path.c_str(), (path + ".bak").c_str(), FALSE))
        fail_on("write", path + ".bak", system_message(GetLastError()));
}

ReplacementFile::ReplacementFile(const std::string& target) : m_target(target) {
    refuse_odd_names("write", target);
    const DWORD attributes = GetFileAttributesA(target.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        fail_on("write", target, "It is read-only.");
    m_buffer.reserve(capacity);
    // A run that was cut off may have left its file: the next free number is taken.
    for (int number = 0;; ++number) {
        m_path = target + "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(number) + ".tmp";
        m_file = CreateFileA(m_path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                             nullptr);
        if (m_file != INVALID_HANDLE_VALUE) return;
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS || number == 99) fail(error);
    }
}

ReplacementFile::~ReplacementFile() {
    if (m_file != INVALID_HANDLE_VALUE) CloseHandle(m_file);
    if (!m_path.empty()) DeleteFileA(m_path.c_str());
}

void ReplacementFile::fail(unsigned long error) const {
    fail_on("write", m_target, system_message(error));
}

void ReplacementFile::put(std::string_view bytes) noexcept {
    while (!bytes.empty()) {
        if (m_buffer.size() == capacity) flush();
        const std::size_t length = std::min(bytes.size(), capacity - m_buffer.size());
        m_buffer.append(bytes.substr(0, length));
        bytes.remove_prefix(length);
    }
}

void ReplacementFile::flush() noexcept {
    DWORD written = 0;
    const auto length = static_cast<DWORD>(m_buffer.size());
    if (m_error == 0 &&
        (!WriteFile(m_file, m_buffer.data(), length, &written, nullptr) || written != length)) {
        m_error = GetLastError();
        if (m_error == 0) m_error = ERROR_DISK_FULL;
    }
    m_buffer.clear();
}

void ReplacementFile::close() {
    flush();
    if (m_error == 0 && !FlushFileBuffers(m_file)) m_error = GetLastError();
    if (!CloseHandle(m_file) && m_error == 0) m_error = GetLastError();
    m_file = INVALID_HANDLE_VALUE;
    if (m_error != 0) fail(m_error);
}

void ReplacementFile::replace() {
    if (!MoveFileExA(m_path.c_str(), m_target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        fail(GetLastError());
    m_path.clear();
}
