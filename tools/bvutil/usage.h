// How a command is used, and what is wrong with a command line that uses it otherwise.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

// The exit codes and their meaning, a line for each.
std::string exit_code_table();

// The help of a command, a group or the application.
std::string help_of(const CLI::App& command);

// What the command line should have had, and where the help for it is.
std::string usage_message(const CLI::App& app, const CLI::ParseError& error);
