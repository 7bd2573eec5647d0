// The sample plug-ins, as they are built, on small pictures.
#include "bvutil/filter_host.h"
#include "tests/support/temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

class Sample {
  public:
    explicit Sample(const std::string& name) {
        char self[MAX_PATH];
        GetModuleFileNameA(nullptr, self, sizeof self);
        const auto build = std::filesystem::path(self).parent_path().parent_path();
        char* category = nullptr;
        char* menu_name = nullptr;
        EXPECT_EQ(AVGetPSFilterAndInfo((build / "filters" / (name + ".8bf")).string().c_str(), &category,
                                       &menu_name, &m_filter, nullptr),
                  1);
        menu = std::string(category) + "/" + menu_name;
        AVFreeGotPSFilterInfo(&category, &menu_name);
    }
    ~Sample() { AVFreeGotPSFilter(&m_filter); }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    // Replaces the picture by the result and returns the code.
    int apply(std::vector<std::uint8_t>& pixels, int width, AVPSFilterProgress progress = nullptr,
              void* context = nullptr, bool repeat_last = false) {
        void* result = nullptr;
        int code = 4711;
        const int height = static_cast<int>(pixels.size()) / (4 * width);
        const bool done = AVApplyPSFilter(m_filter, repeat_last, progress, context, pixels.data(), width,
                                          height, 4 * width, &result, &code) != 0;
        EXPECT_EQ(done, code >= 0);
        std::copy_n(static_cast<const std::uint8_t*>(result), pixels.size(), pixels.begin());
        AVFreeGotPSFilterImage(&result);
        return code;
    }

    std::string menu;

  private:
    PSFilter_* m_filter = nullptr;
};

// In the C runtime's environment, which plug-ins read.
void set_environment(const char* name, const char* value) {
    _putenv_s(name, value);
}

std::vector<std::uint8_t> waves(int width, int height) {
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int part = 0; part < 4; ++part)
                pixels.push_back(
                    static_cast<std::uint8_t>(128 + 50 * std::sin(x * (0.1 + part) / 9) * std::cos(y / 7.0)));
    return pixels;
}

TEST(SampleFilters, AutoLevelsStretchesEachColour) {
    Sample filter("auto_levels");
    EXPECT_EQ(filter.menu, "Adjust/Auto levels");
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i <= 100; ++i)
        pixels.insert(pixels.end(),
                      {static_cast<std::uint8_t>(50 + i), static_cast<std::uint8_t>(2 * i), 77, 9});
    EXPECT_EQ(filter.apply(pixels, 101), 0);
    for (int i = 0; i <= 100; ++i) {
        const auto* pixel = &pixels[static_cast<std::size_t>(4 * i)];
        EXPECT_EQ(pixel[0], i * 255 / 100);
        EXPECT_EQ(pixel[1], 2 * i * 255 / 200);
        EXPECT_EQ(pixel[2], 77) << "a single level stays";
        EXPECT_EQ(pixel[3], 9);
    }
}

// What the unsharp mask should make of one sample, by the formula.
double sharpened(const std::vector<std::uint8_t>& pixels, int width, int x, int y, int part, double radius,
                 double amount) {
    const int height = static_cast<int>(pixels.size()) / (4 * width);
    const auto sample = [&](int column, int row) {
        column = std::clamp(column, 0, width - 1);
        row = std::clamp(row, 0, height - 1);
        return double{1} * pixels[static_cast<std::size_t>(4 * (row * width + column) + part)];
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

TEST(SampleFilters, UnsharpMaskWorksAcrossTilesAndRepeats) {
    constexpr int width = 530, height = 270;
    set_environment("UNSHARP_RADIUS", "2.5");
    set_environment("UNSHARP_AMOUNT", "3");
    Sample filter("unsharp_mask");
    const auto before = waves(width, height);
    auto after = before;
    EXPECT_EQ(filter.apply(after, width), 0);
    for (const int x : {0, 3, 254, 255, 256, 511, 512, 529})
        for (const int y : {0, 1, 255, 256, 269})
            for (const int part : {0, 2})
                EXPECT_NEAR(after[static_cast<std::size_t>(4 * (y * width + x) + part)],
                            sharpened(before, width, x, y, part, 2.5, 3), 0.6)
                    << x << "," << y;

    set_environment("UNSHARP_AMOUNT", "0");
    auto repeated = before;
    EXPECT_EQ(filter.apply(repeated, width, nullptr, nullptr, true), 0);
    EXPECT_EQ(repeated, after) << "the settings of the last time";
    auto asked = before;
    EXPECT_EQ(Sample("unsharp_mask").apply(asked, width), 0);
    EXPECT_EQ(asked, before) << "nothing is added";
}

BvUtilBool BVUTIL_STDCALL stop_halfway(float fraction, void* calls) {
    ++*static_cast<int*>(calls);
    return fraction < 0.5f;
}

TEST(SampleFilters, UnsharpMaskCanBeStopped) {
    set_environment("UNSHARP_AMOUNT", "3");
    Sample filter("unsharp_mask");
    const auto before = waves(300, 600);
    auto after = before;
    int calls = 0;
    EXPECT_EQ(filter.apply(after, 300, stop_halfway, &calls), -128);
    EXPECT_GT(calls, 3);
    EXPECT_FALSE(std::equal(before.begin(), before.begin() + 40000, after.begin()))
        << "the beginning is done";
    EXPECT_TRUE(std::equal(before.end() - 40000, before.end(), after.end() - 40000)) << "the end is not";
}

TEST(SampleFilters, DuotonePrintsInTwoInksAndShowsAPreview) {
    const TempDir dir;
    set_environment("DUOTONE_DARK", "000040");
    set_environment("DUOTONE_LIGHT", "ff8040");
    set_environment("DUOTONE_PREVIEW", dir.file("preview.bmp").c_str());
    Sample filter("duotone");
    std::vector<std::uint8_t> pixels;
    for (int i = 0; i < 256; ++i)
        pixels.insert(pixels.end(), 3, static_cast<std::uint8_t>(i)), pixels.push_back(5);
    EXPECT_EQ(filter.apply(pixels, 16), 0);
    for (std::size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(pixels[4 * i], 0x40);
        EXPECT_EQ(pixels[4 * i + 1], (0x80 * i + 127) / 255);
        EXPECT_EQ(pixels[4 * i + 2], i);
        EXPECT_EQ(pixels[4 * i + 3], 5);
    }

    const std::string preview = read_file(dir.file("preview.bmp"));
    ASSERT_EQ(preview.size(), 54u + 320 * 180 * 3);
    const auto row_from_top = [&](std::size_t y) {
        return reinterpret_cast<const std::uint8_t*>(preview.data()) + 54 + (179 - y) * 320 * 3;
    };
    const std::uint8_t* last = row_from_top(119) + 159 * 3;
    EXPECT_EQ(std::vector(last, last + 3), (std::vector<std::uint8_t>{255, 255, 255})) << "before";
    last += 160 * 3;
    EXPECT_EQ(std::vector(last, last + 3), (std::vector<std::uint8_t>{0x40, 0x80, 0xFF})) << "after";
    EXPECT_EQ(*row_from_top(179), 40) << "the histogram's foot";
    set_environment("DUOTONE_PREVIEW", "");
}

} // namespace
