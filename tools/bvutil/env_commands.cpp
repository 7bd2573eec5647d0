// bvutil env: settings files read and changed from the command line.
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/env_file.h"
#include "tools/bvutil/env_merge.h"
#include "tools/bvutil/env_show.h"
#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/env_values.h"
#include "tools/bvutil/whole_file.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

// What the arguments of all commands of the group can say.
struct Arguments {
    std::string file, section, path, value, source;
    std::vector<std::string> files, fallbacks;
    std::string kind = "text", mode, delimiter = "@";
    bool deep = false, which = false, text = false, create = false, backup = false;
    bool section_given = false;

    bool exact() const { return !deep; }
    const char* path_or_null() const { return path.empty() ? nullptr : path.c_str(); }
    // "[view] layers@1" for messages.
    std::string place() const { return "[" + section + "]" + (path.empty() ? "" : " " + path); }
};

[[noreturn]] void not_found(const Arguments& arguments) {
    throw CommandFailed(exit_not_found, arguments.place() + " is not in " + arguments.file);
}

// Throws for a status that is neither a kind nor a success.
void expect_found(EnvStatus status, const Arguments& arguments, MessageCapture& messages) {
    switch (status) {
    case ENV_NOT_FOUND:
        not_found(arguments);
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

// The file's environment on top of those of the fallbacks; layer tags number them from 0, the file.
class Layers {
  public:
    Layers(const Arguments& arguments, MessageCapture& messages) : m_files(arguments.fallbacks) {
        m_files.insert(m_files.begin(), arguments.file);
        m_layers.resize(m_files.size());
        for (std::size_t i = m_files.size(); i-- > 0;) {
            const EnvHandle below = i + 1 < m_layers.size() ? m_layers[i + 1]->get() : nullptr;
            m_layers[i] = std::make_unique<Environment>(static_cast<long>(i), below);
            load(m_layers[i]->get(), m_files[i], messages);
        }
    }
    ~Layers() {
        for (auto& layer : m_layers) // from the top: a fallback is busy while something stands on it
            layer.reset();
    }
    Layers(const Layers&) = delete;
    Layers& operator=(const Layers&) = delete;

    EnvHandle top() const { return m_layers.front()->get(); }
    EnvHandle env(std::size_t layer) const { return m_layers[layer]->get(); }
    const std::string& file(std::size_t layer) const { return m_files[layer]; }
    std::size_t count() const { return m_files.size(); }

  private:
    std::vector<std::string> m_files;
    std::vector<std::unique_ptr<Environment>> m_layers;
};

void show(const Arguments& arguments) {
    MessageCapture messages;
    const Environment env;
    const Unkept unkept = load(env.get(), arguments.file, messages);
    if (arguments.text)
        print_text(env.get());
    else
        print_tree(arguments.file, TreeWalk::consume(env.get()));
    if (unkept.text_behind) print_error("note: a byte 1A or FF ends " + arguments.file + " before its end");
}

void get_block(const Arguments& arguments, const Layers& layers, std::size_t layer) {
    if (arguments.kind != "text")
        throw CommandFailed(exit_bad_input, arguments.place() + " is a block, not a value");
    const EnvHandle sub = env_open_subenv(layers.env(layer), arguments.section.c_str(),
                                          arguments.path_or_null(), arguments.exact());
    if (!sub) throw CommandFailed(exit_failed, "out of memory");
    const std::string title = arguments.place() + (arguments.which ? " in " + layers.file(layer) : "");
    print_tree(printable(title), TreeWalk::below(sub));
}

void get(const Arguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    MessageCapture messages;
    const Layers layers(arguments, messages);
    const char* const section = arguments.section.c_str();
    if (!arguments.path_or_null()) {
        // The store looks for elements in its fallbacks, not for sections.
        for (std::size_t layer = 0; layer < layers.count(); ++layer)
            if (env_exist(layers.env(layer), section, nullptr, 1)) return get_block(arguments, layers, layer);
        not_found(arguments);
    }
    const char* const path = arguments.path.c_str();
    long layer = 0;
    const EnvStatus kind =
        env_get_core(layers.top(), section, path, arguments.exact(), 0, &layer, nullptr, nullptr, nullptr);
    expect_found(kind, arguments, messages);
    if (kind == ENV_IS_BLOCK) return get_block(arguments, layers, static_cast<std::size_t>(layer));
    const std::string value = read_as(arguments.kind, layers.top(), section, path, arguments.exact());
    if (arguments.which) print(layers.file(static_cast<std::size_t>(layer)) + ": ");
    print(value + "\n");
}

// A sub-environment gives the children of any block by position; without one, the sections.
void list(const Arguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    MessageCapture messages;
    const Environment env;
    load(env.get(), arguments.file, messages);
    const auto list_all = [&](TreeWalk walk, bool numbered) {
        while (walk.next()) {
            const TreeNode& node = walk.node();
            if (node.depth > 0) continue;
            std::string name(node.name);
            if (numbered && node.repeated)
                name += arguments.delimiter.substr(0, 1) + std::to_string(node.occurrence);
            print(printable(name) + "\n");
        }
    };
    if (!arguments.section_given) return list_all(TreeWalk::consume(env.get()), false);
    const char* const section = arguments.section.c_str();
    const EnvStatus kind = env_get_core(env.get(), section, arguments.path_or_null(), arguments.exact(), 0,
                                        nullptr, nullptr, nullptr, nullptr);
    expect_found(kind, arguments, messages);
    if (kind != ENV_IS_BLOCK)
        throw CommandFailed(exit_bad_input, arguments.place() + " is a value, not a block");
    list_all(
        TreeWalk::below(env_open_subenv(env.get(), section, arguments.path_or_null(), arguments.exact())),
        true);
}

void check_file(const std::string& file, MessageCapture& messages) {
    const Environment env;
    const Unkept unkept = load(env.get(), file, messages);
    if (unkept.text_behind)
        throw CommandFailed(exit_bad_input, file + ": a byte 1A or FF ends the text before the file's end");
    const long sections = env_count_elements(env.get(), nullptr, nullptr, 1);
    long values = 0;
    for (TreeWalk walk = TreeWalk::consume(env.get()); walk.next();)
        values += walk.node().kind == ENV_IS_DATA;
    print(file + ": " + std::to_string(sections) + (sections == 1 ? " section, " : " sections, ") +
          std::to_string(values) + (values == 1 ? " value\n" : " values\n"));
}

// Every file is looked at; the last failure gives the exit code.
void check(const Arguments& arguments) {
    MessageCapture messages;
    std::optional<CommandFailed> failure;
    for (const std::string& file : arguments.files) {
        try {
            check_file(file, messages);
        } catch (const CommandFailed& failed) {
            if (failure) print_error(failure->what());
            failure = failed;
        }
    }
    if (failure) throw CommandFailed(*failure);
}

// A file that a command changes.
class Edit {
  public:
    explicit Edit(const Arguments& arguments) : m_arguments(arguments) {
        m_existed = file_exists(arguments.file);
        if (m_existed || !arguments.create) m_unkept = load(m_env.get(), arguments.file, m_messages);
        if (arguments.backup) return;
        if (m_unkept.leading_text) refuse("it has text in front of its first section, which would be lost");
        if (m_unkept.text_behind) refuse("it has text behind a byte 1A or FF, which would be lost");
    }

    EnvHandle env() const { return m_env.get(); }
    MessageCapture& messages() { return m_messages; }

    void save() {
        if (m_arguments.backup && m_existed) back_up(m_arguments.file);
        ::save(m_env.get(), m_arguments.file, m_messages);
        if (m_unkept.comments > 0 && !m_arguments.backup)
            print_error("note: comments are not kept: " + m_arguments.file + " had " +
                        std::to_string(m_unkept.comments) +
                        (m_unkept.comments == 1 ? " line of them" : " lines of them"));
    }

  private:
    [[noreturn]] void refuse(const char* why) const {
        throw CommandFailed(exit_bad_input,
                            m_arguments.file + " is left as it was: " + why + " (--backup allows it)");
    }

    const Arguments& m_arguments;
    MessageCapture m_messages;
    Environment m_env;
    Unkept m_unkept;
    bool m_existed;
};

void set(const Arguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    expect_storable(arguments.value);
    Edit edit(arguments);
    const char* const section = arguments.section.c_str();
    const char* const path = arguments.path.c_str();
    const EnvStatus put = env_put(edit.env(), section, path, arguments.value.c_str());
    if (put == ENV_NOT_FOUND) throw CommandFailed(exit_bad_input, "occurrence numbers begin with 1");
    expect_found(put, arguments, edit.messages());
    // A path that cannot be split stores nothing and is no failure of the store's: reading the value tells.
    const EnvStatus stored = env_check(edit.env(), section, path, 1);
    expect_found(stored == ENV_NOT_FOUND ? ENV_BAD_PATH : stored, arguments, edit.messages());
    read_as(arguments.kind, edit.env(), section, path, true);
    edit.save();
}

void remove(const Arguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    Edit edit(arguments);
    expect_found(env_delete(edit.env(), arguments.section.c_str(), arguments.path_or_null()), arguments,
                 edit.messages());
    edit.save();
}

void merge_files(const Arguments& arguments) {
    Edit edit(arguments);
    const Environment source;
    load(source.get(), arguments.source, edit.messages());
    constexpr std::pair<const char*, MergeMode> modes[] = {{"keep", MergeMode::keep},
                                                           {"append", MergeMode::append},
                                                           {"overwrite", MergeMode::overwrite},
                                                           {"update", MergeMode::update}};
    MergeMode mode = MergeMode::keep;
    for (const auto& [name, value] : modes)
        if (arguments.mode == name) mode = value;
    const long copied = merge(edit.env(), source.get(), mode);
    edit.save();
    print(std::to_string(copied) + (copied == 1 ? " value copied\n" : " values copied\n"));
}

// Adds a command of the group; what it is told goes to arguments that live as long as the command.
class Command {
  public:
    Command(CLI::App& group, const char* name, const char* description, void (*run)(const Arguments&))
        : m_arguments(std::make_shared<Arguments>()), m_command(group.add_subcommand(name, description)) {
        m_command->callback([run, arguments = m_arguments] { run(*arguments); });
    }
    Command& file(const char* description) { return required("FILE", m_arguments->file, description); }
    Command& section() { return required("SECTION", m_arguments->section, "Name of the section"); }
    Command& optional_section() {
        m_command
            ->add_option("SECTION", m_arguments->section, "Name of the section; without one: the whole file")
            ->each([arguments = m_arguments](const std::string&) { arguments->section_given = true; });
        return *this;
    }
    Command& path(bool is_required) {
        m_command
            ->add_option("PATH", m_arguments->path,
                         "Names from the section down, each with its occurrence number where there are\n"
                         "several: walls@2@height")
            ->required(is_required);
        m_command->add_option("--delimiter", m_arguments->delimiter,
                              "Separates the names of PATH, when @ is part of a name");
        return *this;
    }
    Command& deep() {
        return flag("--deep", m_arguments->deep,
                    "Search each name of PATH at any depth, not only among the children");
    }
    Command& kind(const char* description) {
        m_command->add_option("--as", m_arguments->kind, description)->check(CLI::IsMember(value_kinds()));
        return *this;
    }
    Command& backup() { return flag("--backup", m_arguments->backup, "Keep the former file as FILE.bak"); }
    Command& required(const char* name, std::string& target, const char* description) {
        m_command->add_option(name, target, description)->required();
        return *this;
    }
    Command& flag(const char* name, bool& target, const char* description) {
        m_command->add_flag(name, target, description);
        return *this;
    }
    Arguments& arguments() { return *m_arguments; }
    CLI::App* operator->() { return m_command; }

  private:
    std::shared_ptr<Arguments> m_arguments;
    CLI::App* m_command;
};

void add_readers(CLI::App& group) {
    Command shower(group, "show", "Print a file as a tree", show);
    shower.file("The file").flag("--text", shower.arguments().text, "Print it as a program would write it");

    Command getter(group, "get", "Print a value, or a block as a tree", get);
    getter.file("The file").section().path(false).deep().kind("Read the value as this kind");
    getter
        ->add_option("--fallback", getter.arguments().fallbacks,
                     "A file to look in when what is before it does not have the value; may be repeated")
        ->allow_extra_args(false);
    getter.flag("--which", getter.arguments().which, "Print the file that answered, too");

    Command lister(group, "list", "Print the names in a file, section or block, one per line", list);
    lister.file("The file").optional_section().path(false).deep();

    Command checker(group, "check", "Tell whether files can be read, and where one cannot", check);
    checker->add_option("FILE", checker.arguments().files, "The files")->required();
}

void add_writers(CLI::App& group) {
    Command setter(group, "set", "Store a value, creating what is missing on its path", set);
    setter.file("The file to change").section().path(true);
    setter
        .required("VALUE", setter.arguments().value,
                  "The text to store; one that begins with - goes behind --")
        .kind("Refuse a value that cannot be read as this kind")
        .backup()
        .flag("--create", setter.arguments().create, "Begin a new file when there is none");

    Command remover(group, "remove", "Delete a value, a block or a section", remove);
    remover.file("The file to change").section().path(false).backup();

    Command merger(group, "merge", "Copy the values of one file into another", merge_files);
    merger.required("DST", merger.arguments().file, "The file to change")
        .required("SRC", merger.arguments().source, "The file whose values are copied")
        .backup();
    merger
        ->add_option("--mode", merger.arguments().mode,
                     "keep: only what DST does not have; append: each as one more of its name;\n"
                     "overwrite: all; update: only what DST has")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"keep", "append", "overwrite", "update"}));
}

} // namespace

void add_env_commands(CLI::App& app) {
    CLI::App& group = *app.add_subcommand("env", "Settings files: sections of named values and blocks");
    group.require_subcommand(1);
    add_readers(group);
    add_writers(group);
    // Last: the commands show the exit codes instead.
    group.footer(
        "A file is changed by writing it anew beside itself, reading that back and then putting it in\n"
        "its place: a failure loses nothing. Comments are not kept.\n"
        "\n"
        "Examples:\n"
        "  bvutil env show site.env\n"
        "  bvutil env get user.env view scale --as double --fallback site.env\n"
        "  bvutil env set user.env view layers@name@2 roofs\n"
        "  bvutil env merge user.env site.env --mode keep");
}
