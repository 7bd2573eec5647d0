// Text to the console: UTF-8, whatever the ANSI code page is.
#pragma once

#include <string>
#include <string_view>

// Converts text of the ANSI code page to UTF-8.
std::string to_utf8(std::string_view ansi);

// Prints to standard output: `print` text of the ANSI code page, `print_utf8` as it is.
void print(std::string_view ansi);
void print_utf8(std::string_view utf8);

// Prints "bvutil: <message>" and a line end to standard error; ANSI code page.
void print_error(std::string_view message);

// Whether standard output is a console (then progress may be shown and colours used).
bool output_is_console();
