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

inline ProgramRun run_line(std::wstring line, const std::string& folder) {
    const TempDir outputs;
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    const auto open = [&](const char* file, DWORD access, DWORD disposition) {
        return CreateFileA(file, access, FILE_SHARE_READ, &inherited, disposition, 0, nullptr);
    };
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = open("NUL", GENERIC_READ, OPEN_EXISTING);
    start.hStdOutput = open(outputs.file("out").c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    start.hStdError = open(outputs.file("err").c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    PROCESS_INFORMATION process{};
    ProgramRun run;
    if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                       std::filesystem::path(folder).c_str(), &start, &process)) {
        DWORD code = 0;
        if (WaitForSingleObject(process.hProcess, 60000) != WAIT_OBJECT_0)
            TerminateProcess(process.hProcess, 1);
        else if (GetExitCodeProcess(process.hProcess, &code))
            run.code = static_cast<int>(code);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
    }
    for (const HANDLE handle : {start.hStdInput, start.hStdOutput, start.hStdError})
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
