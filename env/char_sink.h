// Where the writer's text goes; see writer.h for what a sink offers.
#pragma once

#include "bvutil/env.h"

#include <array>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace env {

// A caller's callback. Lines are gathered first: the callback may change the text being written.
class CallbackSink {
  public:
    static constexpr bool calls_out = true;

    CallbackSink(EnvWriteChar write_char, void* sink) : m_write_char(write_char), m_sink(sink) {}
    void text(std::string_view text) { m_line += text; }
    void spaces(std::size_t count) { m_line.append(count, ' '); }
    void fold_line() { m_line += '\n'; }
    void end_line();

  private:
    EnvWriteChar m_write_char;
    void* m_sink;
    std::string m_line;
};

// A file in text mode: line feeds get their carriage return here. Bytes 0xFF are left out: the reader takes
// one for the end of the file. Errors are not told.
class FileSink {
  public:
    static constexpr bool calls_out = false;

    // Needs no memory: with less of it the buffer is smaller.
    explicit FileSink(std::FILE* file) noexcept;
    ~FileSink() { flush(); }
    FileSink(const FileSink&) = delete;
    FileSink& operator=(const FileSink&) = delete;

    void text(std::string_view text);
    void spaces(std::size_t count);
    void fold_line() { end_line(); }
    void end_line();

  private:
    static constexpr std::size_t longest_piece = 256;

    // Where a piece may be written, and sixteen bytes more.
    char* room();
    void flush();

    std::FILE* m_file;
    std::array<char, 512> m_reserve{};
    std::unique_ptr<char[]> m_large;
    std::span<char> m_buffer;
    std::size_t m_length = 0;
};

} // namespace env
