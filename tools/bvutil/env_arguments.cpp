#include "tools/bvutil/env_arguments.h"

#include "tools/bvutil/commands.h"
#include "tools/bvutil/env_values.h"

void throw_not_found(const EnvArguments& arguments) {
    throw CommandFailed(exit_not_found, arguments.place() + " is not in " + arguments.file);
}

void expect_found(EnvStatus status, const EnvArguments& arguments, MessageCapture& messages) {
    switch (status) {
    case ENV_NOT_FOUND:
        throw_not_found(arguments);
    case ENV_BAD_PATH:
        throw CommandFailed(exit_bad_input, "the path \"" + arguments.path + "\" has no name in it");
    case ENV_INVALID: {
        const std::string message = messages.take();
        throw CommandFailed(exit_failed, message.empty() ? "out of memory" : message);
    }
    default:
        return;
    }
}

EnvCommand::EnvCommand(CLI::App& group, const CommandHelp& help, void (*run)(const EnvArguments&))
    : m_arguments(std::make_shared<EnvArguments>()),
      m_command(add_command(group, help, [run, arguments = m_arguments] { run(*arguments); })) {}

EnvCommand& EnvCommand::optional_section() {
    m_command->add_option("SECTION", m_arguments->section, "Name of the section; without one: the whole file")
        ->each([arguments = m_arguments](const std::string&) { arguments->section_given = true; });
    return *this;
}

EnvCommand& EnvCommand::path(bool is_required) {
    m_command
        ->add_option("PATH", m_arguments->path,
                     "Names from the section down, each with its occurrence number where there are\n"
                     "several: walls@2@height")
        ->required(is_required);
    m_command->add_option("--delimiter", m_arguments->delimiter,
                          "Separates the names of PATH, when @ is part of a name");
    return *this;
}

EnvCommand& EnvCommand::deep() {
    return flag("--deep", m_arguments->deep,
                "Search each name of PATH at any depth, not only among the children");
}

EnvCommand& EnvCommand::kind(const char* description) {
    m_command->add_option("--as", m_arguments->kind, description)->check(CLI::IsMember(value_kinds()));
    return *this;
}

EnvCommand& EnvCommand::fallbacks(const char* description) {
    m_command->add_option("--fallback", m_arguments->fallbacks, description)
        ->type_name("FILE")
        ->allow_extra_args(false);
    return *this;
}

EnvCommand& EnvCommand::json() {
    add_json(m_command, m_arguments->json);
    return *this;
}

EnvCommand& EnvCommand::required(const char* name, std::string& target, const char* description) {
    m_command->add_option(name, target, description)->required();
    return *this;
}

EnvCommand& EnvCommand::flag(const char* name, bool& target, const char* description) {
    m_command->add_flag(name, target, description);
    return *this;
}
