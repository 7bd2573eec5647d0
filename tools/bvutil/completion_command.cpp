// bvutil completion: a script for the shell, made from the commands as they are declared.
#include "tools/bvutil/command.h"
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"

#include <memory>
#include <string>
#include <vector>

namespace {

// Branches of the script's three case commands. A command is named by its words, with a blank before each.
struct Branches {
    std::string commands; // patterns of what is a command
    std::string values;   // what follows an option
    std::string words;    // what a command can be followed by
};

// The choices that an option or positional argument is limited to.
std::string choices_of(const CLI::Option& option) {
    std::string type = option.get_type_name();
    const std::size_t begin = type.find('{');
    if (begin == type.npos) return "";
    type = type.substr(begin + 1, type.find('}') - begin - 1);
    for (char& c : type)
        if (c == ',') c = ' ';
    return type;
}

std::vector<std::string> names_of(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_lnames())
        names.push_back("--" + name);
    for (const std::string& name : option.get_snames())
        names.push_back("-" + name);
    return names;
}

// An option that takes a value is followed by one of its choices, or by a file.
void gather_values(Branches& branches, const CLI::Option& option, const std::string& path) {
    if (option.get_items_expected_max() == 0) return;
    std::string patterns;
    for (const std::string& name : names_of(option))
        patterns += (patterns.empty() ? "'" : "|'") + path + " " + name + "'";
    branches.values += "    " + patterns + ") words='" + choices_of(option) + "' ;;\n";
}

std::vector<const CLI::App*> every_command(const CLI::App& group) {
    return group.get_subcommands([](const CLI::App*) { return true; });
}

// Each with a blank before it.
std::string command_names(const CLI::App& group) {
    std::string names;
    for (const CLI::App* command : every_command(group))
        names += " " + command->get_name();
    return names;
}

void gather(Branches& branches, const CLI::App& app, const std::string& path) {
    std::string words = command_names(app), options;
    for (const CLI::App* command : every_command(app)) {
        const std::string name = " " + command->get_name();
        branches.commands +=
            (branches.commands.empty() ? "'" : "|'") + path + name + "'|' help" + path + name + "'";
        gather(branches, *command, path + name);
    }
    // What help takes: the names of what it is asked for.
    if (app.get_name() == "help")
        words = command_names(*app.get_parent());
    else if (!words.empty() && !path.empty())
        branches.words += "    ' help" + path + "') words='" + words.substr(1) + "' ;;\n";
    for (const CLI::Option* option : app.get_options()) {
        if (const std::string choices = choices_of(*option); option->get_positional() && !choices.empty())
            words += " " + choices;
        for (const std::string& name : names_of(*option))
            options += " " + name;
        if (option->nonpositional()) gather_values(branches, *option, path);
    }
    // Where nothing but a file can stand, options show when one is begun.
    const bool files = words.empty();
    branches.words += "    '" + path + "') " + (files ? "[[ $word != -* ]] || " : "") + "words='" +
                      (words + options).substr(1) + "' ;;\n";
}

std::string bash_script(const CLI::App& app) {
    Branches branches;
    gather(branches, app, "");
    return "# Completion of bvutil's commands and options:  source <(bvutil completion bash)\n"
           "_bvutil() {\n"
           "    local command= words= i word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
           "        case \"$command ${COMP_WORDS[i]}\" in\n"
           "        " +
           branches.commands +
           ") command+=\" ${COMP_WORDS[i]}\" ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$command $before\" in\n" +
           branches.values +
           "    *)\n"
           "    case \"$command\" in\n" +
           branches.words +
           "    esac ;;\n"
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
           "}\n"
           "complete -o default -F _bvutil bvutil bvutil.exe\n";
}

} // namespace

void add_completion_command(CLI::App& app) {
    const auto shell = std::make_shared<std::string>();
    CLI::App* const command =
        add_command(app,
                    {"completion",
                     "Print a script that completes commands and options in a shell",
                     {"bvutil completion bash"},
                     "For the shell that is running:  source <(bvutil completion bash)"},
                    [&app, shell] { print(bash_script(app)); });
    command->add_option("SHELL", *shell, "The shell")->required()->check(CLI::IsMember({"bash"}));
}
