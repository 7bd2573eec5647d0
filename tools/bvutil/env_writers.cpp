// bvutil env: the commands that change settings files.
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/env_arguments.h"
#include "tools/bvutil/env_file.h"
#include "tools/bvutil/env_merge.h"
#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/env_values.h"
#include "tools/bvutil/json_writer.h"
#include "tools/bvutil/whole_file.h"

#include <string>
#include <utility>
#include <vector>

namespace {

// A file that a command changes.
class Edit {
  public:
    explicit Edit(const EnvArguments& arguments) : m_arguments(arguments) {
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
            print_note("note: comments are not kept: " + m_arguments.file + " had " +
                       std::to_string(m_unkept.comments) +
                       (m_unkept.comments == 1 ? " line of them" : " lines of them"));
    }

  private:
    [[noreturn]] void refuse(const char* why) const {
        throw CommandFailed(exit_bad_input,
                            m_arguments.file + " is left as it was: " + why + " (--backup allows it)");
    }

    const EnvArguments& m_arguments;
    MessageCapture m_messages;
    Environment m_env;
    Unkept m_unkept;
    bool m_existed;
};

void set(const EnvArguments& arguments) {
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

void remove(const EnvArguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    Edit edit(arguments);
    expect_found(env_delete(edit.env(), arguments.section.c_str(), arguments.path_or_null()), arguments,
                 edit.messages());
    edit.save();
}

void merge_files(const EnvArguments& arguments) {
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
    if (arguments.json)
        JsonWriter().begin_object().member("copied", copied).end_object().print();
    else
        print(std::to_string(copied) + (copied == 1 ? " value copied\n" : " values copied\n"));
}

} // namespace

void add_env_writers(CLI::App& group) {
    EnvCommand setter(group,
                      {"set",
                       "Store a value, creating what is missing on its path",
                       {"bvutil env set user.env view scale 20 --as long",
                        "bvutil env set new.env view origin --create -- -5,0"}},
                      set);
    setter.file("The file to change").section().path(true);
    setter
        .required("VALUE", setter.arguments().value,
                  "The text to store; one that begins with - goes behind --")
        .kind("Refuse a value that cannot be read as this kind")
        .backup()
        .flag("--create", setter.arguments().create, "Begin a new file when there is none");

    EnvCommand remover(group,
                       {"remove",
                        "Delete a value, a block or a section",
                        {"bvutil env remove user.env print printer --backup"}},
                       remove);
    remover.file("The file to change").section().path(false).backup();

    EnvCommand merger(group,
                      {"merge",
                       "Copy the values of one file into another",
                       {"bvutil env merge user.env site.env --mode keep"}},
                      merge_files);
    merger.required("DST", merger.arguments().file, "The file to change")
        .required("SRC", merger.arguments().source, "The file whose values are copied")
        .backup()
        .json();
    merger
        ->add_option("--mode", merger.arguments().mode,
                     "keep: only what DST does not have; append: each as one more of its name;\n"
                     "overwrite: all; update: only what DST has")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"keep", "append", "overwrite", "update"}));
}

void add_env_commands(CLI::App& app) {
    CLI::App& group = add_group(
        app, "env", "Settings files: sections of named values and blocks",
        "A file is changed by writing it anew beside itself, reading that back and then putting it in\n"
        "its place: a failure loses nothing. Comments are not kept.");
    add_env_readers(group);
    add_env_writers(group);
}
