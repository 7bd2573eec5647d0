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
    m_has_digit = std::strpbrk(m_text, "0123456789") != nullptr;
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

const char* Delimiter::find(const char* text, unsigned& bits) const {
    // Names are short: a call of the library's search would take longer than the search.
    if (m_length == 1)
        for (; *text && *text != m_text[0]; ++text)
            bits |= static_cast<unsigned char>(*text);
    else
        for (; *text && !std::memchr(m_text, *text, m_length); ++text)
            bits |= static_cast<unsigned char>(*text);
    return text;
}

const char* Delimiter::find_wide(std::string_view text) const {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const char* found = end;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t) {
        if (separator_length(text.substr(at)) > 0) found = begin + at;
        return found == end;
    });
    return found;
}

bool Delimiter::keeps(const char* name) const {
    unsigned bits = 0;
    const char* const end = find(name, bits);
    return end > name && !*end && !is_wide(bits < 0x80) && !m_has_digit;
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

PathReader::PathReader(const char* path) : m_at(path) {
    if (delimiter().is_wide(true)) go_wide();
    read_token();
}

void PathReader::go_wide() {
    m_wide_end = m_at + std::strlen(m_at);
}

void PathReader::read_token() {
    const Delimiter& separators = delimiter();
    for (m_token = {}; *m_at && m_token.empty();) {
        if (!m_wide_end) {
            unsigned bits = 0;
            const char* const end = separators.find(m_at, bits);
            if (separators.is_wide(bits < 0x80)) {
                go_wide();
                continue;
            }
            m_token = {m_at, end};
            m_at = end + (*end != '\0');
        } else {
            const char* const end = separators.find_wide({m_at, m_wide_end});
            m_token = {m_at, end};
            m_at = end + separators.separator_length({end, m_wide_end});
        }
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
