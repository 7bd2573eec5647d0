#include "imaging/base64.h"

#include "imaging/base64_kernels.h"

#include <cstring>

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

void encode_group(const std::uint8_t* from, char* to) {
    const unsigned bits = from[0] * 0x10000u + from[1] * 0x100u + from[2];
    for (int i = 0; i < 4; ++i)
        to[i] = alphabet[bits >> (18 - 6 * i) & 63];
}

std::size_t encode_vectors(std::span<const std::uint8_t> bytes, char* out, CpuLevel level) {
    switch (level) {
    case CpuLevel::avx512:
    case CpuLevel::avx2:
        return base64_encode_avx2(bytes.data(), bytes.size(), out);
    case CpuLevel::ssse3:
        return base64_encode_ssse3(bytes.data(), bytes.size(), out);
    default:
        return base64_encode_sse2(bytes.data(), bytes.size(), out);
    }
}

} // namespace

void base64_encode(std::span<const std::uint8_t> bytes, char* out, CpuLevel level) {
    const std::size_t done = encode_vectors(bytes, out, level);
    bytes = bytes.subspan(done);
    out += done / 3 * 4;
    for (; bytes.size() >= 3; bytes = bytes.subspan(3), out += 4)
        encode_group(bytes.data(), out);
    if (bytes.empty()) return;
    std::uint8_t last[3] = {};
    std::memcpy(last, bytes.data(), bytes.size());
    encode_group(last, out);
    std::memset(out + bytes.size() + 1, '=', 3 - bytes.size());
}
