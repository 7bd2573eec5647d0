#include "tools/bvutil/env_values.h"

#include "tools/bvutil/commands.h"

#include <cstring>

namespace {

struct Place {
    EnvHandle env;
    const char* section;
    const char* path;
    int exact;
    const char* text; // what stands there
};

// Each item but the last takes a character and a comma.
std::size_t most_items(const Place& place) {
    return std::strlen(place.text) / 2 + 1;
}

using ReadAs = EnvStatus (*)(const Place&, Value&);

template <class T, auto get>
EnvStatus read_one(const Place& at, Value& out) {
    T value{};
    const EnvStatus status = get(at.env, at.section, at.path, at.exact, &value);
    out = value;
    return status;
}

template <class T, auto get>
EnvStatus read_list(const Place& at, Value& out) {
    std::vector<T> values(most_items(at));
    auto count = static_cast<long>(values.size());
    const EnvStatus status = get(at.env, at.section, at.path, at.exact, &count, values.data());
    values.resize(static_cast<std::size_t>(count));
    out = values;
    return status;
}

EnvStatus read_words(const Place& at, Value& out) {
    // The words are copied to where they stand in the text, each ended where its comma was.
    std::string storage(at.text);
    std::vector<char*> items{storage.data()};
    for (std::size_t comma = storage.find(','); comma != storage.npos; comma = storage.find(',', comma + 1))
        items.push_back(storage.data() + comma + 1);
    auto count = static_cast<long>(items.size());
    const EnvStatus status = env_get_strings(at.env, at.section, at.path, at.exact, &count,
                                             static_cast<long>(storage.size() + 1), items.data());
    items.resize(static_cast<std::size_t>(count));
    out = std::vector<std::string>(items.begin(), items.end());
    return status;
}

EnvStatus read_text(const Place& at, Value& out) {
    out = std::string(at.text);
    return ENV_OK;
}

struct Kind {
    const char* name;
    const char* description;
    ReadAs read;
};

constexpr Kind kinds[] = {
    {"text", "a text", read_text},
    {"long", "a whole number", read_one<long, env_get_long>},
    {"double", "a number", read_one<double, env_get_double>},
    {"longs", "a list of whole numbers", read_list<long, env_get_longs>},
    {"doubles", "a list of numbers", read_list<double, env_get_doubles>},
    {"words", "a list of words", read_words},
};

} // namespace

std::vector<std::string> value_kinds() {
    std::vector<std::string> names;
    for (const Kind& kind : kinds)
        names.push_back(kind.name);
    return names;
}

Value read_as(const std::string& kind, EnvHandle env, const char* section, const char* path, bool exact) {
    Place place{env, section, path, exact, ""};
    env_get_reference(env, section, path, exact, &place.text);
    for (const Kind& known : kinds) {
        if (kind != known.name) continue;
        Value value;
        if (known.read(place, value) < 0)
            throw CommandFailed(exit_bad_input,
                                std::string("\"") + place.text + "\" is not " + known.description);
        return value;
    }
    return std::string(place.text);
}

void expect_storable(const std::string& text) {
    const auto refuse = [](const char* why) {
        throw CommandFailed(exit_bad_input, std::string("a file cannot hold this value: ") + why);
    };
    if (text.empty()) return;
    if (text.front() == '{') refuse("\"{\" at its front would begin a block");
    if (text.back() == '\\') refuse("a backslash at its end would join the next line to it");
    if (std::strchr(" \t", text.front()) || std::strchr(" \t", text.back()))
        refuse("blanks at its front and end get lost");
    if (text.find_first_of("\r\n") != text.npos) refuse("it is one line");
    if (text.find_first_of("\x1A\xFF") != text.npos) refuse("the bytes 1A and FF end the file there");
}
