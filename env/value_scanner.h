// The syntax of value texts: one number, or a comma-separated list of numbers or words. A small backtracking
// scanner of primitives and combinators; see value_scanner.cpp for the grammar.
#pragma once

#include <cstddef>
#include <string_view>

namespace env {

enum ScanResult {
    scan_matched = 0,
    scan_no_match = 1, // another alternative may match
    scan_error = 2     // stops everything
};

// Where the matched items go: slots of the caller's, filled in order. An item without room sets the overflow
// mark, and it and all later ones are dropped while the scan goes on.
class ScanSink {
  public:
    static constexpr unsigned overflow_mark = 8;

    static ScanSink longs(long* slots, std::size_t capacity);
    static ScanSink doubles(double* slots, std::size_t capacity);
    // Slots are buffers of item_size bytes; a null one is no room.
    static ScanSink words(char** slots, std::size_t capacity, std::size_t item_size);

    void take_long(long value);
    void take_long(std::string_view item);
    void take_double(std::string_view item);
    void take_word(std::string_view item);

    std::size_t filled() const { return m_filled; }
    bool overflowed() const { return (m_flags & overflow_mark) != 0; }

  private:
    bool has_room();

    unsigned m_flags = 0;
    std::size_t m_item_size = 0;
    void* m_slots = nullptr;
    std::size_t m_filled = 0;
    std::size_t m_capacity = 0;
};

// A text being scanned.
struct Scan {
    int result = scan_matched;
    const char* message = nullptr; // of the last primitive that did not match
    std::string_view text;
    std::size_t position = 0;
    ScanSink* sink = nullptr;

    // The character at the position; NUL at the end.
    char here() const { return position < text.size() ? text[position] : '\0'; }
};

// Each scans the text from its beginning, hands the items to the sink and leaves the outcome in the result.
Scan scan_long(std::string_view text, ScanSink& sink);
Scan scan_double(std::string_view text, ScanSink& sink);
Scan scan_longs(std::string_view text, ScanSink& sink);
Scan scan_doubles(std::string_view text, ScanSink& sink);
Scan scan_words(std::string_view text, ScanSink& sink);

} // namespace env
