// Value texts: the first byte is the room for items and the item size of words, the rest the text. What reads
// as a value is what the plain rules say, item by item.
#include "env/value_scanner.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

const std::string whole = "[-+]?[0-9]+";
const std::string number = "([-+]?[0-9]+\\.?[0-9]*[EeDd]([-+]?[0-9])?[0-9]*|"
                           "[-+]?[0-9]*\\.?[0-9]+[EeDd]([-+]?[0-9])?[0-9]*|"
                           "[-+]?[0-9]+\\.[0-9]*|[-+]?[0-9]*\\.[0-9]+|[-+]?[0-9]+)";
const std::string word = "[0-9A-Za-z]+";

std::regex one(const std::string& item) {
    return std::regex("[ \t]*" + item + "[ \t]*");
}
std::regex list(const std::string& item) {
    return std::regex("[ \t]*" + item + "[ \t]*(,[ \t]*" + item + "[ \t]*)*");
}

void require_agreement(const env::Scan& scan, const std::regex& rule, const std::string& line) {
    require(scan.result == env::scan_matched || scan.result == env::scan_no_match);
    require(scan.position <= scan.text.size());
    require((scan.result == env::scan_matched) == std::regex_match(line, rule));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0 || size > 512) return 0; // the rules recurse
    const std::string given(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::string text = given.substr(0, given.find('\0'));
    // Memory of its own, so that a byte too many is seen.
    const auto copy = std::make_unique<char[]>(text.size());
    std::memcpy(copy.get(), text.data(), text.size());
    const std::string_view view(copy.get(), text.size());
    const std::string line = text.substr(0, text.find_first_of("\n\r"));
    const std::size_t room = data[0] % 8u, item_size = data[0] / 8u;
    static const std::array rules{one(whole), one(number), list(whole), list(number), list(word)};

    std::vector<long> longs(room);
    std::vector<double> doubles(room);
    std::vector<std::unique_ptr<char[]>> words;
    std::vector<char*> slots;
    for (std::size_t i = 0; i < room; ++i) {
        words.push_back(std::make_unique<char[]>(item_size));
        slots.push_back(words.back().get());
    }
    const auto commas = static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
    const auto check = [&](auto scan_text, auto make_sink, const std::regex& rule) {
        env::ScanSink sink = make_sink();
        const env::Scan scan = scan_text(view, sink);
        require_agreement(scan, rule, line);
        require(sink.filled() <= room);
        if (scan.result == env::scan_matched && !sink.overflowed()) require(sink.filled() == commas + 1);
    };
    check(
        env::scan_long, [&] { return env::ScanSink::longs(longs.data(), room); }, rules[0]);
    check(
        env::scan_double, [&] { return env::ScanSink::doubles(doubles.data(), room); }, rules[1]);
    check(
        env::scan_longs, [&] { return env::ScanSink::longs(longs.data(), room); }, rules[2]);
    check(
        env::scan_doubles, [&] { return env::ScanSink::doubles(doubles.data(), room); }, rules[3]);
    check(
        env::scan_words, [&] { return env::ScanSink::words(slots.data(), room, item_size); }, rules[4]);
    require(std::memcmp(view.data(), text.data(), text.size()) == 0);
    return 0;
}
