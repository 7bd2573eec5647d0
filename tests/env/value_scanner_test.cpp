// The scanner itself: what it says of a text that does not match, where it stops, and its sinks.
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
        {scan_longs, "1x", scan_no_match, "unexpected symbol", 0},
        {scan_longs, "1,x", scan_no_match, "unexpected symbol", 0},
        {scan_words, " _", scan_no_match, "bad_stringhar", 0},
        {scan_long, "1", scan_matched, "unexpected symbol", 1}, // kept from the line end that was tried
        {scan_long, "1\nx", scan_matched, "bad_space", 2},
        {scan_words, "a", scan_matched, "unexpected symbol", 1},
        {scan_double, "1.5e3 \t", scan_matched, "unexpected symbol", 7},
    };
    for (const auto& [scan, text, result, message, position] : cases) {
        char buffer[8];
        char* slots[1] = {buffer};
        double real;
        ScanSink sink = scan == scan_words    ? ScanSink::words(slots, 1, 8)
                        : scan == scan_double ? ScanSink::doubles(&real, 1)
                                              : ScanSink::longs(reinterpret_cast<long*>(buffer), 1);
        const Scan scanned = scan(text, sink);
        EXPECT_EQ(scanned.result, result) << text;
        EXPECT_STREQ(scanned.message, message) << text;
        EXPECT_EQ(scanned.position, position) << text;
    }
}

TEST(ValueScanner, DropsEverythingBehindAnItemWithoutRoom) {
    char a[4] = "", c[4] = "";
    char* slots[] = {a, nullptr, c};
    ScanSink words = ScanSink::words(slots, 3, 4);
    EXPECT_EQ(scan_words("x,y,z", words).result, scan_matched); // the scan goes on
    EXPECT_TRUE(words.overflowed());
    EXPECT_EQ(words.filled(), 1u);
    EXPECT_STREQ(c, "");
    slots[1] = a;
    ScanSink lengths = ScanSink::words(slots, 3, 4);
    EXPECT_EQ(scan_words("abc,abcd,z", lengths).result, scan_matched);
    EXPECT_EQ(lengths.filled(), 1u);
    long values[2];
    ScanSink longs = ScanSink::longs(values, 2);
    EXPECT_EQ(scan_longs("1,2,3,4", longs).result, scan_matched);
    EXPECT_TRUE(longs.overflowed());
    EXPECT_EQ(longs.filled(), 2u);
}

} // namespace
