// The delimiter, and paths: split into names with occurrence numbers, joined, and cut.
#pragma once

#include <string>
#include <string_view>

namespace env {

// The process-wide delimiter. Every character of it separates; its first character joins.
class Delimiter {
  public:
    static constexpr std::size_t capacity = 255; // with the terminator

    const char* text() const { return m_text; }
    // Takes at most capacity - 1 bytes.
    void set(std::string_view text);

    // The first character, one byte or two.
    std::string_view joint() const;
    // The length of the separator that the text begins with, 0 when it begins with none.
    std::size_t separator_length(std::string_view text) const;
    // Whether splitting a text, of ASCII only or not, must mind double-byte characters, in it or in the
    // delimiter.
    bool is_wide(bool is_ascii) const;
    // The first separator of a text that is not wide, else its terminator. Bits that its bytes have are
    // added.
    const char* find(const char* text, unsigned& bits) const;
    // The same for a wide text, else its end.
    const char* find_wide(std::string_view text) const;
    // Whether a component that is this name, with any occurrence number behind it, is read back as the same.
    bool keeps(const char* name) const;
    // Position of the last joint; npos when there is none.
    std::size_t find_last_joint(std::string_view text) const;

  private:
    char m_text[capacity] = "@";
    std::size_t m_length = 1;
    bool m_is_ascii = true;
    bool m_has_digit = false;
};

Delimiter& delimiter();

struct Component {
    std::string_view name;
    long occurrence = 1;
};

// Hands out the components of a path one after the other. The path must outlive it.
class PathReader {
  public:
    explicit PathReader(const char* path);

    // Whether there is none (left).
    bool at_end() const { return m_token.empty(); }
    Component next();

  private:
    void read_token();
    void go_wide();

    const char* m_at; // what is left behind the token
    // Set from the first token that is wide on: those before it end at the same places, wide or not.
    const char* m_wide_end = nullptr;
    std::string_view m_token; // the next one; empty at the end
};

// Joins components to a path in a caller's buffer; the first may stand in the buffer already.
class PathWriter {
  public:
    // The buffer must have room for one byte.
    PathWriter(char* buffer, std::size_t size) : m_buffer(buffer), m_size(size) {}
    // Appends a component; when it does not fit, empties the buffer and gives false.
    bool add(std::string_view component);

  private:
    char* m_buffer;
    std::size_t m_size;
    std::size_t m_length = 0;
    bool m_empty = true;
};

// What stands behind the last joint; the whole path when there is none.
std::string_view last_component(std::string_view path);

} // namespace env
