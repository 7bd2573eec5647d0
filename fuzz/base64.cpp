// Base64: all kernels give the same text, and it decodes to what was encoded.
#include "imaging/base64.h"
#include "fuzz/require.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace {

std::vector<std::uint8_t> decoded(std::string_view text) {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::vector<std::uint8_t> bytes;
    std::uint32_t value = 0;
    int bits = 0;
    for (const char c : text.substr(0, text.find('='))) {
        const auto digit = alphabet.find(c);
        require(digit != std::string_view::npos);
        value = value << 6 | static_cast<std::uint32_t>(digit);
        bits += 6;
        if (bits >= 8) bytes.push_back(static_cast<std::uint8_t>(value >> (bits -= 8)));
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::uint8_t> bytes(data, data + size);
    std::vector<char> plain(static_cast<std::size_t>(base64_length(size))), fast(plain.size());
    base64_encode(bytes, plain.data(), CpuLevel::sse2);
    for (const CpuLevel level : {CpuLevel::ssse3, CpuLevel::avx2}) {
        if (level > cpu_level()) continue;
        base64_encode(bytes, fast.data(), level);
        require(fast == plain);
    }
    require(decoded({plain.data(), plain.size()}) == bytes);
    return 0;
}
