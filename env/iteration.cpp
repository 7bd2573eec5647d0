#include "env/iteration.h"

#include <cstring>

namespace env {

Iteration& iteration() {
    static Iteration the_iteration;
    return the_iteration;
}

void Iteration::begin(const Address& address, bool exact) {
    m_env = address.env;
    m_exact = exact;
    m_position = 2;
    m_active = m_section.keep(address.section) && m_path.keep(address.path);
}

void Iteration::forget(EnvHandle env) {
    if (m_env == env) end();
}

Address Iteration::address() const {
    return {m_env, m_section.get(), m_path.get()};
}

bool Iteration::Copy::keep(const char* text) {
    m_null = !text;
    if (m_null) return true;
    const std::size_t size = std::strlen(text) + 1;
    if (size > m_text.size()) return false;
    std::memcpy(m_text.data(), text, size);
    return true;
}

} // namespace env
