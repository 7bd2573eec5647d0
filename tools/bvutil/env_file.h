// Environment files for the commands: read with a place for every error, written so that nothing is lost.
#pragma once

#include "bvutil/env.h"
#include "tools/bvutil/message_capture.h"

#include <cstddef>
#include <string>

// A main environment.
class Environment {
  public:
    explicit Environment(long layer_tag = 0, EnvHandle fallback = nullptr);
    ~Environment() { env_close(m_env, 0); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;
    EnvHandle get() const { return m_env; }

  private:
    EnvHandle m_env;
};

// What a file holds beside its sections. It is gone when the file is written again.
struct Unkept {
    long comments = 0;         // lines
    bool leading_text = false; // in front of the first section
    bool text_behind = false;  // behind the byte that ends the text early
};

// Replaces the environment's content by the file's. Throws CommandFailed (exit_io_error) when it cannot be
// read, or SyntaxError.
Unkept load(EnvHandle env, const std::string& path, MessageCapture& messages);

// Writes the environment to a file, consuming it. The file is replaced only when what was written reads back
// as the same tree. Throws CommandFailed, exit_bad_input when the file format cannot hold a name or text.
void save(EnvHandle env, const std::string& path, MessageCapture& messages);

// Writes the environment's text to standard output.
void print_text(EnvHandle env);
