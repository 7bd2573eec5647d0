// What the commands of bvutil env are told, and how they are declared.
#pragma once

#include "bvutil/env.h"
#include "tools/bvutil/command.h"
#include "tools/bvutil/message_capture.h"

#include <memory>
#include <string>
#include <vector>

// What the arguments of all commands of the group can say.
struct EnvArguments {
    std::string file, section, path, value, source;
    std::vector<std::string> files, fallbacks;
    std::string kind = "text", mode, delimiter = "@";
    bool deep = false, which = false, text = false, create = false, backup = false, json = false;
    bool section_given = false;

    bool exact() const { return !deep; }
    const char* path_or_null() const { return path.empty() ? nullptr : path.c_str(); }
    // "[view] layers@1" for messages.
    std::string place() const { return "[" + section + "]" + (path.empty() ? "" : " " + path); }
};

[[noreturn]] void throw_not_found(const EnvArguments& arguments);

// Throws CommandFailed for a status that is neither a kind nor a success.
void expect_found(EnvStatus status, const EnvArguments& arguments, MessageCapture& messages);

// Adds a command of the group; what it is told goes to arguments that live as long as the command.
class EnvCommand {
  public:
    EnvCommand(CLI::App& group, const CommandHelp& help, void (*run)(const EnvArguments&));

    EnvCommand& file(const char* description) { return required("FILE", m_arguments->file, description); }
    EnvCommand& section() { return required("SECTION", m_arguments->section, "Name of the section"); }
    EnvCommand& optional_section();
    EnvCommand& path(bool is_required);
    EnvCommand& deep();
    EnvCommand& kind(const char* description);
    EnvCommand& fallbacks(const char* description);
    EnvCommand& backup() { return flag("--backup", m_arguments->backup, "Keep the former file as FILE.bak"); }
    EnvCommand& json();
    EnvCommand& required(const char* name, std::string& target, const char* description);
    EnvCommand& flag(const char* name, bool& target, const char* description);
    EnvArguments& arguments() { return *m_arguments; }
    CLI::App* operator->() { return m_command; }

  private:
    std::shared_ptr<EnvArguments> m_arguments;
    CLI::App* m_command;
};

// The commands that only read files, and those that change them.
void add_env_readers(CLI::App& group);
void add_env_writers(CLI::App& group);
