// Value texts: the first byte is the room for items and the item size of words, the rest the text. What reads
// as a value is what the rules say.
#include "env/value_scanner.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <regex>
#include <string>
#include <vector>

namespace {

const std::string whole = "[+-]?[0-9]+",
                  number = "[+-]?([0-9]+(\\.[0-9]*)?|\\.[0-9]+)([eEdD]([+-]?[0-9]+)?)?",
                  word = "[0-9A-Za-z]+";

std::string one(const std::string& item) {
    return "[ \t]*" + item + "[ \t]*";
}
std::string list(const std::string& item) {
    return one(item) + "(," + one(item) + ")*";
}

void check(const env::Scan& scan, const env::ScanSink& sink, const std::regex& rule) {
    const std::string_view line = scan.text.substr(0, scan.text.find_first_of("\n\r"));
    const bool matches = std::regex_match(line.begin(), line.end(), rule);
    require(scan.result == (matches ? env::scan_matched : env::scan_no_match));
    require(scan.position <= scan.text.size());
    const auto commas = static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
    if (matches && !sink.overflowed()) require(sink.filled() == commas + 1);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > 512) return 0; // the rules recurse
    static const std::regex of_long(one(whole)), of_double(one(number)), of_longs(list(whole)),
        of_doubles(list(number)), of_words(list(word));
    // Memory of its own, so that a byte too many is seen.
    const std::vector<char> text(data + 1, std::find(data + 1, data + size, '\0'));
    const std::string_view view(text.data(), text.size());
    const std::size_t room = data[0] % 8u, item_size = data[0] / 8u;
    std::vector<long> longs(room);
    std::vector<double> doubles(room);
    std::vector<std::vector<char>> words(room, std::vector<char>(item_size));
    std::vector<char*> slots;
    for (std::vector<char>& buffer : words)
        slots.push_back(buffer.data());

    const auto scan_and_check = [&](auto scan_text, env::ScanSink sink, const std::regex& rule) {
        const env::Scan scan = scan_text(view, sink);
        check(scan, sink, rule);
    };
    scan_and_check(env::scan_long, env::ScanSink::longs(longs.data(), room), of_long);
    scan_and_check(env::scan_double, env::ScanSink::doubles(doubles.data(), room), of_double);
    scan_and_check(env::scan_longs, env::ScanSink::longs(longs.data(), room), of_longs);
    scan_and_check(env::scan_doubles, env::ScanSink::doubles(doubles.data(), room), of_doubles);
    scan_and_check(env::scan_words, env::ScanSink::words(slots.data(), room, item_size), of_words);
    return 0;
}
