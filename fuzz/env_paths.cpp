// Paths of the environment store: the first byte chooses the code page, the first line is the delimiter, the
// rest the path; split as the plainest splitter does it.
#include "env/path.h"
#include "fuzz/require.h"
#include "module/multibyte.h"
#include "tests/support/double_byte.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

std::vector<std::string> characters(std::string_view text) {
    std::vector<std::string> all;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        all.emplace_back(text.substr(at, length));
        return true;
    });
    return all;
}

struct Step {
    std::string name;
    long occurrence;
};

long number(const std::string& digits) {
    long value = 0;
    for (const char c : digits)
        value = value > (LONG_MAX - (c - '0')) / 10 ? LONG_MAX : value * 10 + (c - '0');
    return value;
}

std::vector<Step> split(std::string_view path, const std::vector<std::string>& separators) {
    std::vector<std::string> parts(1);
    for (const std::string& character : characters(path)) {
        bool separates = false;
        for (const std::string& separator : separators)
            separates |= separator == character;
        if (separates)
            parts.emplace_back();
        else
            parts.back() += character;
    }
    std::vector<Step> steps;
    bool may_be_number = false;
    for (const std::string& part : parts) {
        if (part.empty()) continue;
        const bool is_number = may_be_number && part.find_first_not_of("0123456789") == std::string::npos;
        if (is_number)
            steps.back().occurrence = number(part);
        else
            steps.push_back({part, 1});
        may_be_number = !is_number;
    }
    return steps;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::optional<DoubleByteCodePage> code_page;
    if (data[0] % 2) code_page.emplace();
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string separators = text.substr(0, std::min<std::size_t>(end, 254));
    if (separators.empty()) separators = "@";
    env::delimiter().set(separators);
    const std::string path = end < text.size() ? text.c_str() + end + 1 : "";

    env::PathReader reader(path.c_str());
    for (const Step& step : split(path, characters(separators))) {
        require(!reader.at_end());
        const env::Component component = reader.next();
        require(component.name == step.name && component.occurrence == step.occurrence);
    }
    require(reader.at_end());

    std::string last;
    const std::string joint = characters(separators).front();
    require(env::delimiter().joint() == joint);
    for (const std::string& character : characters(path))
        last = character == joint ? "" : last + character;
    require(env::last_component(path) == last);

    char buffer[16];
    env::PathWriter writer(buffer, sizeof buffer);
    if (writer.add(path)) {
        const bool fits = path.size() * 2 + joint.size() < sizeof buffer;
        require(writer.add(path) == fits);
        require(buffer == (fits ? (path + joint + path).substr(0, (path + joint + path).find('\0')) : ""));
    }
    return 0;
}
