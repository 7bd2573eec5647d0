#include "tools/bvutil/value.h"

#include <charconv>

namespace {

std::string line(const std::string& text) {
    return text + "\n";
}

std::string line(long number) {
    return std::to_string(number) + "\n";
}

std::string line(double number) {
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, number).ptr) + "\n";
}

template <class T>
std::string line(const std::vector<T>& items) {
    std::string lines;
    for (const T& item : items)
        lines += line(item);
    return lines;
}

void write_one(JsonWriter& json, const auto& value) {
    json.value(value);
}

template <class T>
void write_one(JsonWriter& json, const std::vector<T>& items) {
    json.begin_array();
    for (const T& item : items)
        json.value(item);
    json.end_array();
}

} // namespace

std::string lines_of(const Value& value) {
    return std::visit([](const auto& content) { return line(content); }, value);
}

void write(JsonWriter& json, const Value& value) {
    std::visit([&](const auto& content) { write_one(json, content); }, value);
}
