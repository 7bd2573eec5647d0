// Whether a text is JSON, strictly.
#pragma once

#include <regex>
#include <string_view>

class JsonText {
  public:
    static bool is_valid(std::string_view text) {
        JsonText reader(text);
        return reader.value() && reader.m_rest.find_first_not_of(" \r\n\t") == text.npos;
    }

  private:
    explicit JsonText(std::string_view text) : m_rest(text) {}

    bool take(char token) {
        m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \r\n\t"), m_rest.size()));
        if (!m_rest.starts_with(token)) return false;
        m_rest.remove_prefix(1);
        return true;
    }
    bool match(const std::regex& pattern) {
        std::cmatch found;
        const char* const end = m_rest.data() + std::min<std::size_t>(m_rest.size(), 40);
        if (!std::regex_search(m_rest.data(), end, found, pattern, std::regex_constants::match_continuous))
            return false;
        m_rest.remove_prefix(static_cast<std::size_t>(found.length()));
        return true;
    }
    bool characters() {
        static const std::regex some("[^\"\\\\\\x00-\\x1F]{1,40}|\\\\([\"\\\\/bfnrt]|u[0-9a-fA-F]{4})");
        while (!m_rest.starts_with('"'))
            if (!match(some)) return false;
        return take('"');
    }
    bool value() {
        static const std::regex word("true|false|null|-?\\d+(\\.\\d+)?([eE][+-]?\\d+)?");
        const bool object = take('{');
        if (!object && !take('[')) return take('"') ? characters() : match(word);
        const char closing = object ? '}' : ']';
        if (take(closing)) return true;
        do
            if ((object && !(take('"') && characters() && take(':'))) || !value()) return false;
        while (take(','));
        return take(closing);
    }

    std::string_view m_rest;
};
