// Data files of any bytes: the first byte is the length of the longest line asked for, the rest the file. Its
// byte order is what the plain rule says, its lines together are its text, and lines written in fields are
// read as they were written.
#include "bvutil/fio.h"
#include "bvutil/strings.h"
#include "files/byte_order.h"
#include "fuzz/require.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace {

struct CloseFile {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, CloseFile>;

Stream open(std::string& bytes, const char* mode) {
    return Stream(fmemopen(bytes.data(), bytes.size(), mode));
}

// The bytes that a stream takes; it has room for one more, which fmemopen() may end them with.
template <class Write>
std::string written(std::size_t size, Write write) {
    std::string bytes(size + 1, '?');
    const Stream stream = open(bytes, "wb");
    require(write(stream.get()) && std::fflush(stream.get()) == 0);
    require(std::ftell(stream.get()) == static_cast<long>(size));
    return bytes.substr(0, size);
}

void check_byte_order(std::string bytes) {
    const std::string mark = bytes.substr(0, 8).c_str();
    const bool marked = mark.find("@mb") != std::string::npos || mark.find("1.1") != std::string::npos;
    const bool big_endian = bytes.size() >= 16 && bytes.compare(8, 8, "MOTOROLA") == 0;
    const Stream stream = open(bytes, "rb");
    require(read_byte_order(stream.get()) == (!marked      ? FIO_NO_HEADER
                                              : big_endian ? FIO_MOTOROLA
                                                           : FIO_INTEL));
    require(std::ftell(stream.get()) ==
            (marked ? static_cast<long>(std::min<std::size_t>(bytes.size(), 16)) : 0));
}

std::string without_line_ends(std::string text) {
    std::erase_if(text, [](char c) { return c == '\0' || c == '\r' || c == '\n'; });
    return text;
}

void check_lines(std::string bytes, int limit) {
    const Stream stream = open(bytes, "rb");
    const auto line = std::make_unique<char[]>(static_cast<std::size_t>(limit) + 1);
    std::string all;
    std::size_t lines = 0;
    for (; BvUtil_GetString(stream.get(), limit, line.get()) == 0; ++lines) {
        all += line.get();
        const std::string text = line.get();
        require(written(static_cast<std::size_t>(limit), [&](std::FILE* out) {
                    return BvUtil_PutString(out, text.c_str(), limit) == 0;
                }) == text + std::string(static_cast<std::size_t>(limit) - text.size(), ' '));
    }
    require(line[0] == '\0' && lines <= bytes.size());
    require(without_line_ends(all) == without_line_ends(bytes));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string bytes(reinterpret_cast<const char*>(data + 1), size - 1);
    check_byte_order(bytes);
    check_lines(bytes, 1 + data[0] % 64);
    check_byte_order(written(16, write_byte_order) + bytes);
    return 0;
}
