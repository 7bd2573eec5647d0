// bvutil env: the commands that only read settings files.
#include "tools/bvutil/commands.h"
#include "tools/bvutil/console.h"
#include "tools/bvutil/env_arguments.h"
#include "tools/bvutil/env_file.h"
#include "tools/bvutil/env_layers.h"
#include "tools/bvutil/env_show.h"
#include "tools/bvutil/env_syntax.h"
#include "tools/bvutil/env_tree.h"
#include "tools/bvutil/env_values.h"
#include "tools/bvutil/json_writer.h"

#include <string>
#include <vector>

namespace {

// The file and its fallbacks.
std::vector<std::string> files_of(const EnvArguments& arguments) {
    std::vector<std::string> files = arguments.fallbacks;
    files.insert(files.begin(), arguments.file);
    return files;
}

// An object that tells what was asked for, and of which file; the caller goes on with the answer.
JsonWriter begin_answer(const EnvArguments& arguments, const std::string& file) {
    JsonWriter json;
    json.begin_object().member("file", file);
    if (!arguments.section.empty()) json.member("section", arguments.section);
    if (!arguments.path.empty()) json.member("path", arguments.path);
    return json;
}

void print_sections(const EnvArguments& arguments, EnvHandle env, const ValueNote& origin = {}) {
    if (!arguments.json) return print_tree(arguments.file, TreeWalk::consume(env), origin);
    JsonWriter json = begin_answer(arguments, arguments.file);
    json.key("sections");
    write_tree(json, TreeWalk::consume(env), "file", origin);
    json.end_object().print();
}

// What a program reads that has the file on top of its fallbacks.
void show_layers(const EnvArguments& arguments) {
    MessageCapture messages;
    const Layers layers(files_of(arguments), messages);
    const Environment all;
    layers.gather(all.get(), messages);
    if (!arguments.which) return print_sections(arguments, all.get());
    print_sections(arguments, all.get(), [&layers](const TreeWalk& walk) {
        const long layer = layers.layer_of(walk.section(), walk.path());
        return layer < 0 ? std::string() : layers.file(static_cast<std::size_t>(layer));
    });
}

void show(const EnvArguments& arguments) {
    if (!arguments.fallbacks.empty()) return show_layers(arguments);
    MessageCapture messages;
    const Environment env;
    const Unkept unkept = load(env.get(), arguments.file, messages);
    if (arguments.text)
        print_text(env.get());
    else
        print_sections(arguments, env.get());
    if (unkept.text_behind) print_note("note: a byte 1A or FF ends " + arguments.file + " before its end");
}

void get_block(const EnvArguments& arguments, const Layers& layers, std::size_t layer) {
    if (arguments.kind != "text")
        throw CommandFailed(exit_bad_input, arguments.place() + " is a block, not a value");
    const EnvHandle sub = env_open_subenv(layers.env(layer), arguments.section.c_str(),
                                          arguments.path_or_null(), arguments.exact());
    if (!sub) throw CommandFailed(exit_failed, "out of memory");
    if (arguments.json) {
        JsonWriter json = begin_answer(arguments, layers.file(layer));
        json.key("elements");
        write_tree(json, TreeWalk::below(sub));
        json.end_object().print();
        return;
    }
    const std::string title = arguments.place() + (arguments.which ? " in " + layers.file(layer) : "");
    print_tree(printable(title), TreeWalk::below(sub));
}

void get(const EnvArguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    MessageCapture messages;
    const Layers layers(files_of(arguments), messages);
    const char* const section = arguments.section.c_str();
    if (!arguments.path_or_null()) {
        // The store looks for elements in its fallbacks, not for sections.
        for (std::size_t layer = 0; layer < layers.count(); ++layer)
            if (env_exist(layers.env(layer), section, nullptr, 1)) return get_block(arguments, layers, layer);
        throw_not_found(arguments);
    }
    const char* const path = arguments.path.c_str();
    long layer = 0;
    const EnvStatus kind =
        env_get_core(layers.top(), section, path, arguments.exact(), 0, &layer, nullptr, nullptr, nullptr);
    expect_found(kind, arguments, messages);
    if (kind == ENV_IS_BLOCK) return get_block(arguments, layers, static_cast<std::size_t>(layer));
    const Value value = read_as(arguments.kind, layers.top(), section, path, arguments.exact());
    const std::string& file = layers.file(static_cast<std::size_t>(layer));
    if (arguments.json) {
        JsonWriter json = begin_answer(arguments, file);
        write(json.key("value"), value);
        json.end_object().print();
        return;
    }
    if (arguments.which) print(file + ": ");
    print(lines_of(value));
}

// The names that the walk begins with.
void print_names(const EnvArguments& arguments, TreeWalk walk) {
    JsonWriter json = begin_answer(arguments, arguments.file);
    json.key("names").begin_array();
    while (walk.next()) {
        const TreeNode& node = walk.node();
        if (node.depth > 0) continue;
        std::string name(node.name);
        if (node.repeated) name += arguments.delimiter.substr(0, 1) + std::to_string(node.occurrence);
        if (arguments.json)
            json.value(name);
        else
            print(printable(name) + "\n");
    }
    json.end_array().end_object();
    if (arguments.json) json.print();
}

// A sub-environment gives the children of any block by position; without one, the sections.
void list(const EnvArguments& arguments) {
    const Delimiter delimiter(arguments.delimiter.c_str());
    MessageCapture messages;
    const Environment env;
    load(env.get(), arguments.file, messages);
    if (!arguments.section_given) return print_names(arguments, TreeWalk::consume(env.get()));
    const char* const section = arguments.section.c_str();
    const EnvStatus kind = env_get_core(env.get(), section, arguments.path_or_null(), arguments.exact(), 0,
                                        nullptr, nullptr, nullptr, nullptr);
    expect_found(kind, arguments, messages);
    if (kind != ENV_IS_BLOCK)
        throw CommandFailed(exit_bad_input, arguments.place() + " is a value, not a block");
    print_names(arguments, TreeWalk::below(env_open_subenv(env.get(), section, arguments.path_or_null(),
                                                           arguments.exact())));
}

struct Counts {
    long sections = 0, values = 0;
};

Counts check_file(const std::string& file, MessageCapture& messages) {
    const Environment env;
    const Unkept unkept = load(env.get(), file, messages);
    if (unkept.text_behind)
        throw CommandFailed(exit_bad_input, file + ": a byte 1A or FF ends the text before the file's end");
    Counts counts{env_count_elements(env.get(), nullptr, nullptr, 1)};
    for (TreeWalk walk = TreeWalk::consume(env.get()); walk.next();)
        counts.values += walk.node().kind == ENV_IS_DATA;
    return counts;
}

void write_failure(JsonWriter& json, const CommandFailed& failure) {
    json.member("ok", false);
    if (const auto* syntax = dynamic_cast<const SyntaxError*>(&failure))
        json.member("line", syntax->line())
            .member("column", syntax->column())
            .member("message", syntax->problem());
    else
        json.member("message", failure.what());
}

// Every file is looked at; the last failure gives the exit code.
void check(const EnvArguments& arguments) {
    MessageCapture messages;
    ExitCode code = exit_done;
    std::string failure;
    JsonWriter json;
    json.begin_array();
    for (const std::string& file : arguments.files) {
        json.begin_object().member("file", file);
        try {
            const auto [sections, values] = check_file(file, messages);
            json.member("ok", true).member("sections", sections).member("values", values);
            if (!arguments.json)
                print(file + ": " + std::to_string(sections) +
                      (sections == 1 ? " section, " : " sections, ") + std::to_string(values) +
                      (values == 1 ? " value\n" : " values\n"));
        } catch (const CommandFailed& failed) {
            if (code != exit_done) print_error(failure);
            code = failed.code();
            failure = failed.what();
            write_failure(json, failed);
        }
        json.end_object();
    }
    json.end_array();
    if (arguments.json) json.print();
    if (code != exit_done) throw CommandFailed(code, failure);
}

} // namespace

void add_env_readers(CLI::App& group) {
    EnvCommand shower(group,
                      {"show",
                       "Print a file as a tree",
                       {"bvutil env show site.env", "bvutil env show site.env --text",
                        "bvutil env show user.env --fallback site.env --which"}},
                      show);
    shower.file("The file")
        .fallbacks("A file whose values are shown where what is before it has none; may be repeated")
        .flag("--which", shower.arguments().which, "Tell the file of each value; with --fallback")
        .flag("--text", shower.arguments().text, "Print it as a program would write it")
        .json();
    shower->get_option("--text")->excludes("--json", "--fallback");
    shower->get_option("--which")->needs("--fallback");

    EnvCommand getter(group,
                      {"get",
                       "Print a value, or a block as a tree",
                       {"bvutil env get site.env view layers@layer@2@name",
                        "bvutil env get user.env view scale --as long --fallback site.env --which",
                        "bvutil env get site.env pens widths --as doubles"}},
                      get);
    getter.file("The file").section().path(false).deep().kind("Read the value as this kind").json();
    getter.fallbacks("A file to look in when what is before it does not have the value; may be repeated")
        .flag("--which", getter.arguments().which, "Print the file that answered, too");

    EnvCommand lister(group,
                      {"list",
                       "Print the names in a file, section or block, one per line",
                       {"bvutil env list site.env", "bvutil env list site.env view layers"}},
                      list);
    lister.file("The file").optional_section().path(false).deep().json();

    EnvCommand checker(group,
                       {"check",
                        "Tell whether files can be read, and where one cannot",
                        {"bvutil env check site.env user.env"}},
                       check);
    checker.json()->add_option("FILE", checker.arguments().files, "The files")->required();
}
