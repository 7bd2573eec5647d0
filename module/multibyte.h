// Double-byte characters of the runtime's multibyte code page. The platform side asks the C runtime; the
// native build has a table that its tests set.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace multibyte {

// Whether the code page has double-byte characters at all; when not, bytes are characters.
bool active();

// Whether the byte opens a double-byte character when it stands where a character begins.
bool is_lead_byte(unsigned char byte);

// The lower-case form of a character of the code page (a double-byte one as lead byte * 256 + trail byte); it
// has as many bytes as the character.
unsigned lower_case(unsigned character);

// Length in bytes of the character at the front of a non-empty text: 2 for a lead byte with a byte behind
// it, else 1 (a lead byte at the end of a text stands alone).
inline std::size_t character_length(std::string_view text) {
    return text.size() > 1 && is_lead_byte(static_cast<unsigned char>(text[0])) ? 2 : 1;
}

// Calls visit(position, length) for each character from the front until it returns false.
template <class Visit>
void for_each_character(std::string_view text, Visit&& visit) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = character_length(text.substr(at));
        if (!visit(at, length)) return;
        at += length;
    }
}

// Lower-cases a text in place, character by character; it keeps its length. A lead byte at the end stays.
inline void make_lower(std::string& text) {
    for_each_character(text, [&](std::size_t at, std::size_t length) {
        const auto first = static_cast<unsigned char>(text[at]);
        if (length == 1) {
            if (!is_lead_byte(first)) text[at] = static_cast<char>(lower_case(first));
            return true;
        }
        const unsigned lower = lower_case(first * 256u + static_cast<unsigned char>(text[at + 1]));
        text[at] = static_cast<char>(lower >> 8);
        text[at + 1] = static_cast<char>(lower & 0xFF);
        return true;
    });
}

} // namespace multibyte
