// What the operating system is asked for: its version, folders, the registry, other programs.
#pragma once

#include <optional>
#include <string>
#include <utility>

// Major and minor version number.
std::pair<int, int> system_version();

// A folder of the shell (CSIDL_...).
std::optional<std::string> shell_folder(int id);

// The bytes of the value "InstallLocation" of a key of the local machine; at most 2048, no value when there
// are more or none.
std::optional<std::string> install_location(const char* sub_key);

enum class RunOutcome { ended, not_started, wait_failed };

// Starts the program with the argument, each in quotation marks, and waits for its end; messages that arrive
// meanwhile are thrown away.
RunOutcome run_program(const char* program, const char* argument);
