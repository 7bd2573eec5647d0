// bvutil, run as a user runs it, in a folder of the test's own.
#pragma once

#include "tests/support/run_program.h"

#include <gtest/gtest.h>

class Commands : public testing::Test {
  protected:
    // Runs a line as it is typed, without the program's name; its characters are those of the code page.
    ProgramRun bvutil(const std::string& line) const {
        std::wstring wide(line.size(), L'\0');
        const int size = static_cast<int>(line.size());
        MultiByteToWideChar(CP_ACP, 0, line.data(), size, wide.data(), size);
        return run_line(std::filesystem::path(quoted(program_path("bvutil.exe"))).wstring() + L" " + wide,
                        dir.path());
    }

    struct Case {
        std::string line;
        int code;
        std::string says; // all of the output, or a part behind "..."; of the errors when the code is not 0
    };
    void expect(const std::string& family, std::initializer_list<Case> cases) const {
        for (const auto& [line, code, says] : cases) {
            const ProgramRun run = bvutil(family + " " + line);
            SCOPED_TRACE(line + ": " + run.err);
            EXPECT_EQ(run.code, code);
            EXPECT_EQ(run.err.empty(), code == 0);
            if (says.starts_with("...") || code != 0)
                EXPECT_NE((code == 0 ? run.out : run.err).find(says.substr(says.starts_with("...") ? 3 : 0)),
                          std::string::npos)
                    << run.out;
            else
                EXPECT_EQ(run.out, says);
        }
    }
    void write(const std::string& name, const std::string& text) const { write_file(dir.file(name), text); }
    std::string read(const std::string& name) const { return read_file(dir.file(name)); }
    // How many: what a failed or interrupted change could leave behind is one more.
    std::ptrdiff_t files() const {
        return std::distance(std::filesystem::directory_iterator(dir.path()), {});
    }

    TempDir dir;
};
