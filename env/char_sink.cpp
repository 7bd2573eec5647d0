#include "env/char_sink.h"

#include "env/byte_scan.h"

#include <algorithm>
#include <new>

namespace env {

void CallbackSink::end_line() {
    m_line += '\n';
    for (const char c : m_line)
        m_write_char(static_cast<signed char>(c), m_sink);
    m_line.clear();
}

namespace {
constexpr std::size_t buffer_size = 64 * 1024;
}

// The file is open and empty by now: it must not stay so for want of a buffer.
FileSink::FileSink(std::FILE* file) noexcept : m_file(file), m_buffer(m_reserve) {
    for (std::size_t size = buffer_size; !m_large && size > m_reserve.size(); size /= 2)
        if (m_large.reset(new (std::nothrow) char[size]); m_large) m_buffer = {m_large.get(), size};
}

void FileSink::text(std::string_view text) {
    while (!text.empty()) {
        const char* const end = text.data() + std::min(text.size(), longest_piece);
        const char* const stop = copy_up_to(text.data(), end, room(), AnyOf<'\n', '\xFF'>());
        auto length = static_cast<std::size_t>(stop - text.data());
        m_length += length;
        if (stop < end) {
            if (*stop == '\n') end_line();
            ++length;
        }
        text.remove_prefix(length);
    }
}

void FileSink::spaces(std::size_t count) {
    while (count > 0) {
        const std::size_t length = std::min(count, longest_piece);
        char* const out = room();
        for (std::size_t i = 0; i < length; i += 16)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_set1_epi8(' '));
        m_length += length;
        count -= length;
    }
}

void FileSink::end_line() {
    char* const out = room();
    out[0] = '\r';
    out[1] = '\n';
    m_length += 2;
}

char* FileSink::room() {
    if (m_buffer.size() - m_length < longest_piece + 16) flush();
    return m_buffer.data() + m_length;
}

void FileSink::flush() {
    std::fwrite(m_buffer.data(), 1, m_length, m_file);
    m_length = 0;
}

} // namespace env
