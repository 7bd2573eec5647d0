#include "imaging/base64.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

std::string encoded(const std::string& text, CpuLevel level) {
    // Exact copies on the heap, so that a sanitizer sees every byte read or written beyond them.
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    std::vector<char> out(static_cast<std::size_t>(base64_length(bytes.size())));
    base64_encode(bytes, out.data(), level);
    return {out.begin(), out.end()};
}

std::string encoded_slowly(const std::string& text) {
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t bit = 0; bit < text.size() * 8; bit += 6) {
        unsigned value = 0;
        for (std::size_t i = bit; i < bit + 6; ++i)
            value = value * 2 + (i < text.size() * 8 ? (text[i / 8] >> (7 - i % 8)) & 1 : 0);
        out += alphabet[value];
    }
    while (out.size() % 4)
        out += '=';
    return out;
}

class Base64 : public testing::TestWithParam<CpuLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > cpu_level()) GTEST_SKIP() << "this processor has no such instructions";
    }
};
INSTANTIATE_TEST_SUITE_P(Levels, Base64, testing::Values(CpuLevel::sse2, CpuLevel::ssse3, CpuLevel::avx2));

TEST_P(Base64, GivesTheKnownTexts) {
    const char* cases[][2] = {{"", ""},
                              {"f", "Zg=="},
                              {"fo", "Zm8="},
                              {"foo", "Zm9v"},
                              {"foob", "Zm9vYg=="},
                              {"fooba", "Zm9vYmE="},
                              {"foobar", "Zm9vYmFy"}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(encoded(text, GetParam()), expected);
}

TEST_P(Base64, EqualsTheDefinitionForEveryLengthAndValue) {
    std::mt19937 random(7);
    for (std::size_t length = 0; length < 200; ++length) {
        std::string text(length, '\0');
        for (char& c : text)
            c = static_cast<char>(random());
        ASSERT_EQ(encoded(text, GetParam()), encoded_slowly(text)) << length;
    }
    std::string all; // every 6-bit value at every place
    for (unsigned value = 0; value < 0x1000000; value += 0x10101 / 5)
        all += {static_cast<char>(value >> 16), static_cast<char>(value >> 8), static_cast<char>(value)};
    EXPECT_EQ(encoded(all, GetParam()), encoded_slowly(all));
}

} // namespace
