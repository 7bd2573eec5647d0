// The sample plug-ins, as they are built, on small pictures.
#include "bvutil/filter_host.h"
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using Pixels = std::vector<std::uint8_t>;

class Sample {
  public:
    explicit Sample(const std::string& name) {
        const std::string path = program_path("filters\\" + name + ".8bf");
        EXPECT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &m_filter, nullptr), 1);
    }
    ~Sample() { AVFreeGotPSFilter(&m_filter); }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    // The picture that it makes of one.
    Pixels apply(const Pixels& pixels, int width, AVPSFilterProgress progress = nullptr,
                 bool repeat_last = false) {
        void* result = nullptr;
        const int height = static_cast<int>(pixels.size()) / (4 * width);
        AVApplyPSFilter(m_filter, repeat_last, progress, nullptr, pixels.data(), width, height, 4 * width,
                        &result, &code);
        const auto* made = static_cast<const std::uint8_t*>(result);
        const Pixels copy(made, made + pixels.size());
        AVFreeGotPSFilterImage(&result);
        return copy;
    }

    int code = 4711;

  private:
    PSFilter_* m_filter = nullptr;
};

Pixels paint(int width, int height, const std::function<double(int x, int y, int part)>& level) {
    Pixels pixels;
    for (int i = 0; i < width * height * 4; ++i)
        pixels.push_back(static_cast<std::uint8_t>(level(i / 4 % width, i / 4 / width, i % 4)));
    return pixels;
}

TEST(SampleFilters, AutoLevelsStretchesEachColour) {
    const Pixels from = paint(101, 1, [](int x, int, int part) {
        return part == 0 ? 50 + x : part == 1 ? 2 * x : part == 2 ? 77 : 9; // a single level stays
    });
    Sample filter("auto_levels");
    EXPECT_EQ(filter.apply(from, 101), paint(101, 1, [](int x, int, int part) {
                  return part < 2 ? x * 255 / 100 : part == 2 ? 77 : 9;
              }));
    EXPECT_EQ(filter.code, 0);
}

double waves(int x, int y, int part) {
    return 128 + 50 * std::sin(x * (0.1 + part) / 9) * std::cos(y / 7.0);
}

// By the formula; all is well inside 0 to 255.
double sharpened(const Pixels& pixels, int width, int x, int y, int part, double radius, double amount) {
    const int height = static_cast<int>(pixels.size()) / (4 * width);
    const auto sample = [&](int column, int row) -> double {
        column = std::clamp(column, 0, width - 1);
        row = std::clamp(row, 0, height - 1);
        return pixels[static_cast<std::size_t>(4 * (row * width + column) + part)];
    };
    const int reach = static_cast<int>(std::ceil(3 * radius));
    double sum = 0, weights = 0;
    for (int dy = -reach; dy <= reach; ++dy)
        for (int dx = -reach; dx <= reach; ++dx) {
            const double weight = std::exp(-(dx * dx + dy * dy) / (2 * radius * radius));
            sum += weight * sample(x + dx, y + dy);
            weights += weight;
        }
    return std::clamp(sample(x, y) + amount * (sample(x, y) - sum / weights), 0.0, 255.0);
}

BvUtilBool BVUTIL_STDCALL stop_halfway(float fraction, void*) {
    return fraction < 0.5f;
}

// In the C runtime's environment, which plug-ins read.
TEST(SampleFilters, UnsharpMaskWorksAcrossTilesRepeatsAndStops) {
    constexpr int width = 530, height = 270;
    _putenv_s("UNSHARP_RADIUS", "2.5");
    _putenv_s("UNSHARP_AMOUNT", "3");
    Sample filter("unsharp_mask");
    const Pixels before = paint(width, height, waves), after = filter.apply(before, width);
    for (const int x : {0, 3, 254, 255, 256, 511, 512, 529})
        for (const int y : {0, 1, 255, 256, 269})
            EXPECT_NEAR(after[static_cast<std::size_t>(4 * (y * width + x) + 2)],
                        sharpened(before, width, x, y, 2, 2.5, 3), 0.6)
                << x << "," << y;
    const Pixels tall = paint(300, 600, waves), half = filter.apply(tall, 300, stop_halfway);
    EXPECT_EQ(filter.code, -128);
    EXPECT_FALSE(std::equal(tall.begin(), tall.begin() + 40000, half.begin())) << "the beginning is done";
    EXPECT_TRUE(std::equal(tall.end() - 40000, tall.end(), half.end() - 40000)) << "the end is not";

    _putenv_s("UNSHARP_AMOUNT", "0");
    EXPECT_EQ(filter.apply(before, width, nullptr, true), after) << "the settings of the last time";
    EXPECT_EQ(Sample("unsharp_mask").apply(before, width), before) << "nothing is added";
}

TEST(SampleFilters, DuotonePrintsInTwoInksAndShowsAPreview) {
    const TempDir dir;
    _putenv_s("DUOTONE_DARK", "000040");
    _putenv_s("DUOTONE_LIGHT", "ff8040");
    _putenv_s("DUOTONE_PREVIEW", dir.file("preview.bmp").c_str());
    const auto greys = [](int x, int y, int part) { return part == 3 ? 5 : 16 * y + x; };
    EXPECT_EQ(Sample("duotone").apply(paint(16, 16, greys), 16), paint(16, 16, [&](int x, int y, int part) {
                  const int level = 16 * y + x;
                  return part == 0 ? 0x40 : part == 1 ? (0x80 * level + 127) / 255 : greys(x, y, part);
              }));
    _putenv_s("DUOTONE_PREVIEW", "");

    const std::string preview = read_file(dir.file("preview.bmp"));
    ASSERT_EQ(preview.size(), 54u + 320 * 180 * 3);
    const auto shown = [&](std::size_t x, std::size_t y) { // from the top
        return preview.substr(54 + ((179 - y) * 320 + x) * 3, 3);
    };
    EXPECT_EQ(shown(159, 119), "\xFF\xFF\xFF") << "before";
    EXPECT_EQ(shown(319, 119), "\x40\x80\xFF") << "after";
    EXPECT_EQ(shown(0, 179)[0], 40) << "the histogram's foot";
}

} // namespace
