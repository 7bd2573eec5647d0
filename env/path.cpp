#include "env/path.h"

#include "module/multibyte.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace env {

namespace {

// The first byte of a double-byte character is never ASCII, so most texts need not ask the code page.
bool is_ascii(std::string_view text) {
    unsigned bits = 0;
    for (const char c : text)
        bits |= static_cast<unsigned char>(c);
    return bits < 0x80;
}

bool is_number(std::string_view token) {
    return std::all_of(token.begin(), token.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// As the C library converts: too large a number becomes the largest.
long to_occurrence(std::string_view digits) {
    long number = std::numeric_limits<long>::max();
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return number;
}

} // namespace

Delimiter& delimiter() {
    static Delimiter the_delimiter;
    return the_delimiter;
}

void Delimiter::set(std::string_view text) {
    m_length = std::min(text.size(), capacity - 1);
    std::memmove(m_text, text.data(), m_length);
    m_text[m_length] = '\0';
    m_is_ascii = is_ascii({m_text, m_length});
}

std::string_view Delimiter::joint() const {
    return {m_text, multibyte::character_length({m_text, m_length})};
}

std::size_t Delimiter::separator_length(std::string_view text) const {
    const std::size_t length = multibyte::character_length(text);
    std::size_t found = 0;
    multibyte::for_each_character({m_text, m_length}, [&](std::size_t at, std::size_t own_length) {
        if (std::string_view(m_text + at, own_length) == text.substr(0, length)) found = length;
        return found == 0;
    });
    return found;
}

bool Delimiter::is_wide(bool is_ascii) const {
    return !(m_is_ascii && is_ascii) && multibyte::active();
}

const char* Delimiter::find(std::string_view text, bool wide) const {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    if (wide) {
        const char* found = end;
        multibyte::for_each_character(text, [&](std::size_t at, std::size_t) {
            if (separator_length(text.substr(at)) > 0) found = begin + at;
            return found == end;
        });
        return found;
    }
    // Names are short: a call of the library's search would take longer than the search.
    const char* at = begin;
    if (m_length == 1)
        while (at < end && *at != m_text[0])
            ++at;
    else
        while (at < end && !std::memchr(m_text, *at, m_length))
            ++at;
    return at;
}

bool Delimiter::keeps(std::string_view name) const {
    return !name.empty() && !is_wide(is_ascii(name)) && find(name, false) == name.data() + name.size();
}

std::size_t Delimiter::find_last_joint(std::string_view text) const {
    if (!is_wide(is_ascii(text))) return text.rfind(m_text[0]);
    std::size_t found = std::string_view::npos;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        if (text.substr(at, length) == joint()) found = at;
        return true;
    });
    return found;
}

PathReader::PathReader(const char* path) : m_at(path), m_end(path) {
    unsigned bits = 0;
    for (; *m_end; ++m_end)
        bits |= static_cast<unsigned char>(*m_end);
    m_wide = delimiter().is_wide(bits < 0x80);
    read_token();
}

void PathReader::read_token() {
    const Delimiter& separators = delimiter();
    m_token = {};
    while (m_at < m_end && m_token.empty()) {
        const char* const end = separators.find({m_at, m_end}, m_wide);
        m_token = {m_at, end};
        m_at = end;
        if (end < m_end) m_at += m_wide ? separators.separator_length({end, m_end}) : 1;
    }
}

Component PathReader::next() {
    Component component{m_token};
    read_token();
    if (!m_token.empty() && is_number(m_token)) {
        component.occurrence = to_occurrence(m_token);
        read_token();
    }
    return component;
}

bool PathWriter::add(std::string_view component) {
    const std::string_view joint = m_empty ? std::string_view{} : delimiter().joint();
    // Compared so that no sum can wrap.
    const std::size_t room = m_size - m_length;
    if (joint.size() + 1 > room || component.size() > room - joint.size() - 1) {
        m_buffer[0] = '\0';
        return false;
    }
    for (const std::string_view part : {joint, component}) {
        if (!part.empty()) std::memmove(m_buffer + m_length, part.data(), part.size());
        m_length += part.size();
    }
    m_buffer[m_length] = '\0';
    m_empty = false;
    return true;
}

std::string_view last_component(std::string_view path) {
    const std::size_t joint = delimiter().find_last_joint(path);
    return joint == std::string_view::npos ? path : path.substr(joint + delimiter().joint().size());
}

} // namespace env
