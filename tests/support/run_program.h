// Runs a program of the build as a user would, and keeps what it printed.
#pragma once

#include "tests/support/temp_dir.h"

#include <string>
#include <vector>
#include <windows.h>

struct ProgramRun {
    int code = -1; // -1 when it could not be started or had to be ended
    std::string out;
    std::string err;
};

// An argument as the C runtime of the program started will split it off again.
inline std::string quoted(const std::string& argument) {
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\').append("\"");
}

// The path of a program, named as it lies below the build folder: "bvutil.exe", "samples\\settings.exe".
inline std::string program_path(const std::string& name) {
    char self[MAX_PATH];
    GetModuleFileNameA(nullptr, self, sizeof self);
    return std::filesystem::path(self).parent_path().parent_path().string() + "\\" + name;
}

// Runs a command line with the handles given, which are inherited; returns its exit code, or -1.
inline int run_with(std::wstring line, const std::string& folder, HANDLE in, HANDLE out, HANDLE err) {
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = in;
    start.hStdOutput = out;
    start.hStdError = err;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                        std::filesystem::path(folder).c_str(), &start, &process))
        return -1;
    DWORD code = 0;
    const bool ended = WaitForSingleObject(process.hProcess, 60000) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(process.hProcess, &code);
    if (!ended) TerminateProcess(process.hProcess, 1);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return ended ? static_cast<int>(code) : -1;
}

inline ProgramRun run_line(const std::wstring& line, const std::string& folder) {
    const TempDir outputs;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const auto open = [&](const std::string& file, DWORD access, DWORD disposition) {
        return CreateFileA(file.c_str(), access, FILE_SHARE_READ, &inherited, disposition, 0, nullptr);
    };
    const HANDLE handles[] = {open("NUL", GENERIC_READ, OPEN_EXISTING),
                              open(outputs.file("out"), GENERIC_WRITE, CREATE_ALWAYS),
                              open(outputs.file("err"), GENERIC_WRITE, CREATE_ALWAYS)};
    ProgramRun run;
    run.code = run_with(line, folder, handles[0], handles[1], handles[2]);
    for (const HANDLE handle : handles)
        CloseHandle(handle);
    run.out = read_file(outputs.file("out"));
    run.err = read_file(outputs.file("err"));
    return run;
}

inline ProgramRun run_program(const std::string& name, const std::vector<std::string>& arguments,
                              const std::string& folder) {
    std::string line = quoted(program_path(name));
    for (const std::string& argument : arguments)
        line.append(" ").append(quoted(argument));
    std::wstring wide(line.size(), L'\0');
    const int length = static_cast<int>(line.size());
    wide.resize(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, line.data(), length, wide.data(), length)));
    return run_line(wide, folder);
}
