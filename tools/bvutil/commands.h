// The commands of bvutil. Each function adds its own to the application; a command that runs returns when it
// is done, or throws CommandFailed with the exit code.
#pragma once

#include "tools/bvutil/exit_codes.h"

#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

// The message is text of the ANSI code page.
class CommandFailed : public std::runtime_error {
  public:
    CommandFailed(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode code() const { return m_code; }

  private:
    ExitCode m_code;
};

void add_calc_commands(CLI::App& app);
void add_completion_command(CLI::App& app);
void add_env_commands(CLI::App& app);
void add_files_commands(CLI::App& app);
void add_filter_commands(CLI::App& app);
void add_help_commands(CLI::App& app);
void add_image_commands(CLI::App& app);
void add_triangulate_commands(CLI::App& app);
void add_where_commands(CLI::App& app);
