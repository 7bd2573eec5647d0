#include "bvutil/text_exchange.h"

#include "imaging/base64.h"
#include "imaging/wide_text.h"
#include "module/guarded.h"
#include "module/handles.h"

#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace {

// Without its terminating zero.
std::string to_utf8(const std::wstring& wide) {
    const int units = static_cast<int>(wide.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(length), '\0');
    const int written =
        WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, utf8.data(), length, nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(written));
    return utf8;
}

struct FileBytes {
    std::unique_ptr<std::uint8_t[]> data;
    std::size_t size = 0;
};

// The whole file; nothing when it cannot be opened or not be read to its end.
std::optional<FileBytes> read_whole(const char* path) {
    const unique_stream file(std::fopen(path, "rb"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return std::nullopt;
    const long end = std::ftell(file.get());
    if (end < 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) return std::nullopt;
    const auto size = static_cast<std::size_t>(end);
    FileBytes bytes{std::make_unique_for_overwrite<std::uint8_t[]>(size), size};
    if (std::fread(bytes.data.get(), 1, size, file.get()) != size) return std::nullopt;
    return bytes;
}

// All characters but the last one: the last group goes through a buffer of our own.
void encode_without_last(const FileBytes& file, char* out) {
    if (file.size == 0) return;
    const std::size_t front = (file.size - 1) / 3 * 3;
    base64_encode({file.data.get(), front}, out);
    char group[4];
    base64_encode({file.data.get() + front, file.size - front}, group);
    std::memcpy(out + base64_length(front), group, 3);
}

} // namespace

extern "C" int BVUTIL_CALL ConvertFromUTF8(const char* utf8, char* out) {
    if (!utf8 || !out) return 0;
    return guarded(0, [&] {
        const std::wstring wide = widen(utf8, CP_UTF8);
        if (wide.empty()) return 0;
        for (const wchar_t unit : wide)
            *out++ = static_cast<char>(unit & 0xFF);
        *out = '\0';
        return 1;
    });
}

extern "C" int BVUTIL_CALL ConvertToUTF8(const char* text, char* out) {
    if (!text || !out) return 0;
    return guarded(0, [&] {
        const std::string utf8 = to_utf8(widen(text, CP_ACP));
        if (utf8.empty()) return 0;
        std::memcpy(out, utf8.c_str(), utf8.size() + 1);
        return 1;
    });
}

extern "C" int BVUTIL_CALL jpgToXML(const char* path, char* out, int* length, int lengthOnly) {
    if (!path || (lengthOnly ? !length : !out)) return 0;
    return guarded(0, [&] {
        const auto file = read_whole(path);
        if (!file) return 0;
        const std::uint64_t characters = base64_length(file->size);
        if (characters > std::numeric_limits<int>::max()) return 0;
        if (lengthOnly)
            *length = static_cast<int>(characters);
        else
            encode_without_last(*file, out);
        return 1;
    });
}
