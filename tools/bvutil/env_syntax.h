// Where a settings file breaks the rules of its format, and what would mend it.
#pragma once

#include "tools/bvutil/commands.h"
#include "tools/bvutil/message_capture.h"

#include <cstddef>
#include <string>
#include <string_view>

class SyntaxError : public CommandFailed {
  public:
    // The problem without the place; the whole message has the file, the place and the line itself, too.
    SyntaxError(const std::string& file, std::string_view bytes, std::size_t at, const std::string& problem);
    const std::string& problem() const { return m_problem; }
    // Both from 1.
    std::size_t line() const { return m_line; }
    std::size_t column() const { return m_column; }

  private:
    std::string m_problem;
    std::size_t m_line, m_column;
};

// Throws the SyntaxError for bytes that the reader left at a place with a message: at the byte that it could
// not use, or at the end.
[[noreturn]] void throw_syntax_error(const std::string& file, std::string_view bytes, std::size_t at,
                                     const std::string& message, MessageCapture& messages);
