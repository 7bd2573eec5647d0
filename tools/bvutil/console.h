// Text to the console: UTF-8 in files and pipes, and on a console whatever its code page is.
#pragma once

#include <string>
#include <string_view>

// Converts text of the ANSI code page to UTF-8.
std::string to_utf8(std::string_view ansi);

// Opens the streams for bytes as they are, so that what is piped has the same bytes everywhere.
void prepare_output();

// Prints to standard output: `print` text of the ANSI code page, `print_utf8` as it is.
void print(std::string_view ansi);
void print_utf8(std::string_view utf8);

// Print "bvutil: <message>" and a line end to standard error, behind all that was printed so far; ANSI code
// page, or UTF-8.
void print_error(std::string_view message);
void print_error_utf8(std::string_view message);
void print_note(std::string_view message);

// Standard error for what is neither: whether it is a console, and UTF-8 written to it as it is.
bool error_output_is_console();
void write_to_error(std::string_view utf8);

// Whether everything printed so far has reached standard output.
bool output_is_complete();

// How text stands out on a console, unless the environment variable NO_COLOR says no.
enum class Emphasis { heading, faint };

// Gives what is printed to standard output while it lives an emphasis.
class Emphasised {
  public:
    explicit Emphasised(Emphasis emphasis);
    ~Emphasised();
    Emphasised(const Emphasised&) = delete;
    Emphasised& operator=(const Emphasised&) = delete;
};
