#include "runtime/text_search.h"

#include "module/multibyte.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::string_view white_space = " \t\n\v\f\r";

bool ends_in_lone_lead_byte(std::string_view text) {
    bool lone = false;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        lone = length == 1 && multibyte::is_lead_byte(static_cast<unsigned char>(text[at]));
        return true;
    });
    return lone;
}

// For each prefix of the text, the length of the longest shorter prefix that it ends in.
std::vector<std::size_t> border_lengths(std::string_view text) {
    std::vector<std::size_t> borders(text.size(), 0);
    for (std::size_t i = 1, border = 0; i < text.size(); ++i) {
        while (border > 0 && text[i] != text[border])
            border = borders[border - 1];
        if (text[i] == text[border]) ++border;
        borders[i] = border;
    }
    return borders;
}

} // namespace

std::size_t find_character(std::string_view text, char wanted) {
    if (!multibyte::active()) return text.find(wanted);
    std::size_t found = std::string_view::npos;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        if (length == 1 && text[at] == wanted) found = at;
        return found == std::string_view::npos;
    });
    return found;
}

// The Knuth-Morris-Pratt search over bytes; of its matches, those count that lie on whole characters.
std::size_t find_text(std::string_view text, std::string_view wanted) {
    if (wanted.empty()) return 0;
    if (wanted.size() > text.size()) return std::string_view::npos;
    const std::vector<std::size_t> borders = border_lengths(wanted);
    // Half a character at the end of what is wanted can only be half a character at the end of the text.
    const bool only_at_end = ends_in_lone_lead_byte(wanted);

    std::size_t character = 0; // the last character that begins at or before the match
    for (std::size_t i = 0, matched = 0; i < text.size(); ++i) {
        while (matched > 0 && text[i] != wanted[matched])
            matched = borders[matched - 1];
        if (text[i] == wanted[matched]) ++matched;
        if (matched < wanted.size()) continue;

        const std::size_t start = i + 1 - matched;
        while (character < start)
            character += multibyte::character_length(text.substr(character));
        if (character == start && (!only_at_end || i + 1 == text.size())) return start;
        matched = borders[matched - 1];
    }
    return std::string_view::npos;
}

std::string_view trim_left(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(white_space), text.size()));
    return text;
}

std::string_view trim_right(std::string_view text) {
    std::size_t end = 0;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        if (length > 1 || white_space.find(text[at]) == std::string_view::npos) end = at + length;
        return true;
    });
    return text.substr(0, end);
}
