#include "env/value_scanner.h"

#include "module/text_to_double.h"

#include <charconv>
#include <cstring>
#include <limits>

// A grammar is a function object that takes a Scan and sets its result. A primitive looks at the character at
// the position and consumes it when it matches; combinators build larger grammars of smaller ones.

namespace env {

namespace {

// --- primitives

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}
bool is_letter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

void miss(Scan& scan, const char* message) {
    scan.result = scan_no_match;
    scan.message = message;
}

template <class Accept>
constexpr auto character(Accept accept, const char* message) {
    return [=](Scan& scan) {
        if (scan.position < scan.text.size() && accept(scan.text[scan.position]))
            ++scan.position;
        else
            miss(scan, message);
    };
}

constexpr const char* unexpected = "unexpected symbol";

constexpr auto digit = character(is_digit, "bad_digit");
constexpr auto letter = character(is_letter, "bad_stringchar");
constexpr auto alphanumeric = character([](char c) { return is_digit(c) || is_letter(c); }, "bad_stringhar");
constexpr auto blank = character([](char c) { return c == ' ' || c == '\t'; }, "bad_space");
constexpr auto comma = character([](char c) { return c == ','; }, unexpected);
constexpr auto point = character([](char c) { return c == '.'; }, unexpected);
constexpr auto sign = character([](char c) { return c == '+' || c == '-'; }, unexpected);
constexpr auto line_end = character([](char c) { return c == '\n' || c == '\r'; }, unexpected);

constexpr auto end = [](Scan& scan) {
    if (scan.position < scan.text.size()) miss(scan, "EOF expected");
};

constexpr auto exponent_mark = [](Scan& scan) {
    switch (scan.here()) {
    case 'E':
    case 'e':
    case 'D':
    case 'd':
        return letter(scan);
    default:
        miss(scan, "exponent symbol expected");
    }
};

// --- combinators

// Runs one grammar. One that hands back a result outside the table is an error.
template <class Grammar>
void run(const Grammar& grammar, Scan& scan) {
    grammar(scan);
    if (scan.result < scan_matched || scan.result > scan_error) {
        scan.result = scan_error;
        scan.message = "BAD RETURNED VALUE";
    }
}

// Makes a miss good: back to where it began.
void forgive(Scan& scan, std::size_t position) {
    scan.position = position;
    scan.result = scan_matched;
}

// The steps in order, all or none.
template <class... Steps>
constexpr auto sequence(Steps... steps) {
    return [=](Scan& scan) {
        const std::size_t begin = scan.position;
        const auto step = [&](const auto& grammar) {
            run(grammar, scan);
            return scan.result == scan_matched;
        };
        if (!(step(steps) && ...) && scan.result == scan_no_match) scan.position = begin;
    };
}

template <class Grammar>
constexpr auto optional(Grammar grammar) {
    return [=](Scan& scan) {
        const std::size_t begin = scan.position;
        run(grammar, scan);
        if (scan.result == scan_no_match) forgive(scan, begin);
    };
}

// As often as it matches, also not at all.
template <class Grammar>
constexpr auto many(Grammar grammar) {
    return [=](Scan& scan) {
        std::size_t begin = scan.position;
        for (run(grammar, scan); scan.result == scan_matched; run(grammar, scan))
            begin = scan.position;
        if (scan.result == scan_no_match) forgive(scan, begin);
    };
}

// The first alternative that matches.
template <class... Alternatives>
constexpr auto choice(Alternatives... alternatives) {
    return [=](Scan& scan) {
        const auto attempt = [&](const auto& grammar) {
            scan.result = scan_matched;
            run(grammar, scan);
            return scan.result != scan_no_match;
        };
        (void)(attempt(alternatives) || ...);
    };
}

// What the grammar matches is an item for the sink.
template <class Grammar>
constexpr auto item(Grammar grammar, void (ScanSink::*take)(std::string_view)) {
    return [=](Scan& scan) {
        const std::size_t begin = scan.position;
        run(grammar, scan);
        if (scan.result == scan_matched) (scan.sink->*take)(scan.text.substr(begin, scan.position - begin));
    };
}

// --- the grammars of values

constexpr auto digits = sequence(digit, many(digit));
constexpr auto exponent = sequence(exponent_mark, optional(sequence(optional(sign), digit)),
                                   many(digit)); // the digits may be missing

constexpr auto long_item = item(sequence(optional(sign), digits), &ScanSink::take_long);
constexpr auto double_item =
    item(choice(sequence(optional(sign), digits, optional(point), many(digit), exponent),
                sequence(optional(sign), many(digit), optional(point), digits, exponent),
                sequence(optional(sign), digits, point, many(digit)),
                sequence(optional(sign), many(digit), point, digits), //
                sequence(optional(sign), digits)),
         &ScanSink::take_double);
constexpr auto word_item = item(sequence(alphanumeric, many(alphanumeric)), &ScanSink::take_word);

// Only the first character of a line end is looked at: what follows it does not matter.
template <class Item>
constexpr auto one(Item value) {
    return sequence(many(blank), value, many(blank), choice(line_end, end));
}

template <class Item>
constexpr auto list(Item value) {
    return sequence(many(blank), value, many(blank), many(sequence(comma, many(blank), value, many(blank))),
                    choice(end, line_end));
}

template <class Grammar>
Scan scan_with(const Grammar& grammar, std::string_view text, ScanSink& sink) {
    Scan scan;
    scan.text = text;
    scan.sink = &sink;
    run(grammar, scan);
    return scan;
}

} // namespace

Scan scan_long(std::string_view text, ScanSink& sink) {
    // Most texts are a number and nothing else; the last to be missed is then a line end.
    long value;
    const char* const text_end = text.data() + text.size();
    if (const auto [at, error] = std::from_chars(text.data(), text_end, value);
        error == std::errc{} && at == text_end) {
        sink.take_long(value);
        return {.message = unexpected, .text = text, .position = text.size(), .sink = &sink};
    }
    return scan_with(one(long_item), text, sink);
}
Scan scan_double(std::string_view text, ScanSink& sink) {
    return scan_with(one(double_item), text, sink);
}
Scan scan_longs(std::string_view text, ScanSink& sink) {
    return scan_with(list(long_item), text, sink);
}
Scan scan_doubles(std::string_view text, ScanSink& sink) {
    return scan_with(list(double_item), text, sink);
}
Scan scan_words(std::string_view text, ScanSink& sink) {
    return scan_with(list(word_item), text, sink);
}

// --- the sink

ScanSink ScanSink::longs(long* slots, std::size_t capacity) {
    ScanSink sink;
    sink.m_slots = slots;
    sink.m_capacity = capacity;
    return sink;
}

ScanSink ScanSink::doubles(double* slots, std::size_t capacity) {
    ScanSink sink;
    sink.m_slots = slots;
    sink.m_capacity = capacity;
    return sink;
}

ScanSink ScanSink::words(char** slots, std::size_t capacity, std::size_t item_size) {
    ScanSink sink;
    sink.m_slots = slots;
    sink.m_capacity = capacity;
    sink.m_item_size = item_size;
    return sink;
}

bool ScanSink::has_room() {
    if (m_filled == m_capacity) m_flags |= overflow_mark;
    return !overflowed();
}

void ScanSink::take_long(long value) {
    if (has_room()) static_cast<long*>(m_slots)[m_filled++] = value;
}

void ScanSink::take_long(std::string_view item) {
    // The C library's conversion: out of range gives the nearest long.
    const bool negative = item.front() == '-';
    long value = negative ? std::numeric_limits<long>::min() : std::numeric_limits<long>::max();
    if (item.front() == '+') item.remove_prefix(1);
    std::from_chars(item.data(), item.data() + item.size(), value);
    take_long(value);
}

void ScanSink::take_double(std::string_view item) {
    if (has_room()) static_cast<double*>(m_slots)[m_filled++] = text_to_double(item);
}

void ScanSink::take_word(std::string_view item) {
    if (!has_room()) return;
    char* const buffer = static_cast<char**>(m_slots)[m_filled];
    if (!buffer || item.size() >= m_item_size) {
        m_flags |= overflow_mark;
        return;
    }
    std::memcpy(buffer, item.data(), item.size());
    buffer[item.size()] = '\0';
    ++m_filled;
}

} // namespace env
