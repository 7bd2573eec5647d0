// Lists of numbers: the first byte is the room for values, the rest the text.
#include "files/number_list.h"
#include "files/number_text.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

bool same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

struct Reading {
    std::optional<std::size_t> count;
    std::vector<double> values;
};

Reading read(std::string_view text, std::size_t room) {
    Reading reading{std::nullopt, std::vector<double>(room, -7)};
    reading.count = read_numbers(text, reading.values);
    require(!reading.count || (*reading.count >= 1 && *reading.count <= room));
    return reading;
}

// Less room reads the front of the same values, and never fails where more room succeeds.
void check_room(std::string_view text, const Reading& whole) {
    const Reading less = read(text, (whole.values.size() + 1) / 2);
    require(less.count || !whole.count);
    if (whole.count) require(*less.count == std::min(*whole.count, less.values.size()));
    for (std::size_t i = 0; i < less.values.size(); ++i)
        require(same(less.values[i], whole.values[i]));
}

// In general form, numbers are as the C library writes them.
void check_general_form(const Reading& reading) {
    for (std::size_t i = 0; i < *reading.count; ++i) {
        GeneralText text;
        char wanted[32];
        std::snprintf(wanted, sizeof wanted, "%lg", reading.values[i]);
        require(std::strcmp(general_text(reading.values[i], text), wanted) == 0);
    }
}

// What was read, written with six decimals, reads as the same numbers to that precision.
void check_round_trip(const Reading& reading) {
    std::string text;
    for (std::size_t i = 0; i < *reading.count; ++i) {
        if (!std::isfinite(reading.values[i])) return;
        if (i) text += ',';
        append_fixed(text, reading.values[i]);
    }
    const Reading again = read(text, reading.values.size());
    require(again.count == reading.count);
    for (std::size_t i = 0; i < *again.count; ++i)
        require(std::fabs(again.values[i] - reading.values[i]) <=
                5.1e-7 + std::fabs(reading.values[i]) * 1e-15);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view view(reinterpret_cast<const char*>(data + 1), size - 1);
    const Reading reading = read(view, 1 + data[0] % 64u);
    check_room(view, reading);
    if (!reading.count) return 0;
    check_general_form(reading);
    check_round_trip(reading);
    return 0;
}
