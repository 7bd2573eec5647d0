// Lines and fields of C runtime streams.
#pragma once

#include <cstdio>
#include <string_view>

// Reads one line of at most `limit` bytes and terminates it; see BvUtil_GetString. Returns whether anything
// was read.
bool read_line(std::FILE* stream, std::size_t limit, char* buffer);

// Writes the text in a field of `width` bytes, cut or followed by blanks; false when a write failed.
bool write_field(std::FILE* stream, std::string_view text, std::size_t width);
