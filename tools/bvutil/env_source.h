// A settings file's bytes, as the store's reader takes them.
#pragma once

#include "bvutil/env.h"

#include <cstddef>
#include <string_view>

// The bytes that end a file's text wherever they stand.
inline constexpr std::string_view text_ends = "\x1A\xFF";

// Delivers bytes as text mode does; at() tells how far the reader came.
class ByteSource {
  public:
    explicit ByteSource(std::string_view bytes) : m_bytes(bytes) {}

    static int BVUTIL_CALL read(void* self) { return static_cast<ByteSource*>(self)->next(); }
    std::size_t at() const { return m_at; }
    bool ended() const { return m_ended; }

  private:
    int next() {
        if (m_at < m_bytes.size() && m_bytes[m_at] == '\r' && m_bytes.substr(m_at + 1).starts_with('\n'))
            ++m_at;
        m_ended = m_at == m_bytes.size() || text_ends.find(m_bytes[m_at]) != text_ends.npos;
        return m_ended ? -1 : static_cast<signed char>(m_bytes[m_at++]);
    }

    std::string_view m_bytes;
    std::size_t m_at = 0;
    bool m_ended = false;
};
