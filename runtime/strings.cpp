#include "bvutil/strings.h"

#include "module/guarded.h"
#include "module/text_to_double.h"
#include "runtime/path_parts.h"
#include "runtime/text_lines.h"
#include "runtime/text_search.h"

#include <cstring>
#include <limits>

namespace {

int index_of(std::size_t position) {
    return position == std::string_view::npos ? -1 : static_cast<int>(position);
}

std::optional<std::string_view> optional_text(const char* text) {
    if (!text) return std::nullopt;
    return text;
}

// A null buffer receives nothing.
void store(char* buffer, std::string_view text) {
    if (!buffer) return;
    text.copy(buffer, text.size());
    buffer[text.size()] = '\0';
}

// Leaves `kept`, a part of s, at the front of s, and zero bytes to its former end.
char* keep(char* s, std::size_t length, std::string_view kept) {
    std::memmove(s, kept.data(), kept.size());
    std::memset(s + kept.size(), 0, length - kept.size());
    return s;
}

} // namespace

extern "C" int BVUTIL_CALL BvUtil_Divide(const char* path, char* drive, char* dir, char* name) {
    PathParts parts = split_path(path ? path : "");
    if (parts.directory.size() >= BVUTIL_DIR_SIZE || parts.name.size() >= BVUTIL_NAME_SIZE) parts = {};
    store(drive, parts.drive);
    store(dir, parts.directory);
    store(name, parts.name);
    return 0;
}

extern "C" char* BVUTIL_CALL BvUtil_Makepath(char* out, const char* base, const char* dir, const char* file) {
    if (!out) return nullptr;
    return guarded(static_cast<char*>(nullptr), [&] {
        store(out, make_path(optional_text(base), optional_text(dir), optional_text(file)));
        return out;
    });
}

extern "C" int BVUTIL_CALL BvUtil_GetExtensionPos(const char* name) {
    return name ? index_of(extension_position(name)) : -1;
}

extern "C" int BVUTIL_CALL BvUtil_GetString(FILE* stream, int maxLen, char* buffer) {
    if (!stream || maxLen <= 0 || !buffer) return -1;
    return read_line(stream, static_cast<std::size_t>(maxLen), buffer) ? 0 : -1;
}

extern "C" int BVUTIL_CALL BvUtil_PutString(FILE* stream, const char* text, int width) {
    if (!stream || !text) return -1;
    if (width < 0) return 0;
    // A text that will be cut is not measured beyond the cut.
    const std::size_t length =
        width == 0 ? std::strlen(text) : strnlen(text, static_cast<std::size_t>(width));
    const std::size_t field = width == 0 ? length : static_cast<std::size_t>(width);
    return write_field(stream, {text, length}, field) ? 0 : -1;
}

extern "C" int BVUTIL_CALL BvUtil_StrIChr(const char* s, char c) {
    if (!s || c == '\0') return -1;
    return index_of(find_character(s, c));
}

extern "C" int BVUTIL_CALL BvUtil_StrIPos(const char* s, const char* sub) {
    if (!s || !sub) return -1;
    return guarded(-1, [&] { return index_of(find_text(s, sub)); });
}

extern "C" char* BVUTIL_CALL BvUtil_StrLTrim(char* s) {
    if (!s) return nullptr;
    const std::string_view text(s);
    return keep(s, text.size(), trim_left(text));
}

extern "C" char* BVUTIL_CALL BvUtil_StrRTrim(char* s) {
    return BvUtil_StrLTrim(s); // kept: callers rely on the left trim
}

extern "C" char* BVUTIL_CALL BvUtil_StrTrim(char* s) {
    if (!s) return nullptr;
    const std::string_view text(s);
    return keep(s, text.size(), trim_right(trim_left(text)));
}

extern "C" double BVUTIL_CALL BvUtil_StringToDouble(const char* s) {
    constexpr double failure = -std::numeric_limits<double>::infinity();
    if (!s) return failure;
    // What follows the number is not looked at: callers step through long lists of them.
    const std::size_t blanks = std::strspn(s, " \t\n\v\f\r");
    const std::size_t length = blanks + std::strspn(s + blanks, "+-.0123456789eEdD");
    return guarded(failure, [&] { return text_to_double({s, length}); });
}
