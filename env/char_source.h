// Where the reader's characters come from. A source gives the text as the grammar sees it: comment lines and
// continuations are gone, and so are NUL characters.
//
//   int peek()                     the character at hand as an unsigned byte, -1 at the end
//   void advance()                 steps over it
//   void skip_blanks()             steps over blanks and tabs
//   void skip_white_space()        and over line ends too; tokens taken before are void then
//   void skip_until<Stop>()        steps up to a character or the end; tokens taken before are void then
//   void take_until<Stop>(Token&)  the same, and keeps what lies before as a token
//   string_view view(Token)        lives until the source goes on
#pragma once

#include "bvutil/env.h"
#include "env/byte_scan.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace env {

// Prepares the bytes of a file as text mode, comments and continuations want it: a carriage return before a
// line feed goes, 0x1A and 0xFF end the text.
class Cleaner {
  public:
    // What clean() may write beyond the text.
    static constexpr std::size_t slack = 16;

    // Cleans the next bytes of the file to `out`, where there is room for as many and the slack. Returns how
    // many it cleaned: some at the end may have to be seen again with those behind them, if any.
    std::size_t clean(const char* bytes, std::size_t length, bool is_last, char* out);
    // Where the text that clean() wrote ends.
    char* out() const { return m_out; }
    // Whether the end of the text was met.
    bool ended() const { return m_ended; }

  private:
    void copy_ordinary();
    bool handle_special();
    bool backslash();
    void copy_one();
    void skip_comment();

    const char* m_in = nullptr;
    const char* m_end = nullptr;
    char* m_out = nullptr;
    bool m_is_last = false;
    bool m_line_start = true;
    bool m_in_comment = false;
    bool m_ended = false;
};

// A file, read piece by piece.
class FileSource {
  public:
    // A place in the text at hand, counted from where it is kept.
    struct Token {
        std::size_t at = 0;
        std::size_t length = 0;
    };

    // The file must outlive the source. `piece` is how many bytes are read at once.
    explicit FileSource(std::FILE* file, std::size_t piece = 64 * 1024);

    int peek() { return m_at < m_end || refill() ? static_cast<unsigned char>(*m_at) : -1; }
    void advance() { ++m_at; }
    void skip_blanks() {
        do
            m_at = find_byte(m_at, m_end, NoneOf<' ', '\t'>());
        while (m_at == m_end && refill());
    }
    void skip_white_space() { skip(NoneOf<' ', '\t', '\n'>()); }
    template <char Stop>
    void skip_until() {
        skip(AnyOf<Stop>());
    }
    template <char Stop>
    void take_until(Token& token) {
        token.at = static_cast<std::size_t>(m_at - m_kept);
        do
            m_at = find_byte(m_at, m_end, AnyOf<Stop>());
        while (m_at == m_end && refill());
        token.length = static_cast<std::size_t>(m_at - m_kept) - token.at;
    }
    std::string_view view(const Token& token) const { return {m_kept + token.at, token.length}; }

  private:
    // Memory that need not be initialised.
    struct Buffer {
        std::unique_ptr<char[]> bytes;
        std::size_t size = 0;
        // Enlarges it, keeping the first bytes.
        void grow(std::size_t to_size, std::size_t kept);
    };

    template <class Matches>
    void skip(const Matches& matches) {
        do {
            m_at = find_byte(m_at, m_end, matches);
            m_kept = m_at;
        } while (m_at == m_end && refill());
    }

    // Appends to the text at hand; false at its end.
    bool refill();
    // Lets what is kept begin at the front of a buffer that has room for more.
    void make_room(std::size_t more);

    std::FILE* m_file;
    Cleaner m_cleaner;
    Buffer m_raw;
    std::size_t m_raw_length = 0; // what is still to be cleaned
    bool m_ended = false;
    Buffer m_text;
    const char* m_kept = nullptr; // up to here the text is done with
    const char* m_at = nullptr;
    const char* m_end = nullptr;
};

// A caller's callback, cleaned on the way. It is not called again once it has told the end.
class CallbackSource {
  public:
    using Token = std::string;

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
    template <char Stop>
    void skip_until() {
        while (m_here >= 0 && m_here != static_cast<unsigned char>(Stop))
            advance();
    }
    template <char Stop>
    void take_until(Token& token) {
        token.clear();
        for (; m_here >= 0 && m_here != static_cast<unsigned char>(Stop); advance())
            token.push_back(static_cast<char>(m_here));
    }
    static std::string_view view(const Token& token) { return token; }

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
