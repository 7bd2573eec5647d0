#include "imaging/base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

// Bit by bit.
std::string expected(const std::vector<std::uint8_t>& bytes) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t bit = 0; bit < bytes.size() * 8; bit += 6) {
        unsigned value = 0;
        for (std::size_t i = bit; i < bit + 6; ++i)
            value = value * 2 + (i < bytes.size() * 8 ? (bytes[i / 8] >> (7 - i % 8)) & 1u : 0);
        out += alphabet[value];
    }
    return out.append((4 - out.size() % 4) % 4, '=');
}

TEST(Base64, EqualsTheDefinitionForEveryLengthAndValue) {
    EXPECT_EQ(expected({'f', 'o', 'o', 'b'}), "Zm9vYg==");
    std::mt19937 random(7);
    for (std::size_t length = 0; length < 4000; length += length < 200 ? 1 : 3700) {
        // On exact heap buffers, so that a sanitizer sees every byte read or written beyond them.
        std::vector<std::uint8_t> bytes(length);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        for (const CpuLevel level : {CpuLevel::sse2, CpuLevel::ssse3, CpuLevel::avx2}) {
            if (level > cpu_level()) continue;
            std::vector<char> out(static_cast<std::size_t>(base64_length(length)), '#');
            base64_encode(bytes, out.data(), level);
            ASSERT_EQ(std::string(out.begin(), out.end()), expected(bytes))
                << length << " bytes, level " << static_cast<int>(level);
        }
    }
}

} // namespace
