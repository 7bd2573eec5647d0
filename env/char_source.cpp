#include "env/char_source.h"

namespace env {

namespace {

constexpr char control_z = '\x1A';
constexpr char end_byte = '\xFF';

// The characters that cleaning must look at; all others are copied.
using Special = AnyOf<'\0', '\r', '\\', ';', control_z, end_byte>;

bool ends_text(char c) {
    return c == control_z || c == end_byte;
}

class Cleaner {
  public:
    Cleaner(char* text, std::size_t length) : m_text(text), m_in(text), m_end(text + length), m_out(text) {}

    std::size_t run() {
        while (m_in < m_end) {
            copy_ordinary();
            if (m_in == m_end) break;
            handle_special();
        }
        return static_cast<std::size_t>(m_out - m_text);
    }

  private:
    void copy_ordinary() {
        const char* const begin = m_in;
        m_in += find_byte(m_in, m_end, Special()) - m_in;
        const auto length = static_cast<std::size_t>(m_in - begin);
        if (length == 0) return;
        if (m_out != begin) std::memmove(m_out, begin, length);
        m_out += length;
        m_line_start = m_in[-1] == '\n';
    }

    void handle_special() {
        switch (*m_in) {
        case '\0':
            ++m_in;
            return;
        case control_z:
        case end_byte:
            m_end = m_in;
            return;
        case '\r':
            // Before a line feed it vanishes, and the line feed is ordinary.
            if (m_in + 1 == m_end || m_in[1] != '\n')
                copy_one();
            else
                ++m_in;
            return;
        case ';':
            if (m_line_start)
                skip_comment();
            else
                copy_one();
            return;
        default:
            backslash();
        }
    }

    void copy_one() {
        *m_out++ = *m_in++;
        m_line_start = false;
    }

    void skip_comment() {
        while (m_in < m_end && *m_in != '\n' && !ends_text(*m_in))
            ++m_in;
    }

    void backslash() {
        char* behind = m_in + 1;
        while (behind < m_end && (*behind == ' ' || *behind == '\0'))
            ++behind;
        if (behind + 1 < m_end && behind[0] == '\r' && behind[1] == '\n') ++behind;
        if (behind < m_end && *behind == '\n') {
            m_in = behind + 1;
            m_line_start = true; // of the file's lines: a comment may follow
            return;
        }
        // No continuation: all of it is text, the character behind the spaces too, a backslash even.
        for (; m_in < behind; ++m_in)
            if (*m_in != '\0') *m_out++ = *m_in;
        m_line_start = false;
        if (m_in < m_end && !ends_text(*m_in)) copy_one();
    }

    char* m_text;
    char* m_in;
    char* m_end;
    char* m_out;
    bool m_line_start = true;
};

} // namespace

std::size_t clean_text(char* text, std::size_t length) {
    return Cleaner(text, length).run();
}

int CallbackSource::next_raw() {
    while (!m_ended) {
        const int character = m_read_char(m_source);
        m_ended = character == -1;
        if (!m_ended && static_cast<char>(character) != '\0') return static_cast<unsigned char>(character);
    }
    return -1;
}

int CallbackSource::next_uncommented() {
    int character = next_raw();
    if (m_line_start && character == ';') do
            character = next_raw();
        while (character >= 0 && character != '\n');
    m_line_start = character == '\n';
    return character;
}

int CallbackSource::next_joined() {
    if (m_held_spaces > 0) {
        --m_held_spaces;
        return ' ';
    }
    if (m_holding) {
        m_holding = false;
        return m_held;
    }
    for (;;) {
        const int character = next_uncommented();
        if (character != '\\') return character;
        std::size_t spaces = 0;
        int behind = next_uncommented();
        for (; behind == ' '; behind = next_uncommented())
            ++spaces;
        if (behind == '\n') continue;
        m_held_spaces = spaces;
        m_holding = true;
        m_held = behind;
        return character;
    }
}

} // namespace env
