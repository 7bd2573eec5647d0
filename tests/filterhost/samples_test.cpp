// A sample plug-in, as it is built, that is stopped; tests/shown/samples.txt has what the samples make.
#include "bvutil/filter_host.h"
#include "tests/support/run_program.h"

#include <gtest/gtest.h>

namespace {

BvUtilBool BVUTIL_STDCALL stop_halfway(float fraction, void*) {
    return fraction < 0.5f;
}

TEST(SampleFilters, UnsharpMaskCanBeStopped) {
    std::string picture(300 * 600 * 4, '\0');
    for (std::size_t i = 0; i < picture.size(); ++i)
        picture[i] = static_cast<char>(i * i / 7);
    PSFilter_* filter = nullptr;
    const std::string path = program_path("filters\\unsharp_mask.8bf");
    ASSERT_EQ(AVGetPSFilterAndInfo(path.c_str(), nullptr, nullptr, &filter, nullptr), 1);
    void* result = nullptr;
    int code = 0;
    EXPECT_EQ(
        AVApplyPSFilter(filter, 0, stop_halfway, nullptr, picture.data(), 300, 600, 1200, &result, &code), 0);
    EXPECT_EQ(code, -128);
    const char* const made = static_cast<const char*>(result);
    EXPECT_NE(picture.compare(0, 40000, made, 40000), 0) << "the beginning is done";
    EXPECT_EQ(picture.compare(680000, 40000, made + 680000, 40000), 0) << "the end is not";
    AVFreeGotPSFilterImage(&result);
    AVFreeGotPSFilter(&filter);
}

} // namespace
