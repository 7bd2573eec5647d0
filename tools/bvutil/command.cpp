#include "tools/bvutil/command.h"

#include "tools/bvutil/console.h"
#include "tools/bvutil/progress.h"

#include <chrono>
#include <cstdio>
#include <memory>
#include <sstream>

namespace {

constexpr char common_options[] = "Common options";
constexpr char example_indent[] = "  ";

// Tells what the work took when it comes to its end.
void run_timed(const std::function<void()>& run) {
    const auto begin = std::chrono::steady_clock::now();
    run();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    char text[64];
    std::snprintf(text, sizeof text, "time: %.4f s", taken.count());
    print_note(text);
}

} // namespace

CLI::App& add_group(CLI::App& app, const char* name, const char* description, const char* remarks) {
    CLI::App& group = *app.add_subcommand(name, description);
    group.require_subcommand(1);
    group.group("Commands");
    group.footer(remarks);
    return group;
}

CLI::App* add_command(CLI::App& group, const CommandHelp& help, std::function<void()> run) {
    CLI::App* const command = group.add_subcommand(help.name, help.description);
    std::string footer = help.remarks;
    if (!footer.empty()) footer += "\n\n";
    footer += help.examples.size() == 1 ? "Example:" : "Examples:";
    for (const char* example : help.examples)
        footer.append("\n").append(example_indent).append(example);
    command->footer(footer);
    command->group("Commands");
    const auto timed = std::make_shared<bool>(false);
    command->add_flag("--time", *timed, "Tell on standard error what the work took")->group(common_options);
    command->callback([run = std::move(run), timed, name = full_name(*command)] {
        const Progress progress(name);
        *timed ? run_timed(run) : run();
    });
    return command;
}

void add_json(CLI::App* command, bool& json) {
    command->add_flag("--json", json, "Print the data as JSON")->group(common_options);
}

CLI::Option* add_output(CLI::App* command, std::string& output, const char* description) {
    return command->add_option("-o,--output,OUTPUT", output, description)->type_name("FILE");
}

std::vector<std::string> examples_of(const CLI::App& command) {
    std::vector<std::string> examples;
    std::istringstream footer(command.get_footer());
    for (std::string line; std::getline(footer, line);)
        if (line.starts_with(std::string(example_indent) + "bvutil "))
            examples.push_back(line.substr(sizeof example_indent - 1));
    return examples;
}

std::string full_name(const CLI::App& command) {
    return command.get_parent() ? full_name(*command.get_parent()) + " " + command.get_name()
                                : command.get_name();
}

std::string usage_of(const CLI::App& command) {
    CLI::Formatter formatter;
    formatter.label("SUBCOMMAND", "COMMAND");
    const std::string line = formatter.make_usage(&command, full_name(command));
    const std::string label = "Usage: ";
    return line.substr(label.size(), line.find_last_not_of('\n') + 1 - label.size());
}

const CLI::App& named_command(const CLI::App& app) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().back();
    return *command;
}
