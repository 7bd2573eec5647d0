// The library's messages, kept from becoming message boxes.
#pragma once

#include <cstddef>
#include <string>

// While it lives, messages go to a temporary log file; the file is removed at the end.
class MessageCapture {
  public:
    MessageCapture();
    ~MessageCapture();
    MessageCapture(const MessageCapture&) = delete;
    MessageCapture& operator=(const MessageCapture&) = delete;

    // The texts reported since the last call, joined by "; ", without time, source and line.
    std::string take();

  private:
    std::string m_path;
    std::size_t m_seen = 0;
};
