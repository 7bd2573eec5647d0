// JSON text, written piece by piece: nothing recurses, so a tree may be as deep as it likes.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

// The caller pairs the brackets and gives every member of an object its key. Texts are in the ANSI code page
// and come out as UTF-8.
class JsonWriter {
  public:
    JsonWriter& begin_object() { return begin('{'); }
    JsonWriter& end_object() { return end('}'); }
    JsonWriter& begin_array() { return begin('['); }
    JsonWriter& end_array() { return end(']'); }
    JsonWriter& key(std::string_view name);

    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }
    // The shortest digits that read back as the same number; null for what is no finite number.
    JsonWriter& value(double number);
    JsonWriter& value(float number);
    JsonWriter& value(std::integral auto number) { return word(std::to_string(number)); }
    JsonWriter& value(bool truth) { return word(truth ? "true" : "false"); }
    JsonWriter& null() { return word("null"); }

    JsonWriter& member(std::string_view name, const auto& content) { return key(name).value(content); }

    // Prints it as a line of standard output.
    void print() const;

  private:
    JsonWriter& begin(char bracket);
    JsonWriter& end(char bracket);
    JsonWriter& word(std::string_view word);
    void separate();

    std::string m_text;
};
