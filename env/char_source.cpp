#include "env/char_source.h"

#include "module/memory_reserve.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace env {

namespace {

constexpr char control_z = '\x1A';
constexpr char end_byte = '\xFF';
constexpr std::size_t smallest_piece = 256;

// The characters that cleaning must look at; all others are copied.
using Special = AnyOf<'\0', '\r', '\\', ';', control_z, end_byte>;

bool ends_text(char c) {
    return c == control_z || c == end_byte;
}

} // namespace

std::size_t Cleaner::clean(const char* bytes, std::size_t length, bool is_last, char* out) {
    m_in = bytes;
    m_end = bytes + length;
    m_out = out;
    m_is_last = is_last;
    do {
        if (m_in_comment) skip_comment();
        copy_ordinary();
    } while (m_in < m_end && handle_special());
    return static_cast<std::size_t>(m_in - bytes);
}

void Cleaner::copy_ordinary() {
    const char* const begin = m_in;
    m_in = copy_up_to(m_in, m_end, m_out, Special());
    m_out += m_in - begin;
    if (m_in != begin) m_line_start = m_in[-1] == '\n';
}

// False when it cannot go on: the text has ended, or what lies behind must be known.
bool Cleaner::handle_special() {
    switch (*m_in) {
    case '\0':
        ++m_in;
        return true;
    case control_z:
    case end_byte:
        m_ended = true;
        return false;
    case '\r':
        // Before a line feed it vanishes, and the line feed is ordinary.
        if (m_in + 1 == m_end && !m_is_last) return false;
        if (m_in + 1 == m_end || m_in[1] != '\n')
            copy_one();
        else
            ++m_in;
        return true;
    case ';':
        if (m_line_start)
            m_in_comment = true;
        else
            copy_one();
        return true;
    default:
        return backslash();
    }
}

void Cleaner::copy_one() {
    *m_out++ = *m_in++;
    m_line_start = false;
}

void Cleaner::skip_comment() {
    m_in = find_byte(m_in, m_end, AnyOf<'\n', control_z, end_byte>());
    m_in_comment = m_in == m_end;
}

bool Cleaner::backslash() {
    const char* behind = find_byte(m_in + 1, m_end, NoneOf<' ', '\0'>());
    if (m_end - behind < 2 && !m_is_last) return false;
    if (m_end - behind >= 2 && behind[0] == '\r' && behind[1] == '\n') ++behind;
    if (behind < m_end && *behind == '\n') {
        m_in = behind + 1;
        m_line_start = true; // of the file's lines: a comment may follow
        return true;
    }
    // No continuation: all of it is text, the character behind the spaces too, a backslash even.
    for (; m_in < behind; ++m_in)
        if (*m_in != '\0') *m_out++ = *m_in;
    m_line_start = false;
    if (m_in < m_end && !ends_text(*m_in)) copy_one();
    return true;
}

void FileSource::Buffer::grow(std::size_t to_size, std::size_t kept) {
    auto larger = std::make_unique_for_overwrite<char[]>(to_size);
    if (kept > 0) std::memcpy(larger.get(), bytes.get(), kept);
    bytes = std::move(larger);
    size = to_size;
}

FileSource::FileSource(std::FILE* file, std::size_t piece) : m_file(file) {
    std::setvbuf(file, nullptr, _IONBF, 0); // the pieces are large enough
    while (!m_raw.bytes) {                  // what memory there is will do
        try {
            m_raw.grow(piece, 0);
        } catch (const std::bad_alloc&) {
            if (piece <= smallest_piece) throw;
            memory_reserve::keep();
            piece = piece / 2 + 1;
        }
    }
}

bool FileSource::refill() {
    const std::size_t before = static_cast<std::size_t>(m_end - m_kept);
    while (!m_ended && static_cast<std::size_t>(m_end - m_kept) == before) {
        if (m_raw_length == m_raw.size) m_raw.grow(2 * m_raw.size, m_raw_length);
        const std::size_t asked = m_raw.size - m_raw_length;
        const std::size_t got = std::fread(m_raw.bytes.get() + m_raw_length, 1, asked, m_file);
        m_raw_length += got;
        make_room(m_raw_length + Cleaner::slack);
        char* const out = m_text.bytes.get() + (m_end - m_kept);
        const std::size_t cleaned = m_cleaner.clean(m_raw.bytes.get(), m_raw_length, got < asked, out);
        m_end = m_cleaner.out();
        m_ended = got < asked || m_cleaner.ended();
        m_raw_length -= cleaned;
        std::memmove(m_raw.bytes.get(), m_raw.bytes.get() + cleaned, m_raw_length);
    }
    return m_at < m_end;
}

void FileSource::make_room(std::size_t more) {
    const std::size_t kept = static_cast<std::size_t>(m_end - m_kept);
    const std::size_t done = static_cast<std::size_t>(m_at - m_kept);
    // A long token stays at the front over many pieces: not every runtime sees that nothing moves.
    if (kept > 0 && m_kept != m_text.bytes.get()) std::memmove(m_text.bytes.get(), m_kept, kept);
    if (kept + more > m_text.size) m_text.grow(std::max(kept + more, 2 * m_text.size), kept);
    m_kept = m_text.bytes.get();
    m_at = m_kept + done;
    m_end = m_kept + kept;
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
