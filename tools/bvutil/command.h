// What all commands have in common: their help with its examples, and the options that every one has.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

struct CommandHelp {
    const char* name;
    const char* description;
    std::initializer_list<const char*> examples; // command lines that run in a folder of the samples
    const char* remarks = "";
};

// A group of commands, one of which has to follow its name.
CLI::App& add_group(CLI::App& app, const char* name, const char* description, const char* remarks = "");

// A command, with --time.
CLI::App* add_command(CLI::App& group, const CommandHelp& help, std::function<void()> run);

// --json, for a command that prints data.
void add_json(CLI::App* command, bool& json);

// The file that a command writes: a positional argument that may be given as -o, too.
CLI::Option* add_output(CLI::App* command, std::string& output, const char* description);

// The examples in a command's help.
std::vector<std::string> examples_of(const CLI::App& command);

// "bvutil env get": the names from the application down.
std::string full_name(const CLI::App& command);

// "bvutil env get [OPTIONS] FILE SECTION [PATH]"
std::string usage_of(const CLI::App& command);

// The command that the command line names, or the group or application where it stops naming one.
const CLI::App& named_command(const CLI::App& app);
