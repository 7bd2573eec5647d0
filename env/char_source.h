// Where the reader's characters come from. A source gives the text as the grammar sees it: comment lines and
// continuations are gone, and so are NUL characters.
//
//   int peek()                            the character at hand as an unsigned byte, -1 at the end
//   void advance()                        steps over it
//   void skip_blanks()                    steps over blanks and tabs
//   void skip_white_space()               and over line ends too
//   string_view take_until(char, string&) steps up to a character or the end and gives what lies before;
//                                         it lives as long as the string and the source are left alone
#pragma once

#include "bvutil/env.h"
#include "env/byte_scan.h"

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace env {

// Prepares the bytes of a file in place, as text mode, comments and continuations want it: a carriage return
// before a line feed goes, 0x1A and 0xFF end the text. Returns the new length.
std::size_t clean_text(char* text, std::size_t length);

// A text in memory, already clean.
class BufferSource {
  public:
    explicit BufferSource(std::string_view text) : m_at(text.data()), m_end(text.data() + text.size()) {}

    int peek() const { return m_at < m_end ? static_cast<unsigned char>(*m_at) : -1; }
    void advance() { ++m_at; }
    void skip_blanks() { m_at = find_byte(m_at, m_end, NoneOf<' ', '\t'>()); }
    void skip_white_space() { m_at = find_byte(m_at, m_end, NoneOf<' ', '\t', '\n'>()); }
    std::string_view take_until(char stop, std::string&) {
        const auto rest = static_cast<std::size_t>(m_end - m_at);
        const void* found = rest > 0 ? std::memchr(m_at, stop, rest) : nullptr;
        const char* const end = found ? static_cast<const char*>(found) : m_end;
        const std::string_view taken(m_at, static_cast<std::size_t>(end - m_at));
        m_at = end;
        return taken;
    }

  private:
    const char* m_at;
    const char* m_end;
};

// A caller's callback, cleaned on the way. It is not called again once it has told the end.
class CallbackSource {
  public:
    CallbackSource(EnvReadChar read_char, void* source) : m_read_char(read_char), m_source(source) {
        advance();
    }

    int peek() const { return m_here; }
    void advance() { m_here = next_joined(); }
    void skip_blanks() {
        while (m_here == ' ' || m_here == '\t')
            advance();
    }
    void skip_white_space() {
        while (m_here == ' ' || m_here == '\t' || m_here == '\n')
            advance();
    }
    std::string_view take_until(char stop, std::string& scratch) {
        scratch.clear();
        for (; m_here >= 0 && m_here != static_cast<unsigned char>(stop); advance())
            scratch.push_back(static_cast<char>(m_here));
        return scratch;
    }

  private:
    int next_raw();         // without NUL characters
    int next_uncommented(); // without comments
    int next_joined();      // without continuations

    EnvReadChar m_read_char;
    void* m_source;
    bool m_ended = false;
    bool m_line_start = true;
    // Spaces behind a backslash that was no continuation, and the character behind them, still to come.
    std::size_t m_held_spaces = 0;
    bool m_holding = false;
    int m_held = -1;
    int m_here = -1;
};

} // namespace env
