#include "tools/bvutil/json_writer.h"

#include "tools/bvutil/console.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace {

std::string shortest(std::floating_point auto number) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

// Everything that JSON does not allow inside of quotes.
std::string escaped(std::string_view utf8) {
    std::string text;
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            text.append(1, '\\').append(1, c);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04X", static_cast<unsigned>(c));
            text += code;
        } else {
            text += c;
        }
    }
    return text;
}

} // namespace

// What has ended, or is a value, ends in none of these.
void JsonWriter::separate() {
    if (!m_text.empty() && std::string_view("{[:").find(m_text.back()) == std::string_view::npos)
        m_text += ',';
}

JsonWriter& JsonWriter::begin(char bracket) {
    separate();
    m_text += bracket;
    return *this;
}

JsonWriter& JsonWriter::end(char bracket) {
    m_text += bracket;
    return *this;
}

JsonWriter& JsonWriter::word(std::string_view word) {
    separate();
    m_text += word;
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    value(name);
    m_text += ':';
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    return word("\"" + escaped(to_utf8(text)) + "\"");
}

JsonWriter& JsonWriter::value(double number) {
    return std::isfinite(number) ? word(shortest(number)) : null();
}

JsonWriter& JsonWriter::value(float number) {
    return std::isfinite(number) ? word(shortest(number)) : null();
}

void JsonWriter::print() const {
    print_utf8(m_text + "\n");
}
