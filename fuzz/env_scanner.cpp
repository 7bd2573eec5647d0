// Value texts: the first byte is the room for items and the item size of words, the rest the text. What reads
// as a value is what the plain rules say, item by item.
#include "env/value_scanner.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

std::string_view without_sign(std::string_view text) {
    return text.substr(!text.empty() && (text[0] == '+' || text[0] == '-'));
}

bool is_digits(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

bool is_whole(std::string_view item) {
    return is_digits(without_sign(item));
}

// Digits with a point among them or none; then perhaps an exponent, whose digits may be missing.
bool is_number(std::string_view item) {
    const std::string_view rest = without_sign(item);
    const std::size_t mark = std::min(rest.find_first_of("eEdD"), rest.size());
    std::string mantissa(rest.substr(0, mark));
    if (const auto point = mantissa.find('.'); point != std::string::npos) mantissa.erase(point, 1);
    const std::string_view exponent = rest.substr(std::min(mark + 1, rest.size()));
    return is_digits(mantissa) && (exponent.empty() || is_digits(without_sign(exponent)));
}

bool is_word(std::string_view item) {
    return !item.empty() && std::all_of(item.begin(), item.end(), [](char c) {
        return is_digit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    });
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = std::min(text.find_first_not_of(" \t"), text.size());
    return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

struct Rule {
    bool (*is_item)(std::string_view);
    bool is_list;

    bool holds(std::string_view line) const {
        const std::size_t comma = is_list ? std::min(line.find(','), line.size()) : line.size();
        if (!is_item(trimmed(line.substr(0, comma)))) return false;
        return comma == line.size() || holds(line.substr(comma + 1));
    }
};

void require_agreement(const env::Scan& scan, const Rule& rule, std::string_view line) {
    require(scan.result == env::scan_matched || scan.result == env::scan_no_match);
    require(scan.position <= scan.text.size());
    require((scan.result == env::scan_matched) == rule.holds(line));
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
    constexpr Rule rules[] = {
        {is_whole, false}, {is_number, false}, {is_whole, true}, {is_number, true}, {is_word, true}};

    std::vector<long> longs(room);
    std::vector<double> doubles(room);
    std::vector<std::unique_ptr<char[]>> words;
    std::vector<char*> slots;
    for (std::size_t i = 0; i < room; ++i) {
        words.push_back(std::make_unique<char[]>(item_size));
        slots.push_back(words.back().get());
    }
    const auto commas = static_cast<std::size_t>(std::count(line.begin(), line.end(), ','));
    const auto check = [&](auto scan_text, auto make_sink, const Rule& rule) {
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
