#include "bvutil/env.h"
#include "tests/foreign/families.h"
#include "tests/support/temp_dir.h"

namespace {

constexpr char settings[] = "; a comment\n[view]\nscale = 0.1\n"
                            "layers ={\n name = walls\n name = roofs\n}\n[print]\npaper = A4\n";

// A source and sink whose callbacks call the library back, while a read or write is going on.
struct Stream {
    Caller& caller;
    EnvHandle other;
    std::string text;
    std::size_t at = 0;
};

int BVUTIL_CALL read_char(void* source) {
    auto& [caller, other, text, at] = *static_cast<Stream*>(source);
    caller.check_state_in_callback("the reader's callback");
    if (at % 16 == 0) AT(env_put_double)(other, "back", "call", 1 / 4.0 + static_cast<double>(at));
    return at < text.size() ? static_cast<signed char>(text[at++]) : -1;
}

void BVUTIL_CALL write_char(int character, void* sink) {
    auto& [caller, other, text, at] = *static_cast<Stream*>(sink);
    caller.check_state_in_callback("the writer's callback");
    double value = 0;
    if (text.size() % 16 == 0) AT(env_get_double)(other, "back", "call", 1, &value);
    text += static_cast<char>(character);
}

// Looks at what it is handed, changes it, and walks it in turn.
void BVUTIL_CALL visit(EnvHandle subenv, const char* section, const char* path, void* user) {
    Caller& caller = *static_cast<Caller*>(user);
    caller.check_state_in_callback("the walk's callback");
    caller.note(section, path);
    char names[64] = "";
    if (AT(env_list_elem_names)(subenv, nullptr, nullptr, 1, ';', sizeof names, names) != ENV_OK) return;
    AT(env_put_long)(subenv, nullptr, "visited", 1);
    AT(env_traverse)(subenv, nullptr, nullptr, 1, visit, user);
    AT(env_delete)(subenv, nullptr, "visited");
}

void put(Caller& caller, EnvHandle env) {
    const double thirds[] = {1 / 3.0, -2 / 3.0, 1e20, 2.5e-310};
    const long longs[] = {-5, 2147483647};
    const char* const words[] = {"ab", "c1"};
    AT(env_put_core)(env, "S", "core@2", "text", 0);
    AT(env_put)(env, "S", "text", "some text");
    AT(env_put_string)(env, "S", "string", std::string(1000, 's').c_str());
    AT(env_put_external)(env, "S", "external", 77);
    AT(env_put_long)(env, "S", "long", -5);
    AT(env_put_double)(env, "S", "double", 2 / 3.0);
    AT(env_put_format)(env, "S", "format", "%.17g %.3f %e %d", 0.1, 2.0005, 1.5e300 / 7, 42);
    AT(env_put_longs)(env, "S", "longs", 2L, longs);
    AT(env_put_doubles)(env, "S", "doubles", 4L, thirds);
    AT(env_put_strings)(env, "S", "strings", 2L, words);
    AT(env_put)(env, "S", "list", "1e23,0.1,2.2250738585072011e-308,9007199254740993");
}

void get(Caller& caller, EnvHandle env) {
    char text[1024] = "", second[8] = "";
    for (const char* name : {"text", "double", "format", "doubles"})
        AT(env_get)(env, "S", name, 1, sizeof text, text);
    AT(env_get_string)(env, "S", "string", 0, sizeof text, text);
    const char *name = nullptr, *value = nullptr;
    long number = 0, layer = 0, count = 4, numbers[4] = {};
    AT(env_get_core)(env, "S", "core@2", 1, 0, &layer, &name, &value, &number);
    AT(env_get_reference)(env, "S", "base only", 1, &value);
    AT(env_get_external)(env, "S", "external", 1, &number);
    AT(env_get_long)(env, "S", "long", 1, &number);
    AT(env_get_longs)(env, "S", "longs", 1, &count, numbers);
    caller.note(numbers[1]);
    double doubles[4] = {};
    for (const char* list : {"doubles", "list"}) {
        count = 4;
        AT(env_get_doubles)(env, "S", list, 1, &count, doubles);
        caller.note(doubles[1], doubles[2], doubles[3]);
    }
    for (const char* hard : hard_numbers) {
        AT(env_put)(env, "S", "hard", hard);
        AT(env_get_double)(env, "S", "hard", 1, doubles);
    }
    char* items[] = {text, second};
    count = 2;
    AT(env_get_strings)(env, "S", "strings", 1, &count, 8L, items);
    caller.note(second);
}

void look_around(Caller& caller, EnvHandle env) {
    AT(env_exist)(env, "S", "text", 1);
    AT(env_exist_block)(env, "S", nullptr, 1);
    AT(env_exist_data)(env, "S", "text", 0);
    AT(env_exist_external)(env, "S", "external", 1);
    AT(env_check)(env, "S", "text", 1);
    AT(env_insert_before)(env, "S", "text", "before");
    AT(env_delete)(env, "S", "before");
    AT(env_count_elements)(env, "S", nullptr, 1);
    AT(env_count_path)(env, "S", "core", 1);
    AT(env_data_length)(env, "S", "text", 1);
    char name[16] = "", value[16] = "", path[32] = "";
    long layer = 0, external = 0;
    AT(env_get_pos)(env, "S", nullptr, 1, 2, &layer, sizeof name, name, sizeof value, value, &external);
    AT(env_get_first)(env, "S", nullptr, 1, &layer, sizeof name, name, sizeof value, value, &external);
    AT(env_get_next)(sizeof name, name, sizeof value, value, &external);
    const char* const parts[] = {"a", "b", nullptr};
    AT(env_set_delimiter)("/");
    AT(env_create_path)(long{sizeof path}, path, "ab", "cd", "2", nullptr);
    AT(env_create_array_path)(sizeof path, path, parts);
    AT(env_set_delimiter)("@");
}

// Reads, writes, walks and copies.
void use_whole(Caller& caller, EnvHandle env, EnvHandle base) {
    const EnvHandle read = AT(env_open)(0, nullptr);
    Stream source{caller, base, settings}, sink{caller, base, {}};
    caller.restart = [&] { source.at = 0; };
    AT(env_read)(read_char, &source, read);
    caller.restart = [&] { sink.text.clear(); };
    AT(env_write)(write_char, &sink, read);
    caller.note(sink.text);
    caller.written_file = caller.file("settings.env");
    write_file(caller.written_file, "[Old]\n");
    AT(env_write_file)(caller.written_file.c_str(), env);
    caller.note_file(caller.written_file);
    AT(env_read_file)(caller.written_file.c_str(), read);
    caller.written_file.clear();
    AT(env_traverse)(read, nullptr, nullptr, 1, visit, &caller);
    AT(env_traverse_leafs)(read, visit, &caller);
    AT(env_sink)(env, read, 0);
    AT(env_copy_block)(env, read, "S", nullptr, 2);
    AT(env_close)(read, 0);
}

} // namespace

void use_environment(Caller& caller) {
    const EnvHandle base = AT(env_open)(5, nullptr), env = AT(env_open)(7, base);
    AT(env_put)(base, "S", "base only", "from below");
    put(caller, env);
    get(caller, env);
    look_around(caller, env);
    if (env) AT(env_close)(base, 0); // refused: a layer lies on it
    use_whole(caller, env, base);
    const EnvHandle sub = AT(env_open_subenv)(env, "S", nullptr, 1);
    if (sub) AT(env_close)(env, 0); // refused as well
    AT(env_close)(sub, 0);
    AT(env_close)(AT(env_create_subenv)(env, "S", "made"), 0);
    AT(env_close)(env ? env : base, 1);
}
