// Splitting, joining and searching of paths: the first byte chooses the code page and which texts are left
// out, the others are base, directory and file, separated by line feeds.
#include "bvutil/strings.h"
#include "fuzz/require.h"
#include "module/multibyte.h"
#include "runtime/path_parts.h"
#include "tests/support/double_byte.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>

namespace {

// In memory of its own, so that a byte too many is seen.
std::unique_ptr<char[]> exact_copy(const std::string& text) {
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.data(), text.size());
    return copy;
}

void check_split(const std::string& path) {
    const auto drive = std::make_unique<char[]>(BVUTIL_DRIVE_SIZE);
    const auto dir = std::make_unique<char[]>(BVUTIL_DIR_SIZE);
    const auto name = std::make_unique<char[]>(BVUTIL_NAME_SIZE);
    const auto text = exact_copy(path);
    require(BvUtil_Divide(text.get(), drive.get(), dir.get(), name.get()) == 0);
    const std::string joined = std::string(drive.get()) + dir.get() + name.get();
    require(joined == path || (joined.empty() && path.size() >= BVUTIL_NAME_SIZE));
    require(std::strlen(drive.get()) == 0 || (std::strlen(drive.get()) == 2 && drive[1] == ':'));
    require(BvUtil_StrIChr(name.get(), '\\') == -1 && BvUtil_StrIChr(name.get(), '/') == -1);
}

// The name stands behind the directory, and splitting takes it off again.
void check_joined_directory(const std::string& directory, const std::string& name) {
    const std::string joined = join_directory(directory, name);
    require(joined == directory + name || joined == directory + "\\" + name);
    if (name.find_first_of("\\/:") == std::string::npos && !multibyte::active())
        require(split_path(joined).name == name);
}

void check_extension(const std::string& name) {
    const int dot = BvUtil_GetExtensionPos(exact_copy(name).get());
    require(dot == -1 || (dot > 0 && name[static_cast<std::size_t>(dot)] == '.'));
    require(name.find('.', static_cast<std::size_t>(std::max(dot, 0) + 1)) == std::string::npos);
}

// The search against the plainest one there is.
void check_search(const std::string& text, const std::string& wanted) {
    int expected = wanted.empty() ? 0 : -1;
    const std::string_view whole(text);
    multibyte::for_each_character(text, [&](std::size_t at, std::size_t) {
        if (expected != -1) return false;
        std::size_t end = at;
        while (end < text.size() && end - at < wanted.size())
            end += multibyte::character_length(whole.substr(end));
        if (whole.substr(at, end - at) == wanted) expected = static_cast<int>(at);
        return true;
    });
    require(BvUtil_StrIPos(exact_copy(text).get(), exact_copy(wanted).get()) == expected);
}

void check_join(const char* base, const char* dir, const char* file) {
    const auto make = [](const char* b, const char* d, const char* f) {
        std::string out(2, '\0'); // may grow by a separator in front of each
        for (const char* part : {b, d, f})
            out.append(part ? std::strlen(part) : 0, '\0');
        const auto exact = exact_copy(out);
        require(BvUtil_Makepath(exact.get(), b, d, f) == exact.get());
        return std::string(exact.get());
    };
    const std::string path = make(base, dir, file), inner = make(nullptr, dir, file),
                      whole = make(nullptr, nullptr, file);
    require(make(nullptr, nullptr, path.c_str()) == path); // lower case already
    if (multibyte::active()) return;
    // Bytes are characters: what was placed last stands at the end, and a file with a drive alone.
    require(path.ends_with(whole.starts_with('\\') ? whole.substr(1) : whole));
    if (inner.size() < 2 || inner[1] != ':') require(path == make(nullptr, base, inner.c_str()));
    if (whole.size() > 1 && whole[1] == ':') require(path == whole);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const unsigned choice = data[0];
    std::optional<DoubleByteCodePage> code_page;
    if (choice & 1) code_page.emplace();

    std::string texts[3];
    std::size_t index = 0;
    for (const char c : std::string(reinterpret_cast<const char*>(data + 1), size - 1)) {
        if (c == '\n' && index < 2)
            ++index;
        else if (c != '\0')
            texts[index] += c;
    }
    for (const std::string& text : texts) {
        check_split(text);
        check_extension(text);
    }
    check_joined_directory(texts[0], texts[1]);
    check_search(texts[0], texts[1]);
    const auto argument = [&](unsigned n) { return choice & 2u << n ? nullptr : texts[n].c_str(); };
    check_join(argument(0), argument(1), argument(2));
    return 0;
}
