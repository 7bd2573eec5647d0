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

void compare(const Bytes& places, std::size_t count, CpuLevel level) {
    const SampleOrder order(places);
    const Bytes pixels = numbered(count * 4, count), samples = numbered(count * places.size(), 7);
    Bytes gathered(samples.size()), expected_samples(gathered);
    Bytes written = pixels, expected_written = pixels;
    Bytes widened = pixels, expected_widened(pixels.size(), 0xC3);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const std::size_t at = i / places.size() * 4 + places[i % places.size()];
        expected_samples[i] = pixels[at];
        expected_written[at] = expected_widened[at] = samples[i];
    }
    gather_samples(order, pixels.data(), gathered.data(), count, level);
    write_samples(order, written.data(), samples.data(), count, level);
    widen_samples(order, widened.data(), samples.data(), count, 0xC3, level);
    ASSERT_EQ(gathered, expected_samples);
    ASSERT_EQ(written, expected_written);
    ASSERT_EQ(widened, expected_widened);
}

TEST(PixelShuffle, EqualsTheDefinitionForEveryOrderAndLength) {
    // All sequences of one to four places, none twice.
    std::vector<Bytes> orders{{}};
    for (std::size_t i = 0; i < orders.size(); ++i)
        for (std::uint8_t place = 0; place < 4; ++place)
            if (std::find(orders[i].begin(), orders[i].end(), place) == orders[i].end()) {
                Bytes longer = orders[i];
                longer.push_back(place);
                orders.push_back(longer);
            }
    ASSERT_EQ(orders.size(), 65u);
    for (const CpuLevel level : {CpuLevel::sse2, CpuLevel::ssse3})
        for (std::size_t i = 1; i < orders.size() && level <= cpu_level(); ++i)
            for (std::size_t count = 0; count < 50; ++count) {
                SCOPED_TRACE(testing::PrintToString(orders[i]) + ", " + std::to_string(count));
                ASSERT_NO_FATAL_FAILURE(compare(orders[i], count, level));
            }
}

} // namespace
