#include "tools/bvutil/usage.h"

#include "tools/bvutil/command.h"
#include "tools/bvutil/exit_codes.h"

#include <vector>

namespace {

std::string command_names(const CLI::App& group) {
    std::string names;
    for (const CLI::App* command : group.get_subcommands([](const CLI::App*) { return true; }))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

// The first argument that nothing takes.
std::string unexpected(const CLI::App& command) {
    for (const std::string& argument : command.remaining(true))
        if (argument != "--") return argument;
    return "";
}

std::string cause(const CLI::App& command, const CLI::ParseError& error) {
    const std::string extra = unexpected(command);
    const bool is_option = extra.starts_with('-');
    if (is_option) return "there is no option " + extra;
    if (command.get_require_subcommand_min() > 0)
        return (extra.empty() ? "a command is missing" : "there is no command \"" + extra + "\"") +
               ": one of " + command_names(command) + " is expected";
    if (!extra.empty()) return "\"" + extra + "\" is one argument too many";
    return error.what();
}

} // namespace

std::string exit_code_table() {
    std::string table = "Exit codes:\n";
    for (const ExitCodeMeaning& each : exit_codes) {
        const std::string code = std::to_string(each.code);
        table += std::string(4 - code.size(), ' ') + code + "  " + each.meaning + "\n";
    }
    return table;
}

std::string help_of(const CLI::App& command) {
    std::string help =
        command.get_formatter()->make_help(&command, full_name(command), CLI::AppFormatMode::Normal);
    for (std::size_t gap = help.find("\n\n\n"); gap != help.npos; gap = help.find("\n\n\n", gap))
        help.erase(gap, 1);
    return help;
}

std::string usage_message(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App& command = named_command(app);
    const std::string name = full_name(command);
    const std::string place = &command == &app ? "" : name.substr(name.find(' ') + 1) + ": ";
    return place + cause(command, error) + "\nusage: " + usage_of(command) + "\nmore:  " + name + " --help";
}
