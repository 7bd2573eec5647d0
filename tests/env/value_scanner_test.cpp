// The scanner itself: what it says of a text that does not match, and where it stops.
#include "env/value_scanner.h"

#include <gtest/gtest.h>

namespace {

using namespace env;

TEST(ValueScanner, NamesTheLastMiss) {
    const struct {
        Scan (*scan)(std::string_view, ScanSink&);
        const char* text;
        int result;
        const char* message;
        std::size_t position;
    } cases[] = {
        {scan_long, "x", scan_no_match, "bad_digit", 0},
        {scan_long, "1x", scan_no_match, "EOF expected", 0}, // a line end was tried before
        {scan_longs, "1,x", scan_no_match, "unexpected symbol", 0},
        {scan_words, " _", scan_no_match, "bad_stringhar", 0},
        {scan_long, "1", scan_matched, "unexpected symbol", 1}, // kept from the line end that was tried
        {scan_long, "1\nx", scan_matched, "bad_space", 2},
        {scan_double, "1.5e3 \t", scan_matched, "unexpected symbol", 7},
    };
    for (const auto& [scan, text, result, message, position] : cases) {
        ScanSink no_room = ScanSink::longs(nullptr, 0);
        const Scan scanned = scan(text, no_room);
        EXPECT_EQ(scanned.result, result) << text;
        EXPECT_STREQ(scanned.message, message) << text;
        EXPECT_EQ(scanned.position, position) << text;
        EXPECT_EQ(no_room.overflowed(), text[0] == '1') << text;
    }
}

} // namespace
