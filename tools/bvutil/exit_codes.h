// The exit codes of bvutil: one table for all commands, their help and the README.
#pragma once

enum ExitCode {
    exit_done = 0,
    exit_not_found = 1,
    exit_bad_input = 2,
    exit_io_error = 3,
    exit_failed = 4,
    exit_usage = 64
};

struct ExitCodeMeaning {
    ExitCode code;
    const char* name;
    const char* meaning;
};

inline constexpr ExitCodeMeaning exit_codes[] = {
    {exit_done, "done", "done"},
    {exit_not_found, "not-found", "what was asked for does not exist"},
    {exit_bad_input, "bad-input", "an input file or value does not have the form it should"},
    {exit_io_error, "io-error", "a file cannot be read or written"},
    {exit_failed, "failed", "the work itself failed"},
    {exit_usage, "usage", "the command line is wrong"},
};
