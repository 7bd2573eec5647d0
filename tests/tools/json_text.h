// A strict reader of JSON for what the program prints.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The scalars of a JSON text in order, each with its place: "/0/name" is the member "name" of the first item.
// Strings are as they stand between their quotes, escapes too. Throws for what is no JSON.
class JsonText {
  public:
    using Scalars = std::vector<std::pair<std::string, std::string>>;

    static Scalars scalars(std::string_view text) {
        JsonText reader(text);
        reader.read_value("");
        reader.skip_blanks();
        if (!reader.m_rest.empty()) reader.fail("the end");
        return reader.m_scalars;
    }

  private:
    explicit JsonText(std::string_view text) : m_rest(text) {}

    [[noreturn]] void fail(const char* wanted) const {
        throw std::runtime_error(std::string(wanted) + " expected at: " + std::string(m_rest.substr(0, 40)));
    }
    void skip_blanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \r\n\t"), m_rest.size())); }
    bool take(std::string_view token) {
        skip_blanks();
        if (!m_rest.starts_with(token)) return false;
        m_rest.remove_prefix(token.size());
        return true;
    }
    std::string read_string() {
        if (!take("\"")) fail("a string");
        std::string text;
        while (!m_rest.empty() && m_rest.front() != '"') {
            if (static_cast<unsigned char>(m_rest.front()) < 0x20) fail("an escape");
            std::size_t length = 1;
            if (m_rest.front() == '\\') {
                length = m_rest.substr(1).starts_with('u') ? 6 : 2;
                if (std::string_view("\"\\/bfnrtu").find(m_rest[1]) == std::string_view::npos ||
                    m_rest.substr(0, length).find_first_not_of("0123456789abcdefABCDEF", 2) <= length)
                    fail("an escape");
            }
            text += m_rest.substr(0, length);
            m_rest.remove_prefix(length);
        }
        if (!take("\"")) fail("a closing quote");
        return text;
    }
    std::string read_word() {
        const std::string_view word = m_rest.substr(0, m_rest.find_first_of(",]} \r\n\t"));
        const bool named = word == "true" || word == "false" || word == "null";
        const std::size_t digits = word.starts_with('-') ? 1 : 0;
        std::size_t length = 0;
        if (!named) try {
                std::stod(std::string(word), &length);
            } catch (const std::exception&) {
            }
        if (!named && (length != word.size() || word.find_first_of("0123456789", digits) != digits ||
                       word.find_first_not_of("+-.eE0123456789") != word.npos))
            fail("a value");
        m_rest.remove_prefix(word.size());
        return std::string(word);
    }
    void read_items(const std::string& place, const char* closing, bool named) {
        if (take(closing)) return;
        for (int i = 0;; ++i) {
            const std::string name = named ? read_string() : std::to_string(i);
            if (named && !take(":")) fail("a colon");
            read_value(place + "/" + name);
            if (take(closing)) return;
            if (!take(",")) fail("a comma");
        }
    }
    void read_value(const std::string& place) {
        skip_blanks();
        if (take("{"))
            read_items(place, "}", true);
        else if (take("["))
            read_items(place, "]", false);
        else
            m_scalars.emplace_back(place, m_rest.starts_with('"') ? read_string() : read_word());
    }

    std::string_view m_rest;
    Scalars m_scalars;
};
