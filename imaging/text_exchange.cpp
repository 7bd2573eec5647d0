#include "bvutil/text_exchange.h"

#include "imaging/base64.h"
#include "imaging/wide_text.h"
#include "module/guarded.h"
#include "module/handles.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
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

// Whole groups of three, and small enough to stay in the processor's cache with their text.
constexpr std::size_t chunk_size = 3 * 64 * 1024;
using Chunk = std::array<std::uint8_t, chunk_size>;

std::optional<std::size_t> size_of(std::FILE* file) {
    if (std::fseek(file, 0, SEEK_END) != 0) return std::nullopt;
    std::fpos_t end; // a long would hold the lower half alone
    if (std::fgetpos(file, &end) != 0 || end > std::numeric_limits<long>::max()) return std::nullopt;
    return static_cast<std::size_t>(end);
}

// Calls take(bytes) for so many bytes from the file's front, chunk by chunk; false when there are fewer.
template <class Take>
bool read_chunks(std::FILE* file, std::size_t size, Chunk& chunk, Take take) {
    if (std::fseek(file, 0, SEEK_SET) != 0) return false;
    while (size > 0) {
        const std::size_t wanted = std::min(size, chunk.size());
        if (std::fread(chunk.data(), 1, wanted, file) != wanted) return false;
        take(std::span<const std::uint8_t>(chunk.data(), wanted));
        size -= wanted;
    }
    return true;
}

// Encodes bytes without the last character: the last group goes through a buffer of our own.
void encode_without_last(std::span<const std::uint8_t> bytes, char* out) {
    const std::size_t front = (bytes.size() - 1) / 3 * 3;
    base64_encode(bytes.first(front), out);
    char group[4];
    base64_encode(bytes.subspan(front), group);
    std::memcpy(out + base64_length(front), group, 3);
}

// Nothing is written of a file that cannot be read to its end, so the file is read before it is encoded. A
// second pass through the system's cache costs less than the memory for the whole file would.
bool encode_file(std::FILE* file, std::size_t size, Chunk& chunk, char* out) {
    const auto no_more = [](std::span<const std::uint8_t>) {};
    if (size > chunk.size() && !read_chunks(file, size, chunk, no_more)) return false;
    return read_chunks(file, size, chunk, [&](std::span<const std::uint8_t> bytes) {
        size -= bytes.size();
        if (size == 0) return encode_without_last(bytes, out);
        base64_encode(bytes, out);
        out += base64_length(bytes.size());
    });
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
        const unique_stream file(std::fopen(path, "rb"));
        const auto size = file ? size_of(file.get()) : std::nullopt;
        if (!size) return 0;
        const std::uint64_t characters = base64_length(*size);
        if (characters > std::numeric_limits<int>::max()) return 0;
        const auto chunk = std::make_unique_for_overwrite<Chunk>();
        if (!lengthOnly) return encode_file(file.get(), *size, *chunk, out) ? 1 : 0;
        if (!read_chunks(file.get(), *size, *chunk, [](std::span<const std::uint8_t>) {})) return 0;
        *length = static_cast<int>(characters);
        return 1;
    });
}
