// bvutil help: what the commands are, and what they return.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/usage.h"

#include <memory>
#include <string>
#include <vector>

namespace {

constexpr char exit_codes_topic[] = "exit-codes";

struct Arguments {
    std::vector<std::string> topic;
    bool json = false;
};

const auto every = [](const CLI::App*) { return true; };

void write_exit_codes(JsonWriter& json) {
    json.begin_array();
    for (const ExitCodeMeaning& each : exit_codes)
        json.begin_object()
            .member("code", static_cast<int>(each.code))
            .member("name", each.name)
            .member("meaning", each.meaning)
            .end_object();
    json.end_array();
}

// The command, or all commands of the group.
void write_commands(JsonWriter& json, const CLI::App& app) {
    for (const CLI::App* command : app.get_subcommands(every))
        write_commands(json, *command);
    if (app.get_require_subcommand_min() > 0) return;
    json.begin_object()
        .member("command", full_name(app))
        .member("description", app.get_description())
        .member("usage", usage_of(app))
        .member("json", app.get_option_no_throw("--json") != nullptr)
        .key("examples")
        .begin_array();
    for (const std::string& example : examples_of(app))
        json.value(example);
    json.end_array().end_object();
}

const CLI::App& find(const CLI::App& app, const std::vector<std::string>& names) {
    const CLI::App* found = &app;
    for (const std::string& name : names) {
        const CLI::App* const group = found;
        for (const CLI::App* command : group->get_subcommands(every))
            if (command->get_name() == name) found = command;
        if (found == group)
            throw CommandFailed(exit_not_found,
                                "there is no command or topic \"" + name + "\" in " + full_name(*group));
    }
    return *found;
}

void help(const CLI::App& app, const Arguments& arguments) {
    JsonWriter json;
    if (arguments.topic == std::vector<std::string>{exit_codes_topic}) {
        if (!arguments.json) return print(exit_code_table());
        write_exit_codes(json);
    } else {
        const CLI::App& command = find(app, arguments.topic);
        if (!arguments.json) return print(help_of(command));
        json.begin_array();
        write_commands(json, command);
        json.end_array();
    }
    json.print();
}

} // namespace

void add_help_commands(CLI::App& app) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* const command =
        add_command(app,
                    {"help",
                     "Print the help of a command or group, or the exit codes",
                     {"bvutil help env get", "bvutil help exit-codes", "bvutil help --json"},
                     "With --json: the commands, how they are used, and their examples."},
                    [&app, arguments] { help(app, *arguments); });
    command->add_option("TOPIC", arguments->topic, "The names of a command or group; or exit-codes")
        ->type_name(std::string("{") + exit_codes_topic + "}");
    add_json(command, arguments->json);
}
