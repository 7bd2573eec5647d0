// Searching and trimming of texts by characters of the multibyte code page.
#pragma once

#include <string_view>

// Position of the first single-byte character `wanted`, npos for none.
std::size_t find_character(std::string_view text, char wanted);

// Position of the first occurrence of `wanted` that begins and ends where characters of `text` do, npos for
// none; an empty one is found at once. Linear in both lengths.
std::size_t find_text(std::string_view text, std::string_view wanted);

// The text without leading, or without trailing, white space.
std::string_view trim_left(std::string_view text);
std::string_view trim_right(std::string_view text);
