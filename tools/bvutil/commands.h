// The command groups of bvutil. Each adds its subcommands to the application; a command that runs sets the
// exit code by throwing CommandFailed or by returning normally (success).
#pragma once

#include <stdexcept>
#include <string>

namespace CLI {
class App;
}

// Exit codes, the same for all commands.
enum ExitCode {
    exit_done = 0,
    exit_not_found = 1, // what was asked for does not exist (a section, a key, a file to search)
    exit_bad_input = 2, // an input file or value does not have the form it should
    exit_io_error = 3,  // a file cannot be read or written
    exit_failed = 4,    // the work itself failed (a component is missing, out of memory)
    exit_usage = 64     // the command line is wrong
};

class CommandFailed : public std::runtime_error {
  public:
    CommandFailed(ExitCode code, const std::string& message) : std::runtime_error(message), m_code(code) {}
    ExitCode code() const { return m_code; }

  private:
    ExitCode m_code;
};

void add_calc_commands(CLI::App& app);
void add_env_commands(CLI::App& app);
void add_files_commands(CLI::App& app);
void add_image_commands(CLI::App& app);
void add_where_commands(CLI::App& app);
void add_filter_commands(CLI::App& app);
void add_triangulate_commands(CLI::App& app);
