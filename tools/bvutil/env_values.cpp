#include "tools/bvutil/env_values.h"

#include "tools/bvutil/commands.h"

#include <charconv>
#include <cstring>

namespace {

struct Place {
    EnvHandle env;
    const char* section;
    const char* path;
    int exact;
    const char* text; // what stands there
};

std::string shown(long value) {
    return std::to_string(value);
}

std::string shown(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string shown(const std::string& value) {
    return value;
}

// Each item but the last takes a character and a comma.
std::size_t most_items(const Place& place) {
    return std::strlen(place.text) / 2 + 1;
}

template <class T>
std::string joined(const std::vector<T>& items) {
    std::string lines;
    for (const T& item : items)
        lines += (lines.empty() ? "" : "\n") + shown(item);
    return lines;
}

using ReadAs = EnvStatus (*)(const Place&, std::string&);

template <class T, auto get>
EnvStatus read_one(const Place& at, std::string& out) {
    T value{};
    const EnvStatus status = get(at.env, at.section, at.path, at.exact, &value);
    out = shown(value);
    return status;
}

template <class T, auto get>
EnvStatus read_list(const Place& at, std::string& out) {
    std::vector<T> values(most_items(at));
    auto count = static_cast<long>(values.size());
    const EnvStatus status = get(at.env, at.section, at.path, at.exact, &count, values.data());
    values.resize(static_cast<std::size_t>(count));
    out = joined(values);
    return status;
}

EnvStatus read_words(const Place& at, std::string& out) {
    // The words are copied to where they stand in the text, each ended where its comma was.
    std::string storage(at.text);
    std::vector<char*> items{storage.data()};
    for (std::size_t comma = storage.find(','); comma != storage.npos; comma = storage.find(',', comma + 1))
        items.push_back(storage.data() + comma + 1);
    auto count = static_cast<long>(items.size());
    const EnvStatus status = env_get_strings(at.env, at.section, at.path, at.exact, &count,
                                             static_cast<long>(storage.size() + 1), items.data());
    items.resize(static_cast<std::size_t>(count));
    out = joined(std::vector<std::string>(items.begin(), items.end()));
    return status;
}

EnvStatus read_text(const Place& at, std::string& out) {
    out = at.text;
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

std::string read_as(const std::string& kind, EnvHandle env, const char* section, const char* path,
                    bool exact) {
    Place place{env, section, path, exact, ""};
    env_get_reference(env, section, path, exact, &place.text);
    for (const Kind& known : kinds) {
        if (kind != known.name) continue;
        std::string value;
        if (known.read(place, value) < 0)
            throw CommandFailed(exit_bad_input,
                                std::string("\"") + place.text + "\" is not " + known.description);
        return value;
    }
    return place.text;
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
