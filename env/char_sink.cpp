#include "env/char_sink.h"

#include <algorithm>
#include <cstring>
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
    for (;;) {
        const auto end =
            std::find_if(text.begin(), text.end(), [](char c) { return c == '\n' || c == '\xFF'; });
        const auto length = static_cast<std::size_t>(end - text.begin());
        put(text.substr(0, length));
        if (length == text.size()) return;
        if (*end == '\n') put("\r\n");
        text.remove_prefix(length + 1);
    }
}

void FileSink::spaces(std::size_t count) {
    while (count > 0) {
        if (m_length == m_buffer.size()) flush();
        const std::size_t length = std::min(count, m_buffer.size() - m_length);
        std::memset(m_buffer.data() + m_length, ' ', length);
        m_length += length;
        count -= length;
    }
}

void FileSink::put(std::string_view bytes) {
    while (!bytes.empty()) {
        if (m_length == m_buffer.size()) flush();
        const std::size_t length = std::min(bytes.size(), m_buffer.size() - m_length);
        std::memcpy(m_buffer.data() + m_length, bytes.data(), length);
        m_length += length;
        bytes.remove_prefix(length);
    }
}

void FileSink::flush() {
    std::fwrite(m_buffer.data(), 1, m_length, m_file);
    m_length = 0;
}

} // namespace env
