#include "env/value_text.h"

#include <charconv>
#include <cstring>

namespace env {

NumberText::NumberText(long value) {
    char* const end = std::to_chars(m_text.data(), m_text.data() + m_text.size() - 1, value).ptr;
    *end = '\0';
    m_length = static_cast<std::size_t>(end - m_text.data());
}

NumberText::NumberText(double value) {
    constexpr int precision = 6; // of "%g"
    char* const end = std::to_chars(m_text.data(), m_text.data() + m_text.size() - 1, value,
                                    std::chars_format::general, precision)
                          .ptr;
    *end = '\0';
    m_length = static_cast<std::size_t>(end - m_text.data());
}

bool ArrayText::add(std::string_view item) {
    if (item.size() > longest_item) return false;
    if (!m_first) append(",");
    m_first = false;
    append(item);
    return true;
}

void ArrayText::append(std::string_view text) {
    m_full = m_full || text.size() > capacity - m_length;
    if (m_full) return;
    std::memcpy(m_text.data() + m_length, text.data(), text.size());
    m_length += text.size();
}

} // namespace env
