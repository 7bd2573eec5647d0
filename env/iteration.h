// The one iteration in the process, begun by env_get_first() and carried on by env_get_next().
#pragma once

#include "bvutil/env.h"
#include "env/lookup.h"

#include <array>

namespace env {

class Iteration {
  public:
    // Records where the second element is to be found; an address too long to keep ends the iteration.
    void begin(const Address& address, bool exact);
    void end() { m_active = false; }
    // Ends the iteration when it is over this environment, which is being closed.
    void forget(EnvHandle env);

    bool active() const { return m_active; }
    Address address() const;
    bool exact() const { return m_exact; }
    long position() const { return m_position; }
    void advance() { ++m_position; }

  private:
    // A section or path, kept.
    class Copy {
      public:
        bool keep(const char* text);
        const char* get() const { return m_null ? nullptr : m_text.data(); }

      private:
        std::array<char, 256> m_text{};
        bool m_null = true;
    };

    bool m_active = false;
    EnvHandle m_env = nullptr;
    Copy m_section;
    Copy m_path;
    bool m_exact = false;
    long m_position = 0;
};

Iteration& iteration();

} // namespace env
