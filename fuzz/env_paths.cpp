// Paths of the environment store: the first byte chooses the code page, the first line is the delimiter, the
// rest the path; split as the plainest splitter does it.
#include "env/path.h"
#include "fuzz/require.h"
#include "module/multibyte.h"
#include "tests/env/model.h"
#include "tests/support/double_byte.h"

#include <cstdint>

namespace {

std::vector<std::string> characters(std::string_view text) {
    std::vector<std::string> all;
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t length) {
        all.emplace_back(text.substr(at, length));
        return true;
    });
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::optional<DoubleByteCodePage> code_page;
    if (data[0] % 2) code_page.emplace();
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string delimiter = end == 0 ? "@" : text.substr(0, std::min<std::size_t>(end, 254));
    env::delimiter().set(delimiter);
    const std::string path = end < text.size() ? text.c_str() + end + 1 : "";

    const std::vector<std::string> separators = characters(delimiter);
    const std::string& joint = separators[0];
    std::vector<std::string> parts(1);
    std::string last;
    for (const std::string& character : characters(path)) {
        last = character == joint ? "" : last + character;
        if (std::find(separators.begin(), separators.end(), character) != separators.end())
            parts.emplace_back();
        else
            parts.back() += character;
    }
    env::PathReader reader(path.c_str());
    for (const model::Step& step : model::steps_of(parts)) {
        require(!reader.at_end());
        const env::Component component = reader.next();
        require(component.name == step.name && component.occurrence == step.occurrence);
    }
    require(reader.at_end());
    require(env::delimiter().joint() == joint);
    require(env::last_component(path) == last);

    char buffer[16];
    env::PathWriter writer(buffer, sizeof buffer);
    if (writer.add(path)) {
        const bool fits = path.size() * 2 + joint.size() < sizeof buffer;
        require(writer.add(path) == fits);
        const std::string joined = fits ? path + joint + path : "";
        require(buffer == joined.substr(0, joined.find('\0')));
    }
    return 0;
}
