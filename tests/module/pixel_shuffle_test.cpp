// Every order of samples, row length and kernel against the definition, on exact heap buffers, so that a
// sanitizer sees every stray byte.
#include "module/pixel_shuffle.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes numbered(std::size_t size, std::size_t seed) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>((i + seed) * 0x9E3779B1u >> 24);
    return bytes;
}

// All sequences of one to four places, none twice.
std::vector<Bytes> all_orders() {
    std::vector<Bytes> orders{{}};
    for (std::size_t i = 0; i < orders.size(); ++i)
        for (std::uint8_t place = 0; place < 4; ++place)
            if (Bytes longer = orders[i]; std::find(longer.begin(), longer.end(), place) == longer.end()) {
                longer.push_back(place);
                orders.push_back(longer);
            }
    orders.erase(orders.begin());
    return orders;
}

class PixelShuffle : public testing::TestWithParam<CpuLevel> {
  protected:
    void SetUp() override {
        if (GetParam() > cpu_level()) GTEST_SKIP() << "this processor has no such instructions";
    }
};
INSTANTIATE_TEST_SUITE_P(Levels, PixelShuffle, testing::Values(CpuLevel::sse2, CpuLevel::ssse3));

TEST_P(PixelShuffle, EqualsTheDefinitionForEveryOrderAndLength) {
    const std::vector<Bytes> orders = all_orders();
    ASSERT_EQ(orders.size(), 64u);
    for (const Bytes& places : orders) {
        const SampleOrder order(places);
        for (std::size_t count = 0; count < 50; ++count) {
            const Bytes pixels = numbered(count * 4, count), samples = numbered(count * places.size(), 7);
            Bytes gathered(samples.size()), expected_samples(gathered);
            Bytes written = pixels, expected_written = pixels;
            Bytes widened = pixels, expected_widened(pixels.size(), 0xC3);
            for (std::size_t i = 0; i < samples.size(); ++i) {
                const std::size_t at = i / places.size() * 4 + places[i % places.size()];
                expected_samples[i] = pixels[at];
                expected_written[at] = expected_widened[at] = samples[i];
            }
            gather_samples(order, pixels.data(), gathered.data(), count, GetParam());
            write_samples(order, written.data(), samples.data(), count, GetParam());
            widen_samples(order, widened.data(), samples.data(), count, 0xC3, GetParam());
            const auto where = testing::PrintToString(places) + ", " + std::to_string(count);
            ASSERT_EQ(gathered, expected_samples) << where;
            ASSERT_EQ(written, expected_written) << where;
            ASSERT_EQ(widened, expected_widened) << where;
        }
    }
}

} // namespace
