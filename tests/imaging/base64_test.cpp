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

// On exact heap buffers, so that a sanitizer sees every byte read or written beyond them.
void expect_encoded(const std::vector<std::uint8_t>& bytes) {
    std::vector<char> out(static_cast<std::size_t>(base64_length(bytes.size())));
    for (const CpuLevel level : {CpuLevel::sse2, CpuLevel::ssse3, CpuLevel::avx2}) {
        if (level > cpu_level()) continue;
        std::fill(out.begin(), out.end(), '#');
        base64_encode(bytes, out.data(), level);
        ASSERT_EQ(std::string(out.begin(), out.end()), expected(bytes))
            << bytes.size() << " bytes, level " << static_cast<int>(level);
    }
}

TEST(Base64, EqualsTheDefinitionForEveryLengthAndValue) {
    EXPECT_EQ(expected({'f', 'o', 'o', 'b'}), "Zm9vYg==");
    std::mt19937 random(7);
    for (std::size_t length = 0; length < 200; ++length) {
        std::vector<std::uint8_t> bytes(length);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        expect_encoded(bytes);
    }
    std::vector<std::uint8_t> all; // every 6-bit value at every place
    for (unsigned value = 0; value < 0x1000000; value += 0x10101 / 5)
        for (const int shift : {16, 8, 0})
            all.push_back(static_cast<std::uint8_t>(value >> shift));
    expect_encoded(all);
}

} // namespace
