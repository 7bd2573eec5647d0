#include "runtime/text_lines.h"

#include <algorithm>

bool read_line(std::FILE* stream, std::size_t limit, char* buffer) {
    std::size_t stored = 0;
    bool read_any = false;
    while (stored < limit) {
        int c = std::getc(stream);
        read_any = read_any || c != EOF;
        if (c == EOF || c == '\0' || c == '\n') break;
        if (c == '\r') {
            // What follows is only looked at; it ends the line on the next turn. Kept: of a carriage return
            // and a line feed, the line keeps the line feed.
            c = std::getc(stream);
            std::ungetc(c, stream);
            if (c != '\n' && c != '\0') break;
        }
        buffer[stored++] = static_cast<char>(c);
    }
    buffer[stored] = '\0';
    return read_any;
}

bool write_field(std::FILE* stream, std::string_view text, std::size_t width) {
    text = text.substr(0, width);
    if (std::fwrite(text.data(), 1, text.size(), stream) != text.size()) return false;

    constexpr std::string_view blanks = "                                ";
    for (std::size_t left = width - text.size(); left > 0;) {
        const std::size_t chunk = std::min(left, blanks.size());
        if (std::fwrite(blanks.data(), 1, chunk, stream) != chunk) return false;
        left -= chunk;
    }
    return true;
}
